#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_load_report.h"

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

  moxZYNItemMap items_;
  std::vector<moxZYNSkippedElement> skipped_;
};
