#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "zyn/items/item_map.h"

class zynCache final : public moxZYNCache, public moxZYNLoadReport {
 public:
  std::string name() const override { return "moxZYNCache"; }
  void appendCollection(std::shared_ptr<moxZYNCollection> collection) override;
  std::shared_ptr<moxZYNItem> getCollection(std::string const& description) override;
  std::vector<std::shared_ptr<moxZYNItem const>> getItemsByType(
      std::type_info const& type) override;
  void clear() override;

  std::vector<moxZYNSkippedElement> skippedElements() const override { return skipped_; }

 private:
  std::shared_ptr<moxZYNSessionCache> sessionCache() const;
  ItemMap& ownItems();

  std::shared_ptr<ItemMap> items_ = std::make_shared<ItemMap>();
  mutable std::atomic<bool> lent_ = false;  // sessions read items_, so that it must not change
  std::vector<moxZYNSkippedElement> skipped_;
};
