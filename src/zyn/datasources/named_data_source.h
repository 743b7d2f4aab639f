#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"

/// What all definitions of sources share: they bear a name and know their library, and unless they
/// say otherwise, belong to no other item and leave nothing to choose. `Interface` is theirs.
template <class Interface>
class NamedDataSource : public Interface {
 public:
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::string getParentLibName() const override { return parentLibraryName_; }

  void setName(std::string const& name) override { name_ = name; }
  std::string getName() const override { return name_; }
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override { return {}; }

 private:
  std::string name_;
  std::string parentLibraryName_;
};
