#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"

/// Items by description: found in constant time, walked in order. Both caches are made of it.
class ItemMap {
 public:
  using Items = moxZYNItemMap::mapped_type;

  ItemMap() = default;
  explicit ItemMap(moxZYNItemMap items);
  ItemMap(ItemMap const& other) : ItemMap(other.ordered_) {}
  ItemMap& operator=(ItemMap const&) = delete;

  bool empty() const { return ordered_.empty(); }
  moxZYNItemMap const& ordered() const { return ordered_; }

  /// The items of a description, in the order of loading; made when there are none yet.
  Items& entry(std::string const& description);

  /// The first item of that description whose library the current session may use; without a
  /// session service simply the first. Empty when there is none.
  std::shared_ptr<moxZYNItem> find(std::string_view description) const;

  /// Every item of the class or derived from it, each once, by description. Throws std::bad_typeid
  /// for an empty pointer in the map.
  std::vector<std::shared_ptr<moxZYNItem const>> ofType(std::type_info const& type) const;

 private:
  moxZYNItemMap ordered_;
  std::unordered_map<std::string_view, Items*> byDescription_;  // views of the keys above
};

/// Tells the item, and the one that is related to it, the library; then hands each description
/// under which the item is to be found to `enter`. That is the related item's, if there is one, and
/// its own where that differs: every item is found by its own description.
void enterItem(std::shared_ptr<moxZYNItem> const& item, std::string const& library,
               std::function<void(std::string const& key)> const& enter);
