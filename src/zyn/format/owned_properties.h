#pragma once

#include <memory>

#include "mox/zyn/format/properties_collection.h"

class moxPropertiesObject;

/// An owner's hold on its collection: made by the registry, told its owner, and detached when the
/// owner goes, since its properties may be held for longer. A member of the owner.
class OwnedProperties {
 public:
  explicit OwnedProperties(moxPropertiesObject& owner);
  ~OwnedProperties();
  OwnedProperties(OwnedProperties const&) = delete;
  OwnedProperties& operator=(OwnedProperties const&) = delete;

  moxPropertiesCollection* operator->() const { return collection_.get(); }
  std::shared_ptr<moxPropertiesCollection> const& shared() const { return collection_; }

 private:
  std::shared_ptr<moxPropertiesCollection> collection_;
};
