#include "zyn/items/zyn_session_cache.h"

#include <algorithm>

#include "mox/core/application.h"
#include "mox/core/session.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_collection.h"

void zynSessionCache::appendCollection(std::shared_ptr<moxZYNCollection> collection) {
  if (!collection || moxSession == nullptr) {
    return;
  }
  std::string const library = collection->getParentLibraryName();
  if (!moxSession->sessionManager().isLibraryPermitted(moxSession->currentSession(), library)) {
    return;
  }
  seed();
  std::lock_guard const lock(mutex_);
  for (auto const& item : collection->items().get()) {
    if (item) {
      enterItem(item, library, [&](std::string const& key) { put(key, item); });
    }
  }
}

std::shared_ptr<moxZYNItem> zynSessionCache::getCollection(std::string const& description) {
  std::lock_guard const lock(mutex_);
  return items_->find(description);
}

std::vector<std::shared_ptr<moxZYNItem const>> zynSessionCache::getItemsByType(
    std::type_info const& type) {
  std::lock_guard const lock(mutex_);
  return items_->ofType(type);
}

void zynSessionCache::clear() {
  std::lock_guard const lock(mutex_);
  items_ = std::make_shared<ItemMap const>();
  own_.reset();
  appended_.clear();
}

void zynSessionCache::setItems(moxZYNItemMap const& items) {
  borrowItems(std::make_shared<ItemMap const>(items));
}

void zynSessionCache::borrowItems(std::shared_ptr<ItemMap const> items) {
  std::lock_guard const lock(mutex_);
  if (items_->empty()) {
    items_ = std::move(items);
  }
}

/// Any look-up by a user seeds his session's cache. It has to happen before the first own item
/// stands here: a cache that holds something is not seeded any more.
void zynSessionCache::seed() {
  if (auto const shared = moxApp->get<moxZYNCache>("moxZYNCache")) {
    shared->getCollection({});
  }
}

void zynSessionCache::put(std::string const& key, std::shared_ptr<moxZYNItem> const& item) {
  auto const visible = items_->find(key);
  auto& entry = ownItems().entry(key);
  if (visible) {
    *std::find(entry.begin(), entry.end(), visible) = item;
  } else {
    entry.push_back(item);
  }
  appended_[key].push_back(item);
}

ItemMap& zynSessionCache::ownItems() {
  if (!own_) {
    own_ = std::make_shared<ItemMap>(*items_);
    items_ = own_;
  }
  return *own_;
}
