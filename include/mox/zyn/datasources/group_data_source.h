#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/dado_data_source.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/items/typed_collection.h"

class moxFilterDataSource;

/// Several sources that run as one, in a context of their own, of which one gives the result.
/// Registered as "moxGroupDataSource".
class moxGroupDataSource : public virtual moxDataSource {
 public:
  using Members = moxSortableTypedCollection<moxDadoDataSource>;

  /// The members in the order of running. The list belongs to the group.
  virtual Members& dataSources() = 0;
  virtual Members const& dataSources() const = 0;

  /// The member whose matrix is the result.
  virtual void setOutputSource(std::string const& member) = 0;
  virtual std::string getOutputSource() const = 0;

  /// The member whose filters are the group's, and to which filters aimed at the group go.
  virtual void setFilterSource(std::string const& member) = 0;
  virtual std::string getFilterSource() const = 0;
};

/// The run of a group, with what an outer group does to its filters.
class moxGroupDataSourceExecution : public virtual moxDataSourceExecution {
 public:
  using FilterDataSource = std::shared_ptr<moxFilterDataSource const>;
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

  /// Managers and filter sources for the member that the group's filters go to, in their order.
  virtual void setManageFiltersData(std::vector<ManageFilterData> const& managers) = 0;
  virtual void addManageFiltersData(ManageFilterData const& manager) = 0;
  virtual void setFiltersDataSource(std::vector<FilterDataSource> const& filterSources) = 0;
  virtual void addFiltersDataSource(FilterDataSource filterSource) = 0;
};
