#pragma once

#include <memory>
#include <mutex>

#include "mox/zyn/format/properties_collection.h"

/// An owner's hold on its collection: made by the registry when somebody first asks for it, and
/// detached when the owner goes, since its properties may be held for longer. A member of the
/// owner. Owners are shared by threads, so making it is guarded.
class LazyProperties {
 public:
  LazyProperties() = default;
  ~LazyProperties();
  LazyProperties(LazyProperties const&) = delete;
  LazyProperties& operator=(LazyProperties const&) = delete;

  /// `fill` tells a new collection its owner and gives it its properties.
  template <class Fill>
  std::shared_ptr<moxPropertiesCollection> get(Fill const& fill) const {
    std::call_once(made_, [&] {
      auto collection = newCollection();
      fill(*collection);
      collection_ = std::move(collection);
    });
    return collection_;
  }

 private:
  static std::shared_ptr<moxPropertiesCollection> newCollection();

  mutable std::once_flag made_;
  mutable std::shared_ptr<moxPropertiesCollection> collection_;
};
