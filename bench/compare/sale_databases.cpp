#include "compare/sale_databases.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "compare/test_rows.h"

namespace bench {
namespace {

constexpr std::size_t kRowsPerInsert = 1000;

/// The literals of one row. The texts hold letters, digits and blanks only.
std::string rowText(std::size_t index) {
  TestRow const row = testRow(index);
  return fmt::format("({},{},{},'{}','{}','{}')", row.number,
                     row.ratingIsNull ? "null" : std::to_string(row.rating),
                     row.amountIsNull ? "null" : fmt::format("{:.2f}", row.amount),
                     dayText(row.day), row.code, row.description);
}

std::string insertText(std::size_t first, std::size_t end) {
  std::string text = "insert into sale values ";
  for (std::size_t row = first; row < end; ++row) {
    text += (row == first ? "" : ",") + rowText(row);
  }
  return text;
}

/// `run` takes a statement.
template <class Run>
void fillTable(std::size_t rows, Run run) {
  run("create table sale (number int not null, rating int, amount double, day date not null, "
      "code varchar(10) not null, description varchar(30) not null)");
  for (std::size_t first = 0; first < rows; first += kRowsPerInsert) {
    run(insertText(first, std::min(rows, first + kRowsPerInsert)));
  }
}

void run(sqlite3* database, std::string const& statement) {
  if (sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
}

void run(MYSQL* database, std::string const& statement) {
  if (mysql_real_query(database, statement.data(), statement.size()) != 0) {
    throw std::runtime_error(mysql_error(database));
  }
}

SqliteLine openSqlite(std::string const& file, int flags) {
  sqlite3* opened = nullptr;
  int const status = sqlite3_open_v2(file.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  SqliteLine line(opened);
  if (status != SQLITE_OK) {
    throw std::runtime_error("cannot open " + file);
  }
  return line;
}

}  // namespace

void fillSqlite(std::string const& file, std::size_t rows) {
  std::remove(file.c_str());
  SqliteLine const line = openSqlite(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  run(line.get(), "pragma synchronous = off");
  run(line.get(), "begin");
  fillTable(rows, [&](std::string const& statement) { run(line.get(), statement); });
  run(line.get(), "commit");
}

SqliteLine openSqlite(std::string const& file) {
  return openSqlite(file, SQLITE_OPEN_READONLY);
}

MariadbLine openMariadb(std::string const& socket) {
  MariadbLine line(mysql_init(nullptr));
  if (mysql_real_connect(line.get(), nullptr, "root", nullptr, nullptr, 0, socket.c_str(), 0) ==
      nullptr) {
    throw std::runtime_error(mysql_error(line.get()));
  }
  run(line.get(), "set names utf8mb4");
  run(line.get(), fmt::format("create database if not exists {}", kMariadbName));
  run(line.get(), fmt::format("use {}", kMariadbName));
  return line;
}

void fillMariadb(MYSQL* database, std::size_t rows) {
  run(database, "drop table if exists sale");
  run(database, "set autocommit = 0");
  fillTable(rows, [&](std::string const& statement) { run(database, statement); });
  run(database, "commit");
  run(database, "set autocommit = 1");
}

}  // namespace bench
