#include "compare/load_floor.h"

#include <memory>
#include <stdexcept>
#include <string_view>

namespace bench {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t secondsAt(unsigned year, unsigned month, unsigned day) {
  // Days since 1970-01-01, the year counted from March so that the leap day comes last.
  std::int64_t const shifted = std::int64_t{year} - (month <= 2 ? 1 : 0);
  std::int64_t const era = shifted / 400;
  std::int64_t const yearOfEra = shifted - era * 400;
  std::int64_t const dayOfYear =
      (153 * (std::int64_t{month} + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  std::int64_t const dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return (era * 146097 + dayOfEra - 719468) * kSecondsPerDay;
}

/// Reads "2024-03-05" and checks that it is written so.
std::int64_t secondsFrom(unsigned char const* text) {
  unsigned bad = 0;
  auto const digit = [&](int place) {
    unsigned const value = text[place] - unsigned{'0'};
    bad |= value > 9 ? 1U : 0U;
    return value;
  };
  unsigned const year = digit(0) * 1000 + digit(1) * 100 + digit(2) * 10 + digit(3);
  unsigned const month = digit(5) * 10 + digit(6);
  unsigned const day = digit(8) * 10 + digit(9);
  if (bad != 0 || text[4] != '-' || text[7] != '-' || text[10] != 0) {
    throw std::runtime_error("a date is not written as one");
  }
  return secondsAt(year, month, day);
}

struct StatementEnd {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  void operator()(MYSQL_STMT* statement) const { mysql_stmt_close(statement); }
};

// The line has no lock, so a field may be looked up once and asked for kind and content: less work
// than the accessors that take the statement and look the field up each time.
sqlite3_value* field(sqlite3_stmt* statement, int index) {
  return sqlite3_column_value(statement, index);
}

void appendText(FloorTable& table, GrowingArray<FloorText>& column, sqlite3_value* value) {
  auto const* const text = reinterpret_cast<char const*>(sqlite3_value_text(value));
  table.pushText(column, text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void appendRow(FloorTable& table, sqlite3_stmt* statement) {
  table.number.push(sqlite3_value_int(field(statement, 0)));
  sqlite3_value* const rating = field(statement, 1);
  bool const ratingIsNull = sqlite3_value_type(rating) == SQLITE_NULL;
  table.ratingNulls.push(ratingIsNull);
  table.rating.push(ratingIsNull ? 0 : sqlite3_value_int(rating));
  sqlite3_value* const amount = field(statement, 2);
  bool const amountIsNull = sqlite3_value_type(amount) == SQLITE_NULL;
  table.amountNulls.push(amountIsNull);
  table.amount.push(amountIsNull ? 0 : sqlite3_value_double(amount));
  table.day.push(secondsFrom(sqlite3_value_text(field(statement, 3))));
  appendText(table, table.code, field(statement, 4));
  appendText(table, table.description, field(statement, 5));
}

/// Where the client library puts the row that it has read.
struct MariadbRow {
  static constexpr std::size_t kLongestText = 64;

  int number = 0;
  int rating = 0;
  double amount = 0;
  MYSQL_TIME day{};
  char code[kLongestText];
  char description[kLongestText];
  my_bool isNull[6] = {};
  unsigned long length[6] = {};
};

MYSQL_BIND binding(MariadbRow& row, int index, enum_field_types type, void* place,
                   std::size_t size) {
  MYSQL_BIND made{};
  made.buffer_type = type;
  made.buffer = place;
  made.buffer_length = size;
  made.is_null = &row.isNull[index];
  made.length = &row.length[index];
  return made;
}

void bindRow(MYSQL_STMT* statement, MariadbRow& row) {
  MYSQL_BIND fields[6] = {
      binding(row, 0, MYSQL_TYPE_LONG, &row.number, sizeof row.number),
      binding(row, 1, MYSQL_TYPE_LONG, &row.rating, sizeof row.rating),
      binding(row, 2, MYSQL_TYPE_DOUBLE, &row.amount, sizeof row.amount),
      binding(row, 3, MYSQL_TYPE_DATE, &row.day, sizeof row.day),
      binding(row, 4, MYSQL_TYPE_STRING, row.code, sizeof row.code),
      binding(row, 5, MYSQL_TYPE_STRING, row.description, sizeof row.description),
  };
  if (mysql_stmt_bind_result(statement, fields) != 0) {
    throw std::runtime_error(mysql_stmt_error(statement));
  }
}

void appendRow(FloorTable& table, MariadbRow const& row) {
  table.number.push(row.number);
  bool const ratingIsNull = row.isNull[1] != 0;
  table.ratingNulls.push(ratingIsNull);
  table.rating.push(ratingIsNull ? 0 : row.rating);
  bool const amountIsNull = row.isNull[2] != 0;
  table.amountNulls.push(amountIsNull);
  table.amount.push(amountIsNull ? 0 : row.amount);
  table.day.push(secondsAt(row.day.year, row.day.month, row.day.day));
  table.pushText(table.code, row.code, row.length[4]);
  table.pushText(table.description, row.description, row.length[5]);
}

}  // namespace

FloorTable loadFromSqlite(sqlite3* database, char const* select, std::size_t capacity) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(database, select, -1, &prepared, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  std::unique_ptr<sqlite3_stmt, StatementEnd> const statement(prepared);
  FloorTable table(capacity);
  int status = SQLITE_ROW;
  while ((status = sqlite3_step(prepared)) == SQLITE_ROW) {
    appendRow(table, prepared);
  }
  if (status != SQLITE_DONE) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  return table;
}

FloorTable loadFromMariadb(MYSQL* database, char const* select, std::size_t capacity) {
  std::unique_ptr<MYSQL_STMT, StatementEnd> const statement(mysql_stmt_init(database));
  std::string_view const text = select;
  if (mysql_stmt_prepare(statement.get(), text.data(), text.size()) != 0 ||
      mysql_stmt_execute(statement.get()) != 0) {
    throw std::runtime_error(mysql_stmt_error(statement.get()));
  }
  FloorTable table(capacity);
  MariadbRow row;
  bindRow(statement.get(), row);
  int status = 0;
  while ((status = mysql_stmt_fetch(statement.get())) == 0) {
    appendRow(table, row);
  }
  if (status != MYSQL_NO_DATA) {
    throw std::runtime_error("the result broke off");
  }
  return table;
}

}  // namespace bench
