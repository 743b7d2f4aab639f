#pragma once

#include <memory>

#include "mox/core/plugin_base.h"

class moxPropertiesCollection;

/// An object whose settings are properties. It owns its collection, and is neither copied nor
/// moved, since the properties point at its members. Its destructor detaches the collection.
class moxPropertiesObject : public virtual moxPluginBase {
 public:
  /// The object's collection, never empty.
  virtual std::shared_ptr<moxPropertiesCollection> getProperties() const = 0;

  /// A setting was changed or loaded through its property. Called by the collection.
  virtual void propertyChanged() = 0;
};
