#pragma once

#include <memory>
#include <string>

#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "zyn/datasources/definition_execution.h"

/// The run of a manager, which gives nothing: whoever puts the run together hands its records to
/// the executions that they govern.
class ManageFilterDataSourceExecution final
    : public DefinitionExecution<moxManageFilterDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxManageFilterDataSourceExecution"; }

  /// True, and the context stays as it is.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext>,
                          std::string const&) const override {
    return true;
  }
};
