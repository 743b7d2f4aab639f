#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/database/mark_value.h"
#include "core/database/statement_base.h"
#include "core/storage/blob.h"

namespace mox::core {

/// What the statements of the kinds of database share beyond StatementBase: values go to a mark in
/// one form, MarkValue, and are read from one view of a field, `Cell`. A Cell is a small value with
/// isNull(), toInt(), toDouble(), toText(), toBytes() and toMoment(), each 0 or empty for a null.
template <class Cell>
class CellStatement : public StatementBase {
 public:
  void bindInt(int position, int value) final { bind(position, value); }
  void bindDouble(int position, double value) final { bind(position, value); }
  void bindString(int position, std::string_view value) final { bind(position, value); }
  void bindDate(int position, date_t const& value) final { bindUnlessEmpty(position, value); }
  void bindNull(int position) final { bind(position, MarkNull{}); }
  void bindDateTime(int position, datetime_t const& value) final {
    bindUnlessEmpty(position, value);
  }
  void bindBlob(int position, moxReadBlob const& value) final {
    bind(position, MarkBytes{{value.data(), value.size()}});
  }

  bool isNull(int field) const final { return cell(field).isNull(); }
  int getInt(int field) const final { return cell(field).toInt(); }
  double getDouble(int field) const final { return cell(field).toDouble(); }
  std::string_view getString(int field) const final { return cell(field).toText(); }
  bool getBool(int field) const final { return getDouble(field) != 0; }
  date_t getDate(int field) const final { return date_t(getDateTime(field)); }
  datetime_t getDateTime(int field) const final { return cell(field).toMoment(); }
  std::shared_ptr<moxReadBlob> getBlob(int field) const final {
    return std::make_shared<Blob>(std::string(cell(field).toBytes()));
  }

 protected:
  using StatementBase::StatementBase;

  virtual int markCount() const = 0;

  /// Keeps a value for the mark at `position`, which is in range. What `value` refers to lives for
  /// the call.
  virtual void setMark(int position, MarkValue const& value) = 0;

  /// The field of the row that the statement stands on; `field` is in range.
  virtual Cell cellAt(int field) const = 0;

 private:
  void bind(int position, MarkValue const& value) {
    requirePosition(position, markCount());
    setMark(position, value);
  }

  template <class Day>
  void bindUnlessEmpty(int position, Day const& value) {
    value ? bind(position, value) : bind(position, MarkNull{});
  }

  Cell cell(int field) const {
    requireField(field);
    return cellAt(field);
  }
};

}  // namespace mox::core
