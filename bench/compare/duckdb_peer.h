#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "compare/check_sums.h"
#include "compare/expression_floor.h"
#include "compare/floor_table.h"

namespace bench {

/// DuckDB in this process, with one thread and a table in memory. Failures are std::runtime_errors.
class DuckdbPeer {
 public:
  /// Loads the library from its file and fills the table "sale".
  DuckdbPeer(std::string const& library, FloorTable const& table);

  /// Without tables.
  explicit DuckdbPeer(std::string const& library);
  ~DuckdbPeer();

  /// Runs a statement that gives no rows.
  void run(std::string const& statement);

  /// The one number that a statement gives.
  std::int64_t wholeNumber(std::string const& statement);

  /// Creates a table of doubles and fills it.
  void fillNumbers(std::string const& tableName,
                   std::vector<std::pair<char const*, FloorNumbers const*>> const& columns,
                   std::size_t rows);

  /// Creates a table of sales and fills it.
  void fillSales(std::string const& tableName, FloorTable const& table);

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
