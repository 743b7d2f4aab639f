#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <mysql.h>

#include "core/database/block_arena.h"
#include "core/database/cell_statement.h"
#include "core/database/mariadb_connection.h"
#include "core/database/mariadb_field.h"
#include "core/database/mariadb_parameters.h"
#include "core/database/mariadb_row_store.h"
#include "core/database/mariadb_value.h"

namespace mox::core {

/// A field of the current row. Texts of numbers and dates are written into `scratch`.
class MariadbCell {
 public:
  MariadbCell(MariadbField const& field, std::string& scratch)
      : field_(&field), scratch_(&scratch) {}

  bool isNull() const { return field_->isNull != 0; }
  int toInt() const { return isNull() ? 0 : readInt32(*field_); }
  double toDouble() const { return isNull() ? 0 : readDouble(*field_); }
  std::string_view toText() const {
    return isNull() ? std::string_view() : readText(*field_, *scratch_);
  }
  std::string_view toBytes() const { return toText(); }
  datetime_t toMoment() const { return isNull() ? datetime_t() : readMoment(*field_); }

 private:
  MariadbField const* field_;
  std::string* scratch_;
};

/// A statement prepared on a line to a MariaDB server. Its rows are read from the line one by one,
/// or from its own store when another statement needed the line meanwhile.
class MariadbStatement final : public CellStatement<MariadbCell> {
 public:
  MariadbStatement(std::shared_ptr<MariadbConnection> connection, StatementScript script);
  ~MariadbStatement() override;

  /// Always -1 for a result: rows are read while the server still sends them.
  std::int64_t rowCount() const override;

  /// Takes the rows not read yet off the line and keeps them. A failure on the way is kept too, and
  /// thrown to whoever reads up to it.
  void keepRemainingRows() noexcept;

 protected:
  int markCount() const override { return parameters_.count(); }
  void setMark(int position, MarkValue const& value) override;
  MariadbCell cellAt(int field) const override;
  void executeMain() override;
  bool fetchMain() override;
  int fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) override;
  void releaseRows() noexcept override;

 private:
  bool isReader() const { return connection_->reader() == this; }
  void readFields();
  bool nextRow();
  bool nextStoredRow();
  bool nextRowOnLine(MariadbRow& row);
  void finishResults();
  void leaveLine() noexcept;
  void skipResults() noexcept;
  void storeRows();

  std::shared_ptr<MariadbConnection> connection_;
  std::string sql_;
  MYSQL_STMT* handle_ = nullptr;
  MariadbParameters parameters_{0};
  MariadbRow row_;
  bool isBound_ = false;  // the client library writes to row_
  MariadbRowStore store_;
  std::exception_ptr storedFailure_;          // stands behind the last stored row
  mutable std::vector<std::string> scratch_;  // texts of numbers and dates, field by field
  BlockArena arena_;                          // texts of the last block
};

}  // namespace mox::core
