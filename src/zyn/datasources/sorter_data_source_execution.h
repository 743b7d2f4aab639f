#pragma once

#include <memory>
#include <string>

#include "zyn/datasources/definition_execution.h"
#include "zyn/datasources/sorter_data_source.h"

/// The run of one sorter.
class SorterDataSourceExecution final : public DefinitionExecution<SorterDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxSorterDataSourceExecution"; }

  /// Where there is nothing to sort by, the very input gets a second name. The user's answers are
  /// those that the context has for the result. Throws moxError "Impossível criar ordenador " with
  /// the definition's name when there are answers and none of them is an order.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
