#include "core/database/database.h"

#include <stdexcept>
#include <utility>

#include "core/database/database_error.h"
#include "core/database/database_url.h"
#include "core/database/mariadb_connection.h"
#include "core/database/sqlite_connection.h"
#include "core/database/statement_splitter.h"

namespace mox::core {
namespace {

ConnectionPool::Opener sqliteOpener(DatabaseUrl const& url,
                                    std::filesystem::path const& baseDirectory) {
  if (url.path == ":memory:") {
    return [memory = std::make_shared<SqliteMemory>()] { return memory->open(); };
  }
  SqliteFile file{std::filesystem::absolute(baseDirectory / url.path), url.mode};
  return [file = std::move(file)] { return SqliteConnection::open(file); };
}

ConnectionPool::Opener openerFor(DatabaseOptions const& options) {
  DatabaseUrl url = parseDatabaseUrl(options.url);
  if (url.kind == DatabaseUrl::Kind::kSqlite) {
    return sqliteOpener(url, options.baseDirectory);
  }
  return
      [url = std::move(url), password = options.password]() -> std::shared_ptr<PhysicalConnection> {
        return openMariadb(url, password);
      };
}

StatementBase& baseOf(moxDatabaseConnection::PreparedStatement& statement) {
  auto* const base = dynamic_cast<StatementBase*>(&statement);
  if (base == nullptr) {
    throw std::logic_error("a statement of a line is not derived from StatementBase");
  }
  return *base;
}

StatementScript scriptOf(std::string const& sql) {
  StatementScript script = splitScript(sql);
  if (script.main.empty()) {
    throw DatabaseError("The statement is empty", "");
  }
  return script;
}

std::string qualified(std::string const& alias, std::string const& column) {
  return alias.empty() ? column : alias + "." + column;
}

}  // namespace

Database::Database(DatabaseOptions const& options)
    : pool_(openerFor(options)), headOffice_(options.headOffice) {}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> Database::prepare(
    std::string const& sql, std::string const& extraWhere, std::string const& whereWord) {
  StatementScript script = scriptOf(sql);
  if (!extraWhere.empty()) {
    script.main += " " + (whereWord.empty() ? "where" : whereWord) + " " + extraWhere;
  }
  return prepareScript(std::move(script));
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> Database::prepareForUnit(
    std::string const& sql, std::string const& order, std::string const& alias,
    std::string const& column, std::string const& joiningWord) {
  StatementScript script = scriptOf(sql);
  int const unitMark = countMarks(script.main);
  script.main += " " + joiningWord + " " + qualified(alias, column) + " = ?";
  if (!order.empty()) {
    script.main += " order by " + order;
  }
  auto statement = prepareScript(std::move(script));
  statement->bindInt(unitMark, headOffice_ ? headOffice_() : 0);
  baseOf(*statement).sealMarks(unitMark);
  return statement;
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> Database::prepareScript(
    StatementScript script) {
  auto const line = pool_.forThisThread();
  line->ensureUsable();
  auto statement = line->prepare(std::move(script));
  baseOf(*statement).setRowObserver(rowObserver());
  return statement;
}

void Database::execute(std::string const& sql) {
  prepare(sql)->execute();
}

void Database::setRowObserver(RowObserver observer) {
  std::lock_guard const lock(observerMutex_);
  observer_ = std::move(observer);
}

RowObserver Database::rowObserver() const {
  std::lock_guard const lock(observerMutex_);
  return observer_;
}

std::unique_ptr<moxDatabaseConnection> openDatabase(DatabaseOptions const& options) {
  return std::make_unique<Database>(options);
}

}  // namespace mox::core
