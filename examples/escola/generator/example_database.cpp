#include "escola/generator/example_database.h"

#include <cmath>
#include <exception>
#include <vector>

#include "core/database/database.h"
#include "core/database/database_url.h"
#include "escola/generator/database_writer.h"
#include "escola/generator/schema_texts.h"
#include "mox/core/blob.h"
#include "mox/core/error.h"

namespace escola {

namespace {

using mox::core::DatabaseUrl;
using Statement = moxDatabaseConnection::PreparedStatement;

constexpr int kRowsPerServerStatement = 200;

/// A server's database may have been made with an alphabet that has no room for the names.
constexpr std::string_view kServerTableOptions =
    " engine=InnoDB default character set utf8mb4 collate utf8mb4_unicode_ci";

bool isServer(std::string const& url) {
  return mox::core::parseDatabaseUrl(url).kind == DatabaseUrl::Kind::kMariadb;
}

/// The statements of a schema file, each ending with a semicolon at the end of its line.
std::vector<std::string> statementsOf(std::string_view text) {
  std::vector<std::string> statements;
  for (std::size_t end = text.find(";\n"); end != std::string_view::npos; end = text.find(";\n")) {
    statements.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 2);
  }
  return statements;
}

void executeAll(moxDatabaseConnection& connection, std::string_view text,
                std::string_view options = {}) {
  for (std::string const& statement : statementsOf(text)) {
    connection.execute(statement + std::string(options));
  }
}

/// Names of the example's tables that the database has already.
std::vector<std::string> existingTables(moxDatabaseConnection& connection, bool server) {
  auto const statement = connection.prepare(
      server ? "select count(*) from information_schema.tables where table_schema=database() and "
               "table_name=?"
             : "select count(*) from sqlite_master where type='table' and name=?");
  std::vector<std::string> names;
  for (Table const& table : allTables()) {
    statement->bindString(0, table.name);
    statement->execute();
    if (statement->fetch() && statement->getInt(0) != 0) {
      names.emplace_back(table.name);
    }
  }
  return names;
}

/// Settings of a line that make it fast for rows in bulk, and slow or careless for other work.
/// References are good by the way rows are made, and a row may come before the one that it refers
/// to; waiting for the disk after each transaction is no use for a file that can be made again.
class BulkMode {
 public:
  BulkMode(moxDatabaseConnection& connection, bool server)
      : connection_(connection), settings_(server ? serverSettings() : embeddedSettings()) {
    for (Setting& setting : settings_) {
      setting.before = read(setting.query);
      connection_.execute(setting.assignment + setting.bulkValue);
    }
  }

  void restore() {
    for (Setting const& setting : settings_) {
      connection_.execute(setting.assignment + setting.before);
    }
  }

 private:
  struct Setting {
    std::string query;
    std::string assignment;
    std::string bulkValue;
    std::string before;
  };

  static std::vector<Setting> serverSettings() {
    return {{"select @@foreign_key_checks", "set foreign_key_checks=", "0", ""},
            {"select @@unique_checks", "set unique_checks=", "0", ""}};
  }

  static std::vector<Setting> embeddedSettings() {
    return {{"pragma foreign_keys", "pragma foreign_keys=", "0", ""},
            {"pragma synchronous", "pragma synchronous=", "0", ""},
            {"pragma cache_size", "pragma cache_size=", "-65536", ""}};
  }

  std::string read(std::string const& query) {
    auto const statement = connection_.prepare(query);
    statement->execute();
    return statement->fetch() ? std::string(statement->getString(0)) : std::string("1");
  }

  moxDatabaseConnection& connection_;
  std::vector<Setting> settings_;
};

void dropTables(moxDatabaseConnection& connection) {
  auto const tables = allTables();
  for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
    connection.execute("drop table if exists " + std::string(table->name));
  }
}

/// After a failure: the first error is the one to tell, so those of tidying up are not.
void dropAfterFailure(moxDatabaseConnection& connection, BulkMode& bulkMode) noexcept {
  try {
    connection.execute("rollback");
  } catch (...) {  // nothing was begun
  }
  try {
    dropTables(connection);
    bulkMode.restore();
  } catch (...) {  // the line is gone
  }
}

