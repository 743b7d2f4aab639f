#include "support/databases.h"

#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <thread>

#include "core/database/database.h"
#include "core/database/database_url.h"
#include "core/database/mariadb_connection.h"

namespace mox_test {
namespace {

std::string serverUrl() {
  char const* const url = std::getenv("MOX_TEST_MARIADB_URL");
  return url == nullptr ? "" : url;
}

void runOnServer(std::string const& sql) {
  mox::core::openMariadb(mox::core::parseDatabaseUrl(serverUrl()), "")->execute(sql);
}

std::vector<std::string> rowOf(moxDatabaseConnection::PreparedStatement& statement) {
  std::vector<std::string> row;
  for (int field = 0; field < statement.fieldCount(); ++field) {
    row.push_back(statement.isNull(field) ? "NULL" : std::string(statement.getString(field)));
  }
  return row;
}

}  // namespace

bool hasMariadb() {
  return !serverUrl().empty();
}

std::vector<DatabaseKind> databasesUnderTest() {
  if (hasMariadb()) {
    return {DatabaseKind::kSqlite, DatabaseKind::kMariadb};
  }
  return {DatabaseKind::kSqlite};
}

void PrintTo(DatabaseKind kind, std::ostream* output) {
  *output << (kind == DatabaseKind::kSqlite ? "SQLite" : "MariaDB");
}

std::string databaseName(::testing::TestParamInfo<DatabaseKind> const& info) {
  return info.param == DatabaseKind::kSqlite ? "Sqlite" : "Mariadb";
}

std::string withDatabase(std::string const& url, std::string const& name) {
  std::size_t const options = std::min(url.find('?'), url.size());
  std::size_t const hostEnd = std::min(url.find('/', url.find("//") + 2), options);
  return url.substr(0, hostEnd) + "/" + name + url.substr(options);
}

TestDatabase::TestDatabase(DatabaseKind kind, int headOffice)
    : kind_(kind), headOffice_(headOffice) {
  if (isMariadb()) {
    makeSchema();
  } else {
    makeFile();
  }
}

TestDatabase::~TestDatabase() {
  connection_.reset();
  try {
    remove();
  } catch (moxError const& error) {
    ADD_FAILURE() << "removing the test's database: " << error.errorMessage();
  }
}

void TestDatabase::makeFile() {
  name_ = (std::filesystem::temp_directory_path() / "mox-test-XXXXXX").string();
  if (::mkdtemp(name_.data()) == nullptr) {
    throw std::runtime_error("no directory for a test's database");
  }
  url_ = "sqlite:" + name_ + "/test.db?mode=rwc";
}

void TestDatabase::makeSchema() {
  static std::atomic<int> made{0};
  name_ = "mox_test_" + std::to_string(::getpid()) + "_" + std::to_string(++made);
  runOnServer("create or replace database " + name_);
  url_ = withDatabase(serverUrl(), name_);
}

void TestDatabase::remove() {
  if (isMariadb()) {
    runOnServer("drop database if exists " + name_);
  } else {
    std::filesystem::remove_all(name_);
  }
}

moxDatabaseConnection& TestDatabase::connection() {
  if (!connection_) {
    mox::core::DatabaseOptions options;
    options.url = url_;
    options.headOffice = [office = headOffice_] { return office; };
    connection_ = mox::core::openDatabase(options);
    if (!isMariadb()) {
      // A test's data need not survive the machine.
      connection_->execute("pragma synchronous = off");
    }
  }
  return *connection_;
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> TestDatabase::query(
    std::string const& sql) {
  auto statement = connection().prepare(sql);
  statement->execute();
  return statement;
}

std::vector<std::vector<std::string>> TestDatabase::rows(std::string const& sql) {
  auto const statement = query(sql);
  std::vector<std::vector<std::string>> result;
  while (statement->fetch()) {
    result.push_back(rowOf(*statement));
  }
  return result;
}

std::string TestDatabase::value(std::string const& sql) {
  return rows(sql).at(0).at(0);
}

void killConnection(TestDatabase& other, std::string const& number) {
  other.run("kill connection " + number);
  std::string const left =
      "select count(*) from information_schema.processlist where id = " + number;
  while (other.value(left) != "0") {
    std::this_thread::yield();
  }
}

}  // namespace mox_test
