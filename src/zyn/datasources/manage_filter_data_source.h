#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "zyn/datasources/named_data_source.h"

/// The definition of one filter screen for several queries. What its records do is done by the runs
/// of the queries, which a group hands them to.
class ManageFilterDataSource final : public NamedDataSource<moxManageFilterDataSource>,
                                     public std::enable_shared_from_this<ManageFilterDataSource> {
 public:
  using Filter = std::shared_ptr<moxFilterSpecification>;

  std::string name() const override { return "moxManageFilterDataSource"; }

  /// Adds to what is there, and so is meant for a new object. Throws for a filter as
  /// filter_elements::read does, and is then half read.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {filters_.begin(), filters_.end()};
  }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool deep) const override;
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setSources(std::vector<ManageFilterData> const& sources) override { sources_ = sources; }
  std::vector<ManageFilterData> getSources() const override { return sources_; }
  void addFilter(Filter filter) override;
  void removeFilter(Filter filter) override { std::erase(filters_, filter); }
  std::vector<Filter> getFilters() override { return filters_; }

 private:
  std::vector<Filter> filters_;  // none is empty
  std::vector<ManageFilterData> sources_;
};
