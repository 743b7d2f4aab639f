#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <mysql.h>

#include "core/database/block_arena.h"
#include "core/database/mariadb_connection.h"
#include "core/database/mariadb_field.h"
#include "core/database/mariadb_parameters.h"
#include "core/database/mariadb_row_store.h"
#include "core/database/statement_base.h"

namespace mox::core {

/// A statement prepared on a line to a MariaDB server. Its rows are read from the line one by one,
/// or from its own store when another statement needed the line meanwhile.
class MariadbStatement : public StatementBase {
 public:
  MariadbStatement(std::shared_ptr<MariadbConnection> connection, StatementScript script);
  ~MariadbStatement() override;

  void bindInt(int position, int value) override;
  void bindDouble(int position, double value) override;
  void bindString(int position, std::string_view value) override;
  void bindDate(int position, date_t const& value) override;
  void bindNull(int position) override;
  void bindDateTime(int position, datetime_t const& value) override;
  void bindBlob(int position, moxReadBlob const& value) override;

  /// Always -1 for a result: rows are read while the server still sends them.
  std::int64_t rowCount() const override;

  bool isNull(int field) const override;
  int getInt(int field) const override;
  double getDouble(int field) const override;
  std::string_view getString(int field) const override;
  bool getBool(int field) const override;
  date_t getDate(int field) const override;
  datetime_t getDateTime(int field) const override;
  std::shared_ptr<moxReadBlob> getBlob(int field) const override;

  /// Takes the rows not read yet off the line and keeps them. A failure on the way is kept too, and
  /// thrown to whoever reads up to it.
  void keepRemainingRows() noexcept;

 protected:
  void executeMain() override;
  bool fetchMain() override;
  int fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) override;
  void releaseRows() noexcept override;

 private:
  bool isReader() const { return connection_->reader() == this; }
  MariadbParameters& parametersFor(int position);
  MariadbField const& cell(int field) const;
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
