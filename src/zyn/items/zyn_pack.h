#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/items/zyn_load_report.h"
#include "mox/zyn/items/zyn_pack.h"
#include "zyn/items/typed_collection.h"

class zynPack final : public moxZYNPack, public moxZYNLoadReport {
 public:
  std::string name() const override { return "moxZYNPack"; }
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  std::string description() const override { return description_; }
  int getTipo() const override { return kPack; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::string getParentLibName() const override { return parentLibraryName_; }

  void setDescription(std::string const& description) override { description_ = description; }
  moxTypedCollection<moxZYNPackItem>& items() override { return items_; }
  moxTypedCollection<moxZYNPackItem> const& items() const override { return items_; }

  std::vector<moxZYNSkippedElement> skippedElements() const override { return skipped_; }

 private:
  moxTypedCollectionImplementation<moxZYNPackItem, zynPack> items_;
  std::string description_;
  std::string parentLibraryName_;
  std::vector<moxZYNSkippedElement> skipped_;
};
