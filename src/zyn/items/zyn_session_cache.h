#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"
#include "zyn/items/item_map.h"

/// Several threads may work for one session: everything in here is guarded by one mutex.
class zynSessionCache final : public moxZYNSessionCache {
 public:
  std::string name() const override { return "moxZYNSessionCache"; }
  void appendCollection(std::shared_ptr<moxZYNCollection> collection) override;
  std::shared_ptr<moxZYNItem> getCollection(std::string const& description) override;
  std::vector<std::shared_ptr<moxZYNItem const>> getItemsByType(
      std::type_info const& type) override;
  void clear() override;
  void setItems(moxZYNItemMap const& items) override;

  /// As setItems without a copy: nobody changes a map that was lent, so that thousands of sessions
  /// read one.
  void borrowItems(std::shared_ptr<ItemMap const> items);

 private:
  void seed();
  void put(std::string const& key, std::shared_ptr<moxZYNItem> const& item);
  ItemMap& ownItems();

  std::mutex mutex_;
  std::shared_ptr<ItemMap const> items_ = std::make_shared<ItemMap const>();
  std::shared_ptr<ItemMap> own_;  // items_, once the session has some of its own
  moxZYNItemMap appended_;        // those that the session brought itself
};
