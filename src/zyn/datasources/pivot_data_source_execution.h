#pragma once

#include <memory>
#include <string>

#include "zyn/datasources/definition_execution.h"
#include "zyn/datasources/pivot_data_source.h"

/// One run of a cross table, inside a report.
class DataSourcePivotingExecution final : public DefinitionExecution<DataSourcePivoting> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxDataSourcePivotingExecution"; }

  /// Registers the cross table and hands it to the report. Always true, also when the result's name
  /// was taken. Throws moxError "Fonte de dados X não localizada." with the input's name in the
  /// definition when the context lacks its matrix, "Contexto de relatório não informado." without a
  /// report, and what moxDataMatrixPivoting throws.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
