#pragma once

#include <cstddef>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/zyn/sql/composed_select.h"

class moxDataMatrixSQLFilter;

/// The values that a filter binds, in the order of its marks.
std::vector<moxBoundValue> valuesOf(moxDataMatrixSQLFilter const& filter);

/// A statement that only takes values and writes them down. There is no database behind it: whoever
/// executes or reads it gets a std::logic_error.
class ValueRecorder final : public moxDatabaseConnection::PreparedStatement {
 public:
  /// By position, from 0 to the last one that was bound; what was left out between is a null.
  std::vector<moxBoundValue> const& values() const { return values_; }

  void bindInt(int position, int value) override;
  void bindDouble(int position, double value) override;
  void bindString(int position, std::string_view value) override;
  void bindDate(int position, date_t const& value) override;
  void bindNull(int position) override;
  void bindDateTime(int position, datetime_t const& value) override;
  void bindBlob(int position, moxReadBlob const& value) override;

  void execute() override;
  bool fetch() override;
  int fieldCount() const override;
  moxDatabaseConnection::FieldInfo const& field(int index) const override;
  std::int64_t rowCount() const override;
  bool isNull(int field) const override;
  int getInt(int field) const override;
  double getDouble(int field) const override;
  std::string_view getString(int field) const override;
  bool getBool(int field) const override;
  date_t getDate(int field) const override;
  datetime_t getDateTime(int field) const override;
  std::shared_ptr<moxReadBlob> getBlob(int field) const override;

 private:
  void record(int position, moxBoundValue value);

  std::vector<moxBoundValue> values_;
};
