#include "zyn/items/item_map.h"

#include <unordered_set>
#include <utility>

#include "mox/core/application.h"
#include "mox/core/session.h"
#include "mox/core/type_service.h"
#include "mox/zyn/frame/plugin_entry.h"

namespace {

bool currentSessionMayUse(moxZYNItem const& item) {
  return moxSession == nullptr || moxSession->sessionManager().isLibraryPermitted(
                                      moxSession->currentSession(), item.getParentLibName());
}

}  // namespace

ItemMap::ItemMap(moxZYNItemMap items) : ordered_(std::move(items)) {
  byDescription_.reserve(ordered_.size());
  for (auto& [description, entry] : ordered_) {
    byDescription_.emplace(description, &entry);
  }
}

ItemMap::Items& ItemMap::entry(std::string const& description) {
  auto const [place, isNew] = ordered_.try_emplace(description);
  if (isNew) {
    byDescription_.emplace(place->first, &place->second);
  }
  return place->second;
}

std::shared_ptr<moxZYNItem> ItemMap::find(std::string_view description) const {
  auto const entry = byDescription_.find(description);
  if (entry == byDescription_.end()) {
    return {};
  }
  for (auto const& item : *entry->second) {
    if (item && currentSessionMayUse(*item)) {
      return item;
    }
  }
  return {};
}

std::vector<std::shared_ptr<moxZYNItem const>> ItemMap::ofType(std::type_info const& type) const {
  auto const& types = moxApp->typeService();
  std::vector<std::shared_ptr<moxZYNItem const>> found;
  std::unordered_set<moxZYNItem const*> seen;
  for (auto const& entry : ordered_) {
    for (auto const& item : entry.second) {
      moxZYNItem const* const object = item.get();
      if (types.isDerivedFrom(typeid(*object), type) && seen.insert(object).second) {
        found.push_back(item);
      }
    }
  }
  return found;
}

void enterItem(std::shared_ptr<moxZYNItem> const& item, std::string const& library,
               std::function<void(std::string const& key)> const& enter) {
  auto const related = item->getZynItemRelated();
  std::string const own = item->description();
  item->setParentLibraryName(library);
  if (related && related != item) {
    related->setParentLibraryName(library);
    std::string const key = related->description();
    enter(key);
    if (key == own) {
      return;
    }
  }
  enter(own);
}
