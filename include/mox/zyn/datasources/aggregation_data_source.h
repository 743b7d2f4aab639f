#pragma once

#include <memory>
#include <string>

#include "mox/zyn/datasources/data_source.h"

class moxDataMatrixAggregator;

/// The rows of another source, grouped. Registered as "moxAggregationDataSource".
class moxAggregationDataSource : public virtual moxDataSource {
 public:
  /// The source whose rows are grouped.
  virtual void setDataSourceName(std::string const& dataSourceName) = 0;
  virtual std::string getDataSourceName() const = 0;

  /// The definition's own aggregator, never empty, for its author to fill.
  virtual std::shared_ptr<moxDataMatrixAggregator> getAggregator() const = 0;

  /// A new aggregator, and no source; the rest stays.
  virtual void reset() = 0;

  /// Whether the rows go into a temporary table of the result's name; the matrix is then without
  /// columns.
  virtual bool getGerarTabelaTemporaria() const = 0;
  virtual void setGerarTabelaTeporaria(bool gerarTabelaTemporaria) = 0;

  /// Whether a last column "data_count" tells how many rows each group has.
  virtual bool getCountColumn() const = 0;
  virtual void setCountColumn(bool countColumn) = 0;
};
