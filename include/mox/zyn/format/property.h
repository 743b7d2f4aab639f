#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxPropertiesCollection;
class moxXMLNode;

/// A named view of one setting of another object, its owner: by it the setting is kept in XML and
/// shown on settings screens. It belongs to the owner's collection and to the owner's thread. It
/// may be held longer than the owner lives: it then reads as the kind's empty value, and what is
/// set is ignored.
class moxProperty : public virtual moxPluginBase {
 public:
  /// Writes the setting below the node. False, without writing, for an empty node, and when the
  /// setting cannot be put into words.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;

  /// Takes the setting from below the node and tells the owner, through the collection, that it
  /// changed. False, without a change, for an empty node. Constant because it changes the owner,
  /// not the property.
  virtual bool load(std::shared_ptr<moxXMLNode> node) const = 0;

  /// The technical name, which is the key in XML. Part of the file's format.
  virtual std::string propertyName() const = 0;

  /// The name that the user sees.
  virtual std::string propertyDescription() const = 0;

  /// Who is told of changes. Called by the collection when the property is added.
  virtual void setCollection(std::weak_ptr<moxPropertiesCollection> collection) = 0;

  /// Whether settings screens show the property; true from the start.
  virtual void setUserVisible(bool visible) = 0;
  virtual bool userVisible() const = 0;
};
