#pragma once

#include <memory>
#include <string>

#include "mox/zyn/items/formatter_zyn_item.h"

class FormatterZynItem final : public moxFormatterZYNItem {
 public:
  std::string name() const override { return "moxFormatterZYNItem"; }
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  std::string description() const override;
  int getTipo() const override { return kFormatter; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::string getParentLibName() const override { return parentLibraryName_; }

  void setFormatterPlugin(std::string const& registeredName) override;
  std::shared_ptr<moxGenericFormatter> getFormatter() override { return formatter_; }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }
  void setFormatter(std::shared_ptr<moxGenericFormatter> formatter) override {
    formatter_ = std::move(formatter);
  }
  void setDescription(std::string const& description) override;

 private:
  std::shared_ptr<moxGenericFormatter> formatter_;
  std::string parentLibraryName_;
};
