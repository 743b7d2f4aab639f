#include "core/database/database.h"

#include <algorithm>
#include <utility>

#include "core/database/database_error.h"
#include "core/database/database_url.h"
#include "core/database/many_values_statement.h"
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

ConnectionPool::Opener openerFor(DatabaseOptions const& options, DatabaseUrl const& url) {
  if (url.kind == DatabaseUrl::Kind::kSqlite) {
    return sqliteOpener(url, options.baseDirectory);
  }
  return [url, password = options.password]() -> std::shared_ptr<PhysicalConnection> {
    return openMariadb(url, password);
  };
}

/// A look at the text alone, which spares nearly all statements their lexer.
bool mayHaveMoreMarks(std::string_view text, std::size_t most) {
  return text.size() > most &&
         static_cast<std::size_t>(std::count(text.begin(), text.end(), '?')) > most;
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
    : Database(options, parseDatabaseUrl(options.url)) {}

Database::Database(DatabaseOptions const& options, DatabaseUrl const& url)
    : pool_(openerFor(options, url)),
      manyValues_(url.kind == DatabaseUrl::Kind::kSqlite ? sqliteManyValues()
                                                         : mariadbManyValues()),
      headOffice_(options.headOffice) {}

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
  statement->sealMarks(unitMark);
  return statement;
}

std::shared_ptr<LineStatement> Database::prepareScript(StatementScript script) {
  auto const line = pool_.forThisThread();
  line->ensureUsable();
  auto statement = prepareOn(line, std::move(script));
  statement->setRowObserver(rowObserver());
  return statement;
}

std::shared_ptr<LineStatement> Database::prepareOn(std::shared_ptr<PhysicalConnection> const& line,
                                                   StatementScript script) const {
  if (mayHaveMoreMarks(script.main, manyValues_.mostMarks)) {
    MarkPlaces marks = findMarks(script.main);
    if (marks.places.size() > manyValues_.mostMarks) {
      return std::make_shared<ManyValuesStatement>(line, std::move(script), manyValues_,
                                                   std::move(marks));
    }
  }
  return asLineStatement(line->prepare(std::move(script)));
}

std::string Database::howSent(std::string const& sql,
                              std::vector<moxValueKind> const& values) const {
  if (!mayHaveMoreMarks(sql, manyValues_.mostMarks)) {
    return {};
  }
  MarkPlaces const marks = findMarks(scriptOf(sql).main);
  auto kinds = values;
  kinds.resize(marks.places.size(), moxValueKind::kOther);
  return ValuePlacement(marks, kinds, manyValues_).describe();
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
