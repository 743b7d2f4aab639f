#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"
#include "mox/zyn/items/typed_collection.h"
#include "mox/zyn/items/zyn_item.h"

class moxXMLNode;

/// The definitions of one library, as they stand in one document. Registered as "moxZYNCollection",
/// which is also the name of the document's root element. It belongs to one thread while it is
/// filled; afterwards its constant operations may be called from any thread.
class moxZYNCollection : public virtual moxPluginBase {
 public:
  /// Names the node, writes the library, and adds an element for each item in order. An item that
  /// cannot be saved ends the list; the result is true all the same. False for an empty node.
  virtual bool serialize(std::shared_ptr<moxXMLNode> node) const = 0;

  /// Reads the library, and adds an item for each element behind those that are there. The name of
  /// the element is the registered name of the item's class. An item that refuses its element ends
  /// the list, and is not added; the result is true all the same. A registered class that is no
  /// item leaves an empty pointer in the list; an element of an unknown class is passed over (see
  /// moxZYNLoadReport). False for an empty node.
  virtual bool unserialize(std::shared_ptr<moxXMLNode> node) = 0;

  /// The first item whose description equals the argument byte by byte; empty when there is none.
  virtual std::shared_ptr<moxZYNItem> findItem(std::string const& description) const = 0;

  /// The items in order, living as long as the collection. Empty pointers may be among them.
  virtual moxSortableTypedCollection<moxZYNItem>& items() = 0;
  virtual moxSortableTypedCollection<moxZYNItem> const& items() const = 0;

  /// The library that the definitions belong to; empty when none was named.
  virtual std::string getParentLibraryName() const = 0;
  virtual void setParentLibraryName(std::string const& libraryName) = 0;
};