void fill(moxDatabaseConnection& connection, BuildOptions const& options, bool server,
          Progress const& progress) {
  executeAll(connection, tablesSchema(), server ? kServerTableOptions : std::string_view());
  DatabaseWriter writer(connection, server ? kRowsPerServerStatement : 1);
  generate(options.settings, options.scale, writer, progress);
  writer.finish();
  executeAll(connection, indexesSchema());
  if (server) {
    executeAll(connection, mariadbSchema());
  }
}

Day dayFrom(date_t const& date) {
  return Day(std::chrono::days(date.daysSinceEpoch()));
}

/// Reads rows back as the cells they were made of. Texts live until the next row.
class RowReader {
 public:
  RowReader(moxDatabaseConnection& connection, Table const& table)
      : table_(table), statement_(connection.prepare(selectText(table))) {
    statement_->execute();
  }

  bool next() { return statement_->fetch(); }

  std::span<Cell const> cells() {
    cells_.clear();
    blobs_.clear();
    for (int column = 0; column < static_cast<int>(table_.columns.size()); ++column) {
      cells_.push_back(statement_->isNull(column) ? kNull : cellAt(column));
    }
    return cells_;
  }

 private:
  static std::string selectText(Table const& table) {
    std::string names;
    std::string keys;
    for (std::size_t place = 0; place < table.columns.size(); ++place) {
      std::string const name(table.columns[place].name);
      names += (names.empty() ? "" : ",") + name;
      if (place < static_cast<std::size_t>(table.keyColumns)) {
        keys += (keys.empty() ? "" : ",") + name;
      }
    }
    return "select " + names + " from " + std::string(table.name) + " order by " + keys;
  }

  Cell cellAt(int column) {
    switch (table_.columns[static_cast<std::size_t>(column)].type) {
      case ColumnType::kInt:
        return statement_->getInt(column);
      case ColumnType::kNumber:
        return Hundredths{std::llround(statement_->getDouble(column) * 100.0)};
      case ColumnType::kDay:
        return dayFrom(statement_->getDate(column));
      case ColumnType::kMoment:
        return Moment(std::chrono::seconds(statement_->getDateTime(column).asTime_t()));
      case ColumnType::kText:
        return statement_->getString(column);
      case ColumnType::kBytes:
        break;
    }
    blobs_.push_back(statement_->getBlob(column));
    return Bytes{{blobs_.back()->data(), blobs_.back()->size()}};
  }

  Table const& table_;
  std::shared_ptr<Statement> statement_;
  std::vector<Cell> cells_;
  std::vector<std::shared_ptr<moxReadBlob>> blobs_;
};

}  // namespace

std::unique_ptr<moxDatabaseConnection> openForExample(std::string const& url,
                                                      std::string const& password) {
  std::string complete = url;
  bool const makesFile = !isServer(url) && url.find("mode=") == std::string::npos &&
                         mox::core::parseDatabaseUrl(url).path != ":memory:";
  if (makesFile) {
    complete += (url.find('?') == std::string::npos ? "?" : "&") + std::string("mode=rwc");
  }
  mox::core::DatabaseOptions options;
  options.url = complete;
  options.password = password;
  return mox::core::openDatabase(options);
}

void buildExample(moxDatabaseConnection& connection, BuildOptions const& options,
                  Progress const& progress) {
  bool const server = isServer(options.url);
  std::vector<std::string> const existing = existingTables(connection, server);
  if (!existing.empty() && !options.replace) {
    throw moxDefaultErrorImpl<moxError>("The database already has the table " + existing.front() +
                                        "; --force drops the example's tables and makes them anew");
  }
  BulkMode bulkMode(connection, server);
  try {
    dropTables(connection);
    fill(connection, options, server, progress);
    bulkMode.restore();
  } catch (...) {
    dropAfterFailure(connection, bulkMode);
    throw;
  }
}

ChecksumSink readChecksums(moxDatabaseConnection& connection) {
  ChecksumSink sums;
  for (Table const& table : allTables()) {
    RowReader reader(connection, table);
    while (reader.next()) {
      sums.row(table.id, reader.cells());
    }
  }
  return sums;
}

}  // namespace escola
