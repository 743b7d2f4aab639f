#include "zyn/items/zyn_cache.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_collection.h"
#include "zyn/frame/current_user.h"
#include "zyn/items/zyn_session_cache.h"

void zynCache::appendCollection(std::shared_ptr<moxZYNCollection> collection) {
  if (!collection) {
    return;
  }
  std::string const library = collection->getParentLibraryName();
  ItemMap& items = ownItems();
  for (auto const& item : collection->items().get()) {
    if (item) {
      enterItem(item, library, [&](std::string const& key) { items.entry(key).push_back(item); });
    }
  }
  if (auto const* const report = dynamic_cast<moxZYNLoadReport const*>(collection.get())) {
    auto const more = report->skippedElements();
    skipped_.insert(skipped_.end(), more.begin(), more.end());
  }
}

std::shared_ptr<moxZYNItem> zynCache::getCollection(std::string const& description) {
  auto const session = sessionCache();
  return session ? session->getCollection(description) : items_->find(description);
}

std::vector<std::shared_ptr<moxZYNItem const>> zynCache::getItemsByType(
    std::type_info const& type) {
  auto const session = sessionCache();
  return session ? session->getItemsByType(type) : items_->ofType(type);
}

void zynCache::clear() {
  items_ = std::make_shared<ItemMap>();
  lent_ = false;
  skipped_.clear();
}

/// The items, to be changed: sessions keep those that they were lent.
ItemMap& zynCache::ownItems() {
  if (lent_.exchange(false)) {
    items_ = std::make_shared<ItemMap>(*items_);
  }
  return *items_;
}

/// The current user's cache, seeded; empty when nobody is logged in, and for a user who may not use
/// this library and so has none.
std::shared_ptr<moxZYNSessionCache> zynCache::sessionCache() const {
  if (!currentUser()) {
    return {};
  }
  auto cache = moxApp->get<moxZYNSessionCache>("moxZYNSessionCache");
  if (auto* const reader = dynamic_cast<zynSessionCache*>(cache.get())) {
    lent_ = true;
    reader->borrowItems(items_);
  } else if (cache) {
    cache->setItems(items_->ordered());
  }
  return cache;
}
