#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

class moxDataSourceExecutionContext;

/// For hosts that prepare the runs of a search themselves: they aim filters at several sources,
/// choose units and keep a report. A second face of the search runner, asked for by dynamic_cast;
/// used by the runner's thread.
class moxSearchRunControl {
 public:
  virtual ~moxSearchRunControl() = default;

  /// As performSql, in a context that the caller has made and furnished and that has run nothing
  /// yet. The runner's own filters join those that are there. The run is for `units`; without any,
  /// for those that performSql takes.
  virtual void performSqlIn(std::shared_ptr<moxDataSourceExecutionContext> context,
                            std::vector<int> const& units) = 0;

  /// Sorts the rows that are held by columns, each with whether it is descending; the first decides
  /// most, and rows equal in all keep their order. Cursors of before stay with the rows of before.
  /// False, and nothing changes, before the first run and when there is no column of some name.
  virtual bool sortRows(std::vector<std::pair<std::string, bool>> const& columns) = 0;
};
