#pragma once

#include <mysql.h>
#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <string>

namespace bench {

struct LineEnd {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(MYSQL* database) const { mysql_close(database); }
};
using SqliteLine = std::unique_ptr<sqlite3, LineEnd>;
using MariadbLine = std::unique_ptr<MYSQL, LineEnd>;

/// Makes the file anew, with the table "sale" of that many test rows.
void fillSqlite(std::string const& file, std::size_t rows);

/// Without SQLite's own lock, to read only.
SqliteLine openSqlite(std::string const& file);

constexpr char const* kMariadbName = "zyn_bench";

/// Makes the database kMariadbName where it is not there, and works in it.
MariadbLine openMariadb(std::string const& socket);
void fillMariadb(MYSQL* database, std::size_t rows);

}  // namespace bench
