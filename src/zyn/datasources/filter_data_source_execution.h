#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/filter_data_source.h"
#include "zyn/datasources/external_relations.h"

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
  void setDataSourceExternalRelation(ExternalRelations::Pairs const& relations) const override {
    externalRelations_.set(relations);
  }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return dataSource_->getFilters();
  }

 private:
  mutable ExternalRelations externalRelations_;
  std::shared_ptr<moxFilterDataSource const> const dataSource_;
};
