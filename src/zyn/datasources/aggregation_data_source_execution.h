#pragma once

#include <memory>
#include <string>

#include "zyn/datasources/aggregation_data_source.h"
#include "zyn/datasources/definition_execution.h"

/// The run of one aggregation.
class AggregationDataSourceExecution final : public DefinitionExecution<AggregationDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxAggregationDataSourceExecution"; }

  /// The matrix has the columns that the definition declares. With a temporary table, the table
  /// bears the result's name and the matrix has no columns. Throws what the aggregator throws.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
