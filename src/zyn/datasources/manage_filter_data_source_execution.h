#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"

/// The run of a manager, which gives nothing: whoever puts the run together hands its records to
/// the executions that they govern.
class ManageFilterDataSourceExecution final : public virtual moxDataSourceExecution {
 public:
  /// `dataSource` is not empty.
  explicit ManageFilterDataSourceExecution(
      std::shared_ptr<moxManageFilterDataSource const> dataSource)
      : dataSource_(std::move(dataSource)) {}

  std::string name() const override { return "moxManageFilterDataSourceExecution"; }

  /// True, and the context stays as it is.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext>,
                          std::string const&) const override {
    return true;
  }
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const& relations) const override {
    externalRelations_ = relations;
  }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return dataSource_->getFilters();
  }

 private:
  mutable std::vector<std::pair<std::string, std::string>> externalRelations_;
  std::shared_ptr<moxManageFilterDataSource const> const dataSource_;
};
