#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxXMLNode;

/// A definition: something that a developer declared in XML and that is found by its description.
/// The registered name of the class is the name of its element. Items are loaded once and then
/// shared by collections, caches and sessions: constant operations may be called from any thread,
/// and nobody changes an item in place who has not made a copy of it first.
class moxZYNItem : public virtual moxPluginBase {
 public:
  /// What kind of definition a class is. The numbers are part of the interface.
  enum Tipo {
    kSearch = 0,
    kPack = 1,
    kFormatter = 2,
    kDataSource = 3,
    kIndicator = 4,
    kDataProcessor = 5
  };

  /// Fills the object from its element. False when the element is not usable; the object is then
  /// not to be used either. An empty node gives false.
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// Writes the object into its element; false when it could not, and for an empty node.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;

  /// The title, and the key under which collections, caches and users find the item.
  virtual std::string description() const = 0;

  /// The kind; one of Tipo, fixed by the class.
  virtual int getTipo() const = 0;

  /// An item under whose description the caches keep this one; empty for most.
  virtual std::shared_ptr<moxZYNItem> getZynItemRelated() = 0;

  /// The library whose collection brought the item; empty until it is told.
  virtual void setParentLibraryName(std::string const& libraryName) = 0;
  virtual std::string getParentLibName() const = 0;
};
