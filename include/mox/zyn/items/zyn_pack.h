#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"
#include "mox/zyn/items/typed_collection.h"
#include "mox/zyn/items/zyn_item.h"

class moxXMLNode;

/// One of the things that a pack holds. The registered name of the class is the name of its
/// element.
class moxZYNPackItem : public virtual moxPluginBase {
 public:
  /// Fills the object from its element; false when the element is not usable, and for an empty
  /// node.
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// Writes the object into its element; false when it could not, and for an empty node.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;
};

/// An item that gathers things of other kinds under one description. Registered as "moxZYNPack".
/// Its element has the attribute "name", the description, and an element for each pack item.
class moxZYNPack : public virtual moxZYNItem {
 public:
  virtual void setDescription(std::string const& description) = 0;

  /// The pack items in order, living as long as the pack. Empty pointers may be among them.
  virtual moxTypedCollection<moxZYNPackItem>& items() = 0;
  virtual moxTypedCollection<moxZYNPackItem> const& items() const = 0;
};
