#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"
#include "zyn/datasources/related_data_sources.h"

/// What the definitions share that compute their rows out of other sources' rows: they bear a name,
/// offer no filters of their own, and read the sources that they name. `Interface` is theirs.
template <class Interface>
class DerivedDataSource : public Interface {
 public:
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::string getParentLibName() const override { return parentLibraryName_; }

  void setName(std::string const& name) override { name_ = name; }
  std::string getName() const override { return name_; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override { return {}; }

  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(
      bool deep) const override {
    return relatedDataSources(inputNames(), deep);
  }

 protected:
  /// The sources that are read, as the definition names them, in its order.
  virtual std::vector<std::string> inputNames() const = 0;

 private:
  std::string name_;
  std::string parentLibraryName_;
};
