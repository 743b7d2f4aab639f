#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "core/database/connection_pool.h"
#include "core/database/database_url.h"
#include "core/database/line_statement.h"
#include "core/database/value_placement.h"
#include "mox/core/database_connection.h"
#include "mox/core/many_values.h"

namespace mox::core {

struct DatabaseOptions {
  std::string url;       // "sqlite:PATH", "sqlite::memory:" or "mariadb://user@host:port/name"
  std::string password;  // never shows in a message
  std::filesystem::path baseDirectory;  // relative paths start here; empty: the working directory
  std::function<int()> headOffice;      // of the current user, 0 without one; empty: 0
};

/// The application's database: gives every calling thread its own line to it, opened when the
/// thread first needs it. All operations are safe from any thread; a statement belongs to the
/// thread that prepared it.
class Database : public moxDatabaseConnection, public moxManyValues {
 public:
  /// Reads the URL and connects not yet. Throws moxError for a URL that names no known kind of
  /// database or is not complete.
  explicit Database(DatabaseOptions const& options);

  std::shared_ptr<PreparedStatement> prepare(std::string const& sql,
                                             std::string const& extraWhere = "",
                                             std::string const& whereWord = "where") override;

  /// The head office is the value of a further mark behind the caller's own, bound here and out of
  /// their reach.
  std::shared_ptr<PreparedStatement> prepareForUnit(std::string const& sql,
                                                    std::string const& order,
                                                    std::string const& alias,
                                                    std::string const& column,
                                                    std::string const& joiningWord) override;

  void execute(std::string const& sql) override;

  std::string howSent(std::string const& sql,
                      std::vector<moxValueKind> const& values) const override;

  /// For statements prepared from now on, by any thread. An empty function ends the reports. The
  /// observer is called on the thread that reads the rows.
  void setRowObserver(RowObserver observer);

  /// Gives the calling thread's line back ahead of the thread's end; its temporary tables are gone
  /// then.
  void releaseThisThread() noexcept { pool_.releaseThisThread(); }

 private:
  explicit Database(DatabaseOptions const& options, DatabaseUrl const& url);

  std::shared_ptr<LineStatement> prepareScript(StatementScript script);
  std::shared_ptr<LineStatement> prepareOn(std::shared_ptr<PhysicalConnection> const& line,
                                           StatementScript script) const;
  RowObserver rowObserver() const;

  ConnectionPool pool_;
  ManyValuesRules const manyValues_;
  std::function<int()> headOffice_;
  mutable std::mutex observerMutex_;
  RowObserver observer_;
};

/// The database that the options name. Throws as the constructor of Database does.
std::unique_ptr<moxDatabaseConnection> openDatabase(DatabaseOptions const& options);

}  // namespace mox::core
