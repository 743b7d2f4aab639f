#pragma once

#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"

/// One table out of several sources: each source in turn adds its columns to the rows so far, those
/// with conditions keeping only the rows that have a partner. Registered as "moxJoinDataSource".
class moxJoinDataSource : public virtual moxDataSource {
 public:
  struct JoinData {
    struct ColumnData {
      std::string columnName;   // in the source
      std::string columnAlias;  // in the result
      moxDataMatrixTypes::Types type = moxDataMatrixTypes::Int;
    };

    /// Rows meet where a column of this source equals a column of the result so far.
    struct JData {
      std::string columnNameOrigin;  // in this source
      std::string sourceNameRelac;   // for the editor: the other source
      std::string columnNameRelac;   // for the editor: its column
      std::string columnNameJoin;    // in the result
    };

    std::string sourceName;
    std::vector<ColumnData> columns;
    std::vector<JData> joins;
  };

  /// In the order of joining.
  virtual void setSources(std::vector<JoinData> const& sources) = 0;
  virtual std::vector<JoinData> getSources() const = 0;
};
