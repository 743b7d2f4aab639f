#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/database/block_arena.h"
#include "core/database/cell_statement.h"
#include "core/database/many_values_statement.h"
#include "core/database/sqlite_bound_list.h"
#include "core/database/sqlite_connection.h"
#include "core/database/sqlite_types.h"

struct sqlite3_value;

namespace mox::core {

/// A field of the current row, valid until the next step.
class SqliteCell {
 public:
  explicit SqliteCell(sqlite3_value* value) : value_(value) {}

  int type() const;  // one of SQLite's numbers
  bool isNull() const;
  std::int32_t toInt() const;
  double toDouble() const;

  /// SQLite keeps text as it came: bytes that are no UTF-8, and bytes 0, pass through.
  std::string_view toText() const;
  std::string_view toBytes() const;

  /// Numbers are no dates: nothing tells days, seconds and written-out digits apart.
  datetime_t toMoment() const;

 private:
  sqlite3_value* value_;
};

/// A statement of SQLite. It steps to the first row when it is executed, since that row may have to
/// tell the type of an expression. Binding a value ends the rows of the execution before.
class SqliteStatement final : public CellStatement<SqliteCell>, public ListBinder {
 public:
  /// `script` is in SQLite's own words. Throws moxError for a text that SQLite refuses.
  SqliteStatement(std::shared_ptr<SqliteConnection> line, StatementScript const& script);

  std::int64_t rowCount() const override { return -1; }
  void bindList(int position, std::span<KeptValue const> values) override;

 protected:
  int markCount() const override;
  void setMark(int position, MarkValue const& value) override;
  SqliteCell cellAt(int field) const override;
  void executeMain() override;
  bool fetchMain() override;
  int fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) override;
  void releaseRows() noexcept override;

 private:
  enum class Rows { kNone, kFirstReady, kMore };

  void requirePlainMarks() const;
  void requireBound(int status) const;
  bool step();
  void describeFields();
  FieldInfo describeField(int index);
  FieldType typeAt(int index);
  std::optional<FieldType> typeInFirstRow(int index) const;

  std::shared_ptr<SqliteConnection> line_;
  std::string text_;
  std::deque<SqliteBoundList> lists_;  // SQLite refers to them
  SqliteHandle handle_;
  Rows rows_ = Rows::kNone;
  std::unique_ptr<ResultTypes> resultTypes_;  // made at the first execution that has fields
  int preparations_ = -1;  // SQLite's count when they were made: a changed schema raises it
  BlockArena arena_;
};

}  // namespace mox::core
