#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"

class moxFilterDataSource;

/// The run of a SQL source, with what other members of the run do to its statement.
class moxSQLDataSourceExecution : public virtual moxDataSourceExecution {
 public:
  using FilterDataSource = std::shared_ptr<moxFilterDataSource const>;
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

  /// The source whose rows restrict this one; empty for none.
  virtual std::string getFilterDataSource() const = 0;

  /// (column of this query, column of that source).
  virtual std::pair<std::string, std::string> getDataSourceFilterRelation() const = 0;

  /// Keeps `columnFilter` of this query to the values that `columnRelation` has in the matrix of
  /// `filterDataSource`, which must run before. False, and nothing changes, when one is empty.
  virtual bool setDataSourceFilterRelation(std::string const& filterDataSource,
                                           std::string const& columnRelation,
                                           std::string const& columnFilter) = 0;

  /// Filter sources that change the statement, and managers that rule the filters, in their order.
  virtual void setFiltersDataSource(std::vector<FilterDataSource> const& filterSources) = 0;
  virtual void setManageFiltersData(std::vector<ManageFilterData> const& managers) = 0;
  virtual void addFiltersDataSource(FilterDataSource filterSource) = 0;
  virtual void addManageFiltersData(ManageFilterData const& manager) = 0;
};
