#include "core/database/sqlite_connection.h"

#include <sqlite3.h>

#include <atomic>
#include <iterator>
#include <new>

#include "core/database/database_error.h"
#include "core/database/sqlite_bound_list.h"
#include "core/database/sqlite_error.h"
#include "core/database/sqlite_functions.h"
#include "core/database/sqlite_rewriter.h"
#include "core/database/sqlite_statement.h"
#include "core/database/statement_splitter.h"
#include "core/database/value_placement.h"

namespace mox::core {
namespace {

constexpr int kBusyTimeoutMs = 5000;
constexpr int kLongestStatement = 16 * 1024 * 1024;  // bytes
constexpr int kLongestValue = 512 * 1024 * 1024;     // bytes
constexpr sqlite3_int64 kLargestMemory = sqlite3_int64(1)
                                         << 40;  // bytes; the machine's own bound comes first

int openFlags(std::string const& mode) {
  if (mode == "ro") {
    return SQLITE_OPEN_READONLY;
  }
  return mode == "rwc" ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READWRITE;
}

void requireFile(SqliteFile const& file) {
  std::error_code error;
  auto const status = std::filesystem::status(file.path, error);
  std::string const shown = "The database file \"" + file.path.string() + "\"";
  if (status.type() == std::filesystem::file_type::directory) {
    throw DatabaseError(shown + " is a directory", "");
  }
  if (status.type() == std::filesystem::file_type::not_found && file.mode != "rwc") {
    throw DatabaseError(
        shown + " does not exist; correct the path, or add \"?mode=rwc\" to make a new one", "");
  }
}

bool isBlank(char const* text) {
  return std::string_view(text).find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

}  // namespace

void SqliteFinalizer::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}

std::shared_ptr<SqliteConnection> SqliteConnection::open(SqliteFile const& file) {
  requireFile(file);
  return openUri(file.path.string(), openFlags(file.mode),
                 "The database file \"" + file.path.string() + "\"");
}

std::shared_ptr<SqliteConnection> SqliteConnection::openMemory(std::string const& name) {
  int const flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI;
  auto connection = openUri("file:/" + name + "?vfs=memdb", flags, "The database in memory");
  sqlite3_int64 limit = kLargestMemory;
  sqlite3_file_control(connection->line_, "main", SQLITE_FCNTL_SIZE_LIMIT, &limit);
  return connection;
}

// One thread at a time uses a line, so SQLite's own lock around every call would only cost.
std::shared_ptr<SqliteConnection> SqliteConnection::openUri(std::string const& name, int flags,
                                                            std::string const& shownName) {
  sqlite3* line = nullptr;
  int const status = sqlite3_open_v2(name.c_str(), &line, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (line == nullptr) {
    throw std::bad_alloc();
  }
  std::shared_ptr<SqliteConnection> connection(new SqliteConnection(line));
  try {
    if (status != SQLITE_OK) {
      throwSqliteError(line, status, name);
    }
    connection->configure();
  } catch (moxError const& error) {
    throw DatabaseError(shownName + " cannot be opened: " + error.errorMessage(),
                        error.errorCode());
  }
  return connection;
}

// Settings that make the line read a foreign file safely, then a first look at it: opening alone
// does not tell whether the file is a database.
void SqliteConnection::configure() {
  sqlite3_extended_result_codes(line_, 1);
  sqlite3_busy_timeout(line_, kBusyTimeoutMs);
  sqlite3_db_config(line_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
  sqlite3_db_config(line_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(line_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(line_, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
  sqlite3_limit(line_, SQLITE_LIMIT_SQL_LENGTH, kLongestStatement);
  sqlite3_limit(line_, SQLITE_LIMIT_LENGTH, kLongestValue);
  sqlite3_limit(line_, SQLITE_LIMIT_VARIABLE_NUMBER,
                static_cast<int>(sqliteManyValues().mostMarks));
  registerSqliteFunctions(line_);
  registerSqliteBoundList(line_);
  run("select count(*) from sqlite_schema");
}

SqliteConnection::~SqliteConnection() {
  sqlite3_close_v2(line_);
}

void SqliteConnection::interrupt() noexcept {
  sqlite3_interrupt(line_);
}

SqliteHandle SqliteConnection::compile(std::string const& statement) {
  sqlite3_stmt* compiled = nullptr;
  char const* tail = nullptr;
  // A byte 0 would end the text for SQLite, and hide what stands behind it.
  if (statement.find('\0') != std::string::npos) {
    throw DatabaseError("The statement has a zero byte", "", statement);
  }
  int const length =
      static_cast<int>(std::min<std::size_t>(statement.size() + 1, kLongestStatement + 2));
  int const status = sqlite3_prepare_v2(line_, statement.c_str(), length, &compiled, &tail);
  SqliteHandle handle(compiled);
  if (status != SQLITE_OK) {
    throwSqliteError(line_, status, statement);
  }
  if (compiled == nullptr || !isBlank(tail)) {
    throw DatabaseError("The statement is empty, or has text behind its end", "", statement);
  }
  return handle;
}

void SqliteConnection::run(std::string const& statement) {
  SqliteHandle const compiled = compile(statement);
  int status = SQLITE_ROW;
  while (status == SQLITE_ROW) {
    status = sqlite3_step(compiled.get());
  }
  if (status != SQLITE_DONE) {
    throwSqliteError(line_, status, statement);
  }
}

void SqliteConnection::execute(std::string const& sql) {
  SqliteText const text = rewriteForSqlite(sql);
  for (std::string const& ahead : text.ahead) {
    run(ahead);
  }
  run(text.statement);
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> SqliteConnection::prepare(
    StatementScript script) {
  SqliteText text = rewriteForSqlite(script.main);
  script.main = std::move(text.statement);
  script.before.insert(script.before.end(), std::make_move_iterator(text.ahead.begin()),
                       std::make_move_iterator(text.ahead.end()));
  return std::make_shared<SqliteStatement>(shared_from_this(), script);
}

SqliteMemory::SqliteMemory() {
  static std::atomic<unsigned> count = 0;
  name_ = "mox-" + std::to_string(++count);
  keeper_ = SqliteConnection::openMemory(name_);
}

std::shared_ptr<PhysicalConnection> SqliteMemory::open() const {
  return SqliteConnection::openMemory(name_);
}

}  // namespace mox::core
