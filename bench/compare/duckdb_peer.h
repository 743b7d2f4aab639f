#pragma once

#include <memory>
#include <string>

#include "compare/check_sums.h"
#include "compare/floor_table.h"

namespace bench {

/// DuckDB in this process, with one thread and a table in memory. Failures are std::runtime_errors.
class DuckdbPeer {
 public:
  /// Loads the library from its file and fills the table "sale".
  DuckdbPeer(std::string const& library, FloorTable const& table);
  ~DuckdbPeer();

  /// Runs "create table sorted as select * from sale order by" these columns.
  void sortBy(std::string const& columns);
  void dropSorted();

  /// Of the sorted table; `order1` and `order2` are expressions, empty ones are left out.
  CheckSums sortedSums(std::string const& order1, std::string const& order2);

 private:
  class Api;

  std::unique_ptr<Api> api_;
};

}  // namespace bench
