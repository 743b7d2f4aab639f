#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zyn/datasources/named_data_source.h"
#include "zyn/datasources/related_data_sources.h"

/// What the definitions share that compute their rows out of other sources' rows: they offer
/// no filters of their own, and read the sources that they name. `Interface` is theirs.
template <class Interface>
class DerivedDataSource : public NamedDataSource<Interface> {
 public:
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }

  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(
      bool deep) const override {
    return relatedDataSources(this->getName(), inputNames(), deep);
  }

 protected:
  /// The sources that are read, as the definition names them, in its order.
  virtual std::vector<std::string> inputNames() const = 0;
};
