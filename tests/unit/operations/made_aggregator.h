#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "support/test_host.h"

namespace mox_test {

/// One function of an aggregator.
struct FunctionOf {
  std::string registeredName;
  std::string source;
  std::string target;
};

inline std::shared_ptr<moxCommonAggregationFunction> function(TestHost& host,
                                                              std::string const& registeredName,
                                                              std::string const& source,
                                                              std::string const& target) {
  auto made = host.get<moxCommonAggregationFunction>(registeredName);
  made->setSourceColumn(source);
  made->setTargetColumn(target);
  return made;
}

inline std::shared_ptr<moxDataMatrixAggregator> aggregator(
    TestHost& host, std::vector<std::string> const& indexes,
    std::vector<FunctionOf> const& functions) {
  auto made = host.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
  for (auto const& index : indexes) {
    made->pushIndexColumn(index);
  }
  for (auto const& each : functions) {
    made->addFunction(function(host, each.registeredName, each.source, each.target));
  }
  return made;
}

}  // namespace mox_test
