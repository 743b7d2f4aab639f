#pragma once

#include <memory>
#include <string>

#include "mox/zyn/datasources/filter_data_source.h"
#include "zyn/datasources/definition_execution.h"

/// The run of one filter source: gives the matrix of the source that it changed a second name. The
/// change itself is made by that source's own run.
class FilterDataSourceExecution final
    : public DefinitionExecution<moxFilterDataSource, moxFilterDataSourceExecution> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxFilterDataSourceExecution"; }

  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
