#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/database/block_arena.h"
#include "core/database/sqlite_connection.h"
#include "core/database/sqlite_types.h"
#include "core/database/statement_base.h"

struct sqlite3_value;

namespace mox::core {

/// A statement of SQLite. It steps to the first row when it is executed, since that row may have to
/// tell the type of an expression. Binding a value ends the rows of the execution before.
class SqliteStatement final : public StatementBase {
 public:
  /// `script` is in SQLite's own words. Throws moxError for a text that SQLite refuses.
  SqliteStatement(std::shared_ptr<SqliteConnection> line, StatementScript const& script);

  void bindInt(int position, int value) override;
  void bindDouble(int position, double value) override;
  void bindString(int position, std::string_view value) override;
  void bindDate(int position, date_t const& value) override;
  void bindNull(int position) override;
  void bindDateTime(int position, datetime_t const& value) override;
  void bindBlob(int position, moxReadBlob const& value) override;

  std::int64_t rowCount() const override { return -1; }
  bool isNull(int field) const override;
  int getInt(int field) const override;
  double getDouble(int field) const override;
  std::string_view getString(int field) const override;
  bool getBool(int field) const override;
  date_t getDate(int field) const override;
  datetime_t getDateTime(int field) const override;
  std::shared_ptr<moxReadBlob> getBlob(int field) const override;

 protected:
  void executeMain() override;
  bool fetchMain() override;
  int fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) override;
  void releaseRows() noexcept override;

 private:
  enum class Rows { kNone, kFirstReady, kMore };

  int markAt(int position);
  void requireBound(int status);
  bool step();
  sqlite3_value* valueAt(int field) const;
  void describeFields();
  FieldInfo describeField(int index);
  FieldType typeAt(int index);
  std::optional<FieldType> typeInFirstRow(int index) const;

  std::shared_ptr<SqliteConnection> line_;
  std::string text_;
  SqliteHandle handle_;
  Rows rows_ = Rows::kNone;
  std::unique_ptr<ResultTypes> resultTypes_;  // made at the first execution that has fields
  int preparations_ = -1;  // SQLite's count when they were made: a changed schema raises it
  BlockArena arena_;
};

}  // namespace mox::core
