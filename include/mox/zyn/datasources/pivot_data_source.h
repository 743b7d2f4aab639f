#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"
#include "mox/zyn/datasources/data_source.h"

class moxDataMatrixColumn;

/// The rows of another source as a cross table. Runs inside a report, which lends the formatters.
/// Registered as "moxDataSourcePivoting".
class moxPivotDataSource : public virtual moxDataSource {
 public:
  /// Which column of the source gave which column of the cross table, for the report.
  class moxProcessRelation : public virtual moxPluginBase {
   public:
    using Relation =
        std::pair<std::shared_ptr<moxDataMatrixColumn>, std::shared_ptr<moxDataMatrixColumn>>;

    virtual std::vector<Relation> getRelation() const = 0;
  };

  using Pair = std::pair<std::string, std::string>;

  /// The source that is turned.
  virtual void setDataSourceName(std::string const& dataSourceName) = 0;
  virtual std::string getDataSourceName() const = 0;

  /// (column, registered name of the aggregation function)
  virtual std::vector<Pair> getCellsPivot() const = 0;

  /// (column, the report's formatter of its labels)
  virtual std::vector<Pair> getColumnsPivot() const = 0;
  virtual std::vector<std::string> getRowsPivot() const = 0;
  virtual void setCellsPivot(std::vector<Pair> const& cells) = 0;
  virtual void setColumnsPivot(std::vector<Pair> const& columns) = 0;
  virtual void setRowsPivot(std::vector<std::string> const& rows) = 0;
};
