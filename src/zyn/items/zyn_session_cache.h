#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"

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

 private:
  void seed();
  void put(std::string const& key, std::shared_ptr<moxZYNItem> const& item);

  std::mutex mutex_;
  moxZYNItemMap items_;
  moxZYNItemMap appended_;  // those that the session brought itself
};
