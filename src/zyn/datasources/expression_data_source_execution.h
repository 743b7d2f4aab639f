#pragma once

#include <memory>
#include <string>

#include "zyn/datasources/definition_execution.h"
#include "zyn/datasources/expression_data_source.h"

/// One run of computed columns. They enter the input's own matrix, so that every holder of it sees
/// them, and the context knows it under both names; each further run adds them once more.
class ExpressionDataSourceExecution final : public DefinitionExecution<ExpressionDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxExpressionDataSourceExecution"; }

  /// Always true, also when the result's name was taken. Throws what
  /// moxDataMatrixExpressionProcessor throws, also for a matrix that the context lacks.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
