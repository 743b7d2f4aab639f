#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox/core/error.h"
#include "mox/zyn/items/typed_collection.h"

/// A list that tells its owner of each object that enters, so that the owner can make itself known
/// to it. It lives inside the owner, which is neither copied nor moved.
template <class T, class Owner>
class moxTypedCollectionImplementation : public virtual moxTypedCollection<T> {
 public:
  using Entered = void (Owner::*)(std::shared_ptr<T>);

  /// Without an owner, or without an operation of his, nobody is told.
  explicit moxTypedCollectionImplementation(Owner* owner = nullptr, Entered entered = nullptr)
      : owner_(owner), entered_(entered) {}

  moxTypedCollectionImplementation(moxTypedCollectionImplementation const&) = delete;
  moxTypedCollectionImplementation& operator=(moxTypedCollectionImplementation const&) = delete;

  void add(std::shared_ptr<T> item) override {
    if (std::find(items_.begin(), items_.end(), item) == items_.end()) {
      append(std::move(item));
    }
  }

  bool erase(std::shared_ptr<T> item) override { return std::erase(items_, item) > 0; }

  std::vector<std::shared_ptr<T>> get() override { return items_; }
  std::vector<std::shared_ptr<T const>> get() const override {
    return {items_.begin(), items_.end()};
  }

  /// As add, without a look at what is there: for objects just made. The owner is not told of an
  /// empty pointer.
  void append(std::shared_ptr<T> item) {
    items_.push_back(item);
    if (item && owner_ != nullptr && entered_ != nullptr) {
      (owner_->*entered_)(std::move(item));
    }
  }

  /// The list itself, for the owner's loops: get() copies.
  std::vector<std::shared_ptr<T>> const& all() const { return items_; }

 protected:
  std::vector<std::shared_ptr<T>>& mutableItems() { return items_; }

 private:
  Owner* const owner_;
  Entered const entered_;
  std::vector<std::shared_ptr<T>> items_;
};

/// The same, with an order that can be changed.
template <class T, class Owner>
class moxSortableTypedCollectionImplementation : public moxTypedCollectionImplementation<T, Owner>,
                                                 public virtual moxSortableTypedCollection<T> {
 public:
  using moxTypedCollectionImplementation<T, Owner>::moxTypedCollectionImplementation;

  void move(std::shared_ptr<T const> item, std::shared_ptr<T const> before) override {
    auto& items = this->mutableItems();
    auto const from = std::find(items.begin(), items.end(), item);
    auto const to = before ? std::find(items.begin(), items.end(), before) : items.end();
    if (from == items.end() || item == before || (before && to == items.end())) {
      return;
    }
    if (from < to) {
      std::rotate(from, from + 1, to);
    } else {
      std::rotate(to, from, from + 1);
    }
  }

  void replace(std::shared_ptr<T> item, std::shared_ptr<T const> original) override {
    if (!original) {
      throw moxDefaultErrorImpl<moxError>("Replace without original Item. Did you mean add?");
    }
    auto& items = this->mutableItems();
    auto const found = std::find(items.begin(), items.end(), original);
    if (found == items.end()) {
      throw moxDefaultErrorImpl<moxError>("Original doesn't belong to collection.");
    }
    *found = std::move(item);
  }
};

/// The same, with `Name` giving an object's name.
template <class T, class Owner, std::string (T::*Name)() const>
class moxNamedSortableTypedCollectionImplementation
    : public moxSortableTypedCollectionImplementation<T, Owner>,
      public virtual moxNamedSortableTypedCollection<T> {
 public:
  using moxSortableTypedCollectionImplementation<T,
                                                 Owner>::moxSortableTypedCollectionImplementation;

  std::shared_ptr<T> findByName(std::string_view name) override { return firstNamed(name); }
  std::shared_ptr<T const> findByName(std::string_view name) const override {
    return firstNamed(name);
  }

 private:
  std::shared_ptr<T> firstNamed(std::string_view name) const {
    for (auto const& item : this->all()) {
      if (item && (item.get()->*Name)() == name) {
        return item;
      }
    }
    return {};
  }
};
