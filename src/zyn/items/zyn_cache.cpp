#include "zyn/items/zyn_cache.h"

#include "mox/core/application.h"
#include "mox/core/session.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_collection.h"
#include "zyn/items/item_map.h"

void zynCache::appendCollection(std::shared_ptr<moxZYNCollection> collection) {
  if (!collection) {
    return;
  }
  std::string const library = collection->getParentLibraryName();
  for (auto const& item : collection->items().get()) {
    if (item) {
      item_map::enter(item, library, [&](std::string const& key) { items_[key].push_back(item); });
    }
  }
  if (auto const* const report = dynamic_cast<moxZYNLoadReport const*>(collection.get())) {
    auto const more = report->skippedElements();
    skipped_.insert(skipped_.end(), more.begin(), more.end());
  }
}

std::shared_ptr<moxZYNItem> zynCache::getCollection(std::string const& description) {
  auto const session = sessionCache();
  return session ? session->getCollection(description) : item_map::find(items_, description);
}

std::vector<std::shared_ptr<moxZYNItem const>> zynCache::getItemsByType(
    std::type_info const& type) {
  auto const session = sessionCache();
  return session ? session->getItemsByType(type) : item_map::ofType(items_, type);
}

void zynCache::clear() {
  items_.clear();
  skipped_.clear();
}

/// The current user's cache, seeded; empty when nobody is logged in, and for a user who may not use
/// this library and so has none.
std::shared_ptr<moxZYNSessionCache> zynCache::sessionCache() const {
  if (moxSession == nullptr || !moxSession->currentUserSession()) {
    return {};
  }
  auto cache = moxApp->get<moxZYNSessionCache>("moxZYNSessionCache");
  if (cache) {
    cache->setItems(items_);
  }
  return cache;
}
