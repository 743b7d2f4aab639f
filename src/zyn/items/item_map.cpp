#include "zyn/items/item_map.h"

#include <unordered_set>

#include "mox/core/application.h"
#include "mox/core/session.h"
#include "mox/core/type_service.h"
#include "mox/zyn/frame/plugin_entry.h"

namespace item_map {

namespace {

bool currentSessionMayUse(moxZYNItem const& item) {
  return moxSession == nullptr || moxSession->sessionManager().isLibraryPermitted(
                                      moxSession->currentSession(), item.getParentLibName());
}

}  // namespace

void enter(std::shared_ptr<moxZYNItem> const& item, std::string const& library,
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

std::shared_ptr<moxZYNItem> find(moxZYNItemMap const& map, std::string const& description) {
  auto const entry = map.find(description);
  if (entry == map.end()) {
    return {};
  }
  for (auto const& item : entry->second) {
    if (item && currentSessionMayUse(*item)) {
      return item;
    }
  }
  return {};
}

std::vector<std::shared_ptr<moxZYNItem const>> ofType(moxZYNItemMap const& map,
                                                      std::type_info const& type) {
  auto const& types = moxApp->typeService();
  std::vector<std::shared_ptr<moxZYNItem const>> found;
  std::unordered_set<moxZYNItem const*> seen;
  for (auto const& entry : map) {
    for (auto const& item : entry.second) {
      moxZYNItem const* const object = item.get();
      if (types.isDerivedFrom(typeid(*object), type) && seen.insert(object).second) {
        found.push_back(item);
      }
    }
  }
  return found;
}

}  // namespace item_map
