#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "core/database/physical_connection.h"

struct sqlite3;
struct sqlite3_stmt;

namespace mox::core {

/// Frees a statement of SQLite.
struct SqliteFinalizer {
  void operator()(sqlite3_stmt* statement) const noexcept;
};
using SqliteHandle = std::unique_ptr<sqlite3_stmt, SqliteFinalizer>;

struct SqliteFile {
  std::filesystem::path path;  // absolute
  std::string mode = "rw";     // "ro", "rw", or "rwc", which makes a missing file
};

/// A line to one SQLite database. Another thread may only interrupt it.
class SqliteConnection : public PhysicalConnection,
                         public std::enable_shared_from_this<SqliteConnection> {
 public:
  /// Throws moxError when there is no such file, when it cannot be opened, or when it is no
  /// database.
  static std::shared_ptr<SqliteConnection> open(SqliteFile const& file);

  /// A database in memory, the same for all lines of this process that name it; it is gone with the
  /// last one.
  static std::shared_ptr<SqliteConnection> openMemory(std::string const& name);

  ~SqliteConnection() override;
  SqliteConnection(SqliteConnection const&) = delete;
  SqliteConnection& operator=(SqliteConnection const&) = delete;

  std::shared_ptr<moxDatabaseConnection::PreparedStatement> prepare(
      StatementScript script) override;
  void execute(std::string const& sql) override;

  /// A file does not drop its line: nothing to do.
  void ensureUsable() override {}

  /// What runs at this moment ends with a moxError. Safe from any thread while the line is open.
  void interrupt() noexcept;

  /// Prepares one statement in SQLite's own words. Throws moxError, also for text behind the
  /// statement's end.
  SqliteHandle compile(std::string const& statement);

  sqlite3* handle() const { return line_; }

 private:
  explicit SqliteConnection(sqlite3* line) : line_(line) {}

  static std::shared_ptr<SqliteConnection> openUri(std::string const& name, int flags,
                                                   std::string const& shownName);
  void configure();
  void run(std::string const& statement);

  sqlite3* line_;  // closed by the destructor
};

/// A database in memory that no line needs to hold open: it is gone with this object and its last
/// line.
class SqliteMemory {
 public:
  SqliteMemory();

  /// A further line to it. Safe from any thread.
  std::shared_ptr<PhysicalConnection> open() const;

 private:
  std::string name_;
  std::shared_ptr<SqliteConnection> keeper_;  // never used, only open
};

}  // namespace mox::core
