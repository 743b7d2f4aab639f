#pragma once

#include <mysql.h>
#include <sqlite3.h>

#include "compare/floor_table.h"

namespace bench {

/// The selects' columns in the order of the test table, read by hand as fast as we know how to.
/// Throw std::runtime_error when the database refuses or the result breaks off.
FloorTable loadFromSqlite(sqlite3* database, char const* select, std::size_t capacity);
FloorTable loadFromMariadb(MYSQL* database, char const* select, std::size_t capacity);

}  // namespace bench
