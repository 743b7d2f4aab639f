#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/zyn/format/properties_collection.h"
#include "mox/zyn/format/property.h"

/// What all properties share: names, visibility, and the way to the collection.
template <class Interface>
class PropertyBase : public virtual Interface, public moxDetachable {
 public:
  std::string propertyName() const override { return name_; }
  std::string propertyDescription() const override { return description_; }
  void setCollection(std::weak_ptr<moxPropertiesCollection> collection) override {
    collection_ = std::move(collection);
  }
  void setUserVisible(bool visible) override { userVisible_ = visible; }
  bool userVisible() const override { return userVisible_; }

 protected:
  PropertyBase() = default;
  PropertyBase(std::string name, std::string description)
      : name_(std::move(name)), description_(std::move(description)) {}

  void setNames(std::string const& name, std::string const& description) {
    name_ = name;
    description_ = description;
  }

  /// Silent when the collection is gone.
  void tellOwner() const {
    if (auto const collection = collection_.lock()) {
      collection->propertyChanged();
    }
  }

 private:
  std::string name_;
  std::string description_;
  bool userVisible_ = true;
  std::weak_ptr<moxPropertiesCollection> collection_;
};
