#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"

/// A source without data: it says for the SQL sources of a group which filters a user may use, and
/// how a filter given for one source answers for another. Registered as
/// "moxManageFilterDataSource".
class moxManageFilterDataSource : public virtual moxDataSource {
 public:
  /// How one source is governed. Under `name` stand the filters that a user gave.
  struct ManageFilterData {
    /// A filter of this column's name, or token, may be used on the source.
    struct AvaliableFiltersData {
      std::string filterName;
    };

    /// The filter `filterNameRelac` answers for a column of the source, or for a token when the
    /// name of the column holds "{{".
    struct RelatedFiltersData {
      std::string tableNameOrigin;   // the real table
      std::string columnNameOrigin;  // the name there
      std::string tableName;         // the table as the query calls it
      std::string columnName;        // the column as the query calls it
      std::string filterNameRelac;
    };

    std::string name;
    std::vector<AvaliableFiltersData> avaliable;
    std::vector<RelatedFiltersData> related;
  };

  virtual void setSources(std::vector<ManageFilterData> const& sources) = 0;
  virtual std::vector<ManageFilterData> getSources() const = 0;

  /// The same object is kept once; removing goes by the object.
  virtual void addFilter(std::shared_ptr<moxFilterSpecification> filter) = 0;
  virtual void removeFilter(std::shared_ptr<moxFilterSpecification> filter) = 0;
  using moxDataSource::getFilters;
  virtual std::vector<std::shared_ptr<moxFilterSpecification>> getFilters() = 0;
};
