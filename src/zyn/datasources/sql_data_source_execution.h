#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"

class SQLStatementRun;
class moxDataMatrixSQLFilter;

/// The run of one SQL source. Keeps the definition alive; what the run makes goes into the context,
/// and nothing is kept here from one run to the next.
class SQLDataSourceExecution final : public virtual moxSQLDataSourceExecution {
 public:
  /// `dataSource` is not empty.
  explicit SQLDataSourceExecution(std::shared_ptr<moxSQLDataSource const> dataSource);

  std::string name() const override { return "moxSQLDataSourceExecution"; }

  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const& relations) const override;
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override;

  std::string getFilterDataSource() const override { return relation_.filterDataSource; }
  std::pair<std::string, std::string> getDataSourceFilterRelation() const override;
  bool setDataSourceFilterRelation(std::string const& filterDataSource,
                                   std::string const& columnRelation,
                                   std::string const& columnFilter) override;
  void setFiltersDataSource(std::vector<FilterDataSource> const& filterSources) override;
  void setManageFiltersData(std::vector<ManageFilterData> const& managers) override;
  void addFiltersDataSource(FilterDataSource filterSource) override;
  void addManageFiltersData(ManageFilterData const& manager) override;

  /// Takes the restriction by another source's rows away.
  void clearDataSourceFilter() const;

  /// The restriction by another source's rows, as the context holds them now. Empty when none is
  /// set, when that source or its column is not there, and for a column of dates or blobs.
  std::shared_ptr<moxDataMatrixSQLFilter> createDataSourceFilter(
      moxDataSourceExecutionContext const& context) const;

 private:
  struct Relation {
    std::string filterDataSource;
    std::string columnRelation;  // in that source
    std::string columnFilter;    // in this query
  };

  void restrict(SQLStatementRun& run, moxDataSourceExecutionContext const& context) const;
  std::string restriction() const;
  std::string whyUnrestricted(moxDataSourceExecutionContext const& context) const;

  mutable Relation relation_;  // all three are set, or none
  std::vector<ManageFilterData> managers_;
  mutable std::vector<std::pair<std::string, std::string>> externalRelations_;
  std::vector<FilterDataSource> filterSources_;
  std::shared_ptr<moxSQLDataSource const> const dataSource_;
};
