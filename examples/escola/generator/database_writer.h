#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "escola/generator/row_sink.h"
#include "mox/core/database_connection.h"

namespace escola {

/// A sink that inserts the rows into a database, several with one statement, in transactions of
/// bounded length. Owns its statements; the connection must outlive it. Rows that were not finished
/// are lost with it.
class DatabaseWriter : public RowSink {
 public:
  /// `rowsPerStatement` as the database likes it: a server wants many, an embedded database needs
  /// no more than 1.
  DatabaseWriter(moxDatabaseConnection& connection, int rowsPerStatement);

  using RowSink::row;
  void row(TableId table, std::span<Cell const> cells) override;

  /// Writes what is still waiting and ends the transaction. To be called once, after the last row.
  void finish();

 private:
  using Statement = moxDatabaseConnection::PreparedStatement;

  struct Pending {
    std::shared_ptr<Statement> statement;  // for a full load of rows
    std::vector<std::string> texts;        // what the cells point at, a place each
    std::vector<Cell> cells;
    int rows = 0;
  };

  std::string insertText(Table const& table, int rows) const;
  int rowsOf(Table const& table) const;
  void flush(Table const& table, Pending& pending);
  void execute(Statement& statement, std::span<Cell const> cells);

  moxDatabaseConnection& connection_;
  int rowsPerStatement_;
  std::vector<Pending> pending_;      // a table each
  std::int64_t uncommittedRows_ = 0;  // in statements that ran
};

}  // namespace escola
