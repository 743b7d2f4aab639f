#pragma once

#include <gtest/gtest.h>

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/core/error.h"

namespace mox_test {

enum class DatabaseKind { kSqlite, kMariadb };

/// Shows the kind by its name in a failed test's report.
void PrintTo(DatabaseKind kind, std::ostream* output);

/// SQLite, and MariaDB where the environment's MOX_TEST_MARIADB_URL names a server.
std::vector<DatabaseKind> databasesUnderTest();

/// Whether a MariaDB server is there for tests of its own.
bool hasMariadb();

/// An empty database for one test: a file of its own, or a database of its own on the server. It is
/// gone when the object dies. Whatever fails while it is made fails the test.
class TestDatabase {
 public:
  /// `headOffice` is that of the current user.
  explicit TestDatabase(DatabaseKind kind, int headOffice = 0);
  ~TestDatabase();

  TestDatabase(TestDatabase const&) = delete;
  TestDatabase& operator=(TestDatabase const&) = delete;

  DatabaseKind kind() const { return kind_; }
  bool isMariadb() const { return kind_ == DatabaseKind::kMariadb; }

  /// For a host that opens the database itself.
  std::string const& url() const { return url_; }

  /// Opened when it is first asked for.
  moxDatabaseConnection& connection();

  /// Runs one statement.
  void run(std::string const& sql) { connection().execute(sql); }

  /// Prepares and executes.
  std::shared_ptr<moxDatabaseConnection::PreparedStatement> query(std::string const& sql);

  /// All rows of a result as texts, a null as "NULL".
  std::vector<std::vector<std::string>> rows(std::string const& sql);

  /// The first value of the first row, as text.
  std::string value(std::string const& sql);

  /// Closes the calling thread's line; the next use opens another.
  void disconnect() { connection_.reset(); }

 private:
  void makeFile();
  void makeSchema();
  void remove();

  DatabaseKind kind_;
  int headOffice_;
  std::string url_;
  std::string name_;  // of the directory, or of the database on the server
  std::unique_ptr<moxDatabaseConnection> connection_;
};

/// The URL of another database on the server that `url` names.
std::string withDatabase(std::string const& url, std::string const& name);

/// Ends the server's connection of that number, by way of another one, and returns when it is gone.
void killConnection(TestDatabase& other, std::string const& number);

/// What a failed operation told.
struct Failure {
  std::string message;
  std::string code;
  std::vector<std::string> details;
};

/// The moxError that the operation throws; nothing when it throws none. Others pass through.
template <class Operation>
std::optional<Failure> failureOf(Operation&& operation) {
  try {
    operation();
  } catch (moxError const& error) {
    return Failure{error.errorMessage(), error.errorCode(), error.errorDetails()};
  }
  return std::nullopt;
}

/// Base of tests that every database must pass; each test has an empty one.
class OnEveryDatabase : public ::testing::TestWithParam<DatabaseKind> {
 protected:
  TestDatabase db{GetParam()};
};

/// Name of a test's parameter.
std::string databaseName(::testing::TestParamInfo<DatabaseKind> const& info);

}  // namespace mox_test

#define MOX_ON_EVERY_DATABASE(Suite)                                                       \
  INSTANTIATE_TEST_SUITE_P(On, Suite, ::testing::ValuesIn(mox_test::databasesUnderTest()), \
                           mox_test::databaseName)
