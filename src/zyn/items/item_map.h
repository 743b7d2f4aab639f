#pragma once

#include <functional>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"

/// What the two caches have in common: how items are entered in a map, and found again.
namespace item_map {

using Items = std::vector<std::shared_ptr<moxZYNItem>>;

/// Tells the item, and the one that is related to it, the library; then hands each description
/// under which the item is to be found to `enter`. That is the related item's, if there is one, and
/// its own where that differs: every item is found by its own description.
void enter(std::shared_ptr<moxZYNItem> const& item, std::string const& library,
           std::function<void(std::string const& key)> const& enter);

/// The first item of that description whose library the current session may use; without a session
/// service simply the first. Empty when there is none.
std::shared_ptr<moxZYNItem> find(moxZYNItemMap const& map, std::string const& description);

/// Every item of the class or derived from it, each once, in the order of the map. Throws
/// std::bad_typeid for an empty pointer in the map.
std::vector<std::shared_ptr<moxZYNItem const>> ofType(moxZYNItemMap const& map,
                                                      std::type_info const& type);

}  // namespace item_map
