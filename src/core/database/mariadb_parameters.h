#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <mysql.h>

#include "core/database/mark_value.h"

namespace mox::core {

/// Values for the marks of a prepared statement, kept from one execution to the next. Every value
/// is a null at first. Positions count from 0 and must be in range.
class MariadbParameters {
 public:
  explicit MariadbParameters(int count);

  int count() const { return static_cast<int>(values_.size()); }

  /// One for each form of a MarkValue.
  void set(int position, MarkNull);
  void set(int position, int value);
  void set(int position, double value);
  void set(int position, std::string_view value) { setBytes(position, MYSQL_TYPE_STRING, value); }
  void set(int position, MarkBytes value) { setBytes(position, MYSQL_TYPE_BLOB, value.bytes); }
  void set(int position, date_t const& value);
  void set(int position, datetime_t const& value);

  /// What the values take on their way to the server, at most.
  std::size_t byteCount() const;

  /// Gives the values to the client library where it does not have them yet. False when it refuses.
  bool bind(MYSQL_STMT* statement);

 private:
  struct Value {
    enum_field_types type = MYSQL_TYPE_NULL;
    my_bool isNull = 1;
    unsigned long length = 0;
    std::int64_t number = 0;  // an int's value, or the bits of a double
    MYSQL_TIME time{};
    std::string bytes;
  };

  Value& change(int position, enum_field_types type);
  void setBytes(int position, enum_field_types type, std::string_view value);
  static MYSQL_BIND bindingOf(Value& value);

  std::vector<Value> values_;
  bool isBound_ = false;  // the client library knows the types and addresses as they are
};

}  // namespace mox::core
