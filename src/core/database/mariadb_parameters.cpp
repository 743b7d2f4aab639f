#include "core/database/mariadb_parameters.h"

#include <cmath>
#include <cstring>

namespace mox::core {
namespace {

unsigned part(int value) {
  return static_cast<unsigned>(value);
}

}  // namespace

MariadbParameters::MariadbParameters(int count) : values_(static_cast<std::size_t>(count)) {}

/// A null keeps the type of the value before it, so that a column of values and nulls is announced
/// to the server once and not with every row.
MariadbParameters::Value& MariadbParameters::change(int position, enum_field_types type) {
  Value& value = values_[static_cast<std::size_t>(position)];
  isBound_ = isBound_ && value.type == type;
  value.type = type;
  value.isNull = 0;
  return value;
}

void MariadbParameters::set(int position, int value) {
  Value& place = change(position, MYSQL_TYPE_LONG);
  std::memcpy(&place.number, &value, sizeof value);
}

/// The server has no value that is not a number; it becomes a null, as on SQLite. An infinite one
/// is left to the server, which refuses it.
void MariadbParameters::set(int position, double value) {
  if (std::isnan(value)) {
    set(position, MarkNull{});
    return;
  }
  Value& place = change(position, MYSQL_TYPE_DOUBLE);
  std::memcpy(&place.number, &value, sizeof value);
}

void MariadbParameters::setBytes(int position, enum_field_types type, std::string_view value) {
  Value& place = change(position, type);
  char const* const address = place.bytes.data();
  place.bytes.assign(value);
  place.length = place.bytes.size();
  isBound_ = isBound_ && place.bytes.data() == address;
}

void MariadbParameters::set(int position, date_t const& value) {
  Value& place = change(position, MYSQL_TYPE_DATE);
  place.time = MYSQL_TIME{};
  place.time.year = part(value.year());
  place.time.month = part(value.month());
  place.time.day = part(value.day());
  place.time.time_type = MYSQL_TIMESTAMP_DATE;
}

void MariadbParameters::set(int position, datetime_t const& value) {
  Value& place = change(position, MYSQL_TYPE_DATETIME);
  place.time = MYSQL_TIME{};
  place.time.year = part(value.year());
  place.time.month = part(value.month());
  place.time.day = part(value.day());
  place.time.hour = part(value.hour());
  place.time.minute = part(value.minute());
  place.time.second = part(value.second());
  place.time.time_type = MYSQL_TIMESTAMP_DATETIME;
}

void MariadbParameters::set(int position, MarkNull) {
  values_[static_cast<std::size_t>(position)].isNull = 1;
}

MYSQL_BIND MariadbParameters::bindingOf(Value& value) {
  MYSQL_BIND binding{};
  binding.buffer_type = value.type;
  binding.is_null = &value.isNull;
  binding.length = &value.length;
  switch (value.type) {
    case MYSQL_TYPE_STRING:
    case MYSQL_TYPE_BLOB:
      binding.buffer = value.bytes.data();
      binding.buffer_length = value.bytes.size();
      break;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_DATETIME:
      binding.buffer = &value.time;
      break;
    default:
      binding.buffer = &value.number;
  }
  return binding;
}

std::size_t MariadbParameters::byteCount() const {
  // Type, null bit, and a number, a moment or the length of a text.
  constexpr std::size_t kMostBesideTexts = 16;
  std::size_t bytes = values_.size() * kMostBesideTexts;
  for (Value const& value : values_) {
    bytes += value.isNull != 0 ? 0 : value.bytes.size();
  }
  return bytes;
}

bool MariadbParameters::bind(MYSQL_STMT* statement) {
  if (isBound_ || values_.empty()) {
    return true;
  }
  std::vector<MYSQL_BIND> bindings;
  bindings.reserve(values_.size());
  for (Value& value : values_) {
    bindings.push_back(bindingOf(value));
  }
  isBound_ = mysql_stmt_bind_param(statement, bindings.data()) == 0;
  return isBound_;
}

}  // namespace mox::core
