#pragma once

#include <memory>
#include <string>

#include "zyn/datasources/definition_execution.h"
#include "zyn/datasources/union_data_source.h"

/// One run of a union.
class UnionDataSourceExecution final : public DefinitionExecution<UnionDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxUnionDataSourceExecution"; }

  /// False when the context lacks the matrix of a source. Otherwise true, also when the result's
  /// name was taken and the first matrix of that name stays. Throws what moxDataMatrixUnion throws.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
