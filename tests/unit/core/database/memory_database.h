#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/database/database.h"
#include "support/databases.h"

namespace mox::core {

using mox_test::failureOf;
using TextRows = std::vector<std::vector<std::string>>;

/// All rows of an executed statement as texts, a null as "NULL".
inline TextRows readAll(moxDatabaseConnection::PreparedStatement& statement) {
  TextRows rows;
  while (statement.fetch()) {
    auto& row = rows.emplace_back();
    for (int i = 0; i < statement.fieldCount(); ++i) {
      row.push_back(statement.isNull(i) ? "NULL" : std::string(statement.getString(i)));
    }
  }
  return rows;
}

/// An empty SQLite database in memory for one test.
struct MemoryDatabase {
  Database db{DatabaseOptions{"sqlite::memory:", "", {}, {}}};

  void run(std::string const& sql) { db.execute(sql); }

  std::shared_ptr<moxDatabaseConnection::PreparedStatement> query(std::string const& sql) {
    auto statement = db.prepare(sql);
    statement->execute();
    return statement;
  }

  TextRows rows(std::string const& sql) { return readAll(*query(sql)); }

  /// The first value of the first row.
  std::string value(std::string const& sql) { return rows(sql).at(0).at(0); }

  /// The types of the result columns.
  std::vector<moxDatabaseConnection::FieldType> types(std::string const& sql) {
    auto const statement = query(sql);
    std::vector<moxDatabaseConnection::FieldType> types;
    for (int i = 0; i < statement->fieldCount(); ++i) {
      types.push_back(statement->field(i).type);
    }
    return types;
  }
};

}  // namespace mox::core
