#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/filter_data_source.h"

/// The run of one filter source: gives the matrix of the source that it changed a second name. The
/// change itself is made by that source's own run.
class FilterDataSourceExecution final : public virtual moxFilterDataSourceExecution {
 public:
  /// `dataSource` is not empty.
  explicit FilterDataSourceExecution(std::shared_ptr<moxFilterDataSource const> dataSource)
      : dataSource_(std::move(dataSource)) {}

  std::string name() const override { return "moxFilterDataSourceExecution"; }

  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const& relations) const override {
    externalRelations_ = relations;
  }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return dataSource_->getFilters();
  }

 private:
  std::string inputName() const;

  mutable std::vector<std::pair<std::string, std::string>> externalRelations_;
  std::shared_ptr<moxFilterDataSource const> const dataSource_;
};
