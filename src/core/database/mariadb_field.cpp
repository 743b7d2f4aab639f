#include "core/database/mariadb_field.h"

#include <algorithm>

namespace mox::core {
namespace {

using FieldType = moxDatabaseConnection::FieldType;

constexpr unsigned kBinaryCharset = 63;
constexpr unsigned long kLeastRoom = 32;
constexpr unsigned long kFirstRoom = 256;  // for long texts; grows with the longest value seen

MariadbKind integerKind(MYSQL_FIELD const& field, MariadbKind signedKind) {
  int const offset = (field.flags & UNSIGNED_FLAG) != 0 ? 1 : 0;
  return static_cast<MariadbKind>(static_cast<int>(signedKind) + offset);
}

MariadbKind bytesKind(MYSQL_FIELD const& field) {
  return field.charsetnr == kBinaryCharset ? MariadbKind::kBlob : MariadbKind::kText;
}

enum_field_types boundType(MariadbKind kind) {
  switch (kind) {
    case MariadbKind::kInt8:
    case MariadbKind::kUInt8:
      return MYSQL_TYPE_TINY;
    case MariadbKind::kInt16:
    case MariadbKind::kUInt16:
      return MYSQL_TYPE_SHORT;
    case MariadbKind::kInt32:
    case MariadbKind::kUInt32:
      return MYSQL_TYPE_LONG;
    case MariadbKind::kInt64:
    case MariadbKind::kUInt64:
      return MYSQL_TYPE_LONGLONG;
    case MariadbKind::kFloat:
      return MYSQL_TYPE_FLOAT;
    case MariadbKind::kDouble:
      return MYSQL_TYPE_DOUBLE;
    case MariadbKind::kDate:
    case MariadbKind::kDateTime:
      return MYSQL_TYPE_DATETIME;
    default:
      return MYSQL_TYPE_STRING;
  }
}

bool isUnsigned(MariadbKind kind) {
  return kind == MariadbKind::kUInt8 || kind == MariadbKind::kUInt16 ||
         kind == MariadbKind::kUInt32 || kind == MariadbKind::kUInt64;
}

MYSQL_BIND bindingOf(MariadbField& field) {
  MYSQL_BIND binding{};
  binding.buffer_type = boundType(field.kind);
  binding.is_unsigned = isUnsigned(field.kind) ? 1 : 0;
  binding.is_null = &field.isNull;
  binding.length = &field.length;
  if (field.holdsBytes()) {
    binding.buffer = field.bytes.data();
    binding.buffer_length = field.bytes.size();
  } else if (field.holdsTime()) {
    binding.buffer = &field.time;
    binding.buffer_length = sizeof field.time;
  } else {
    binding.buffer = &field.number;
    binding.buffer_length = sizeof field.number;
  }
  return binding;
}

bool completeField(MYSQL_STMT* statement, MariadbField& field, unsigned index) {
  std::vector<char> bytes(std::max<std::size_t>(field.length, field.bytes.size() * 2));
  my_bool isNull = 0;
  unsigned long length = 0;
  MYSQL_BIND binding{};
  binding.buffer_type = MYSQL_TYPE_STRING;
  binding.buffer = bytes.data();
  binding.buffer_length = bytes.size();
  binding.is_null = &isNull;
  binding.length = &length;
  if (mysql_stmt_fetch_column(statement, &binding, index, 0) != 0 || length > bytes.size()) {
    return false;
  }
  field.bytes = std::move(bytes);
  field.length = length;
  return true;
}

FieldType fieldType(MariadbKind kind) {
  switch (kind) {
    case MariadbKind::kFloat:
    case MariadbKind::kDouble:
    case MariadbKind::kDecimal:
      return FieldType::kDouble;
    case MariadbKind::kDate:
    case MariadbKind::kDateTime:
      return FieldType::kDate;
    case MariadbKind::kText:
      return FieldType::kText;
    case MariadbKind::kBlob:
      return FieldType::kBlob;
    default:
      return FieldType::kInt;
  }
}

std::string text(char const* bytes, unsigned length) {
  return bytes == nullptr ? std::string() : std::string(bytes, length);
}

}  // namespace

MariadbKind mariadbKind(MYSQL_FIELD const& field) {
  switch (field.type) {
    case MYSQL_TYPE_TINY:
      return integerKind(field, MariadbKind::kInt8);
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_YEAR:
      return integerKind(field, MariadbKind::kInt16);
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_LONG:
      return integerKind(field, MariadbKind::kInt32);
    case MYSQL_TYPE_LONGLONG:
      return integerKind(field, MariadbKind::kInt64);
    case MYSQL_TYPE_BIT:
      return MariadbKind::kBit;
    case MYSQL_TYPE_FLOAT:
      return MariadbKind::kFloat;
    case MYSQL_TYPE_DOUBLE:
      return MariadbKind::kDouble;
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
      return MariadbKind::kDecimal;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
      return MariadbKind::kDate;
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_TIMESTAMP:
      return MariadbKind::kDateTime;
    case MYSQL_TYPE_NULL:
    case MYSQL_TYPE_TIME:
      return MariadbKind::kText;
    default:
      return bytesKind(field);
  }
}

moxDatabaseConnection::FieldInfo mariadbFieldInfo(MYSQL_FIELD const& field) {
  moxDatabaseConnection::FieldInfo info;
  info.name = text(field.name, field.name_length);
  info.columnName = text(field.org_name, field.org_name_length);
  info.tableAlias = text(field.table, field.table_length);
  info.tableName = text(field.org_table, field.org_table_length);
  info.type = fieldType(mariadbKind(field));
  return info;
}

MariadbRow::MariadbRow(std::vector<MYSQL_FIELD> const& fields) : fields_(fields.size()) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    MariadbField& place = fields_[i];
    place.kind = mariadbKind(fields[i]);
    place.decimals = static_cast<std::uint8_t>(std::min(fields[i].decimals, 6U));
    if (place.holdsBytes()) {
      bool const bounded = place.kind == MariadbKind::kDecimal || place.kind == MariadbKind::kBit;
      place.bytes.resize(std::clamp(fields[i].length, bounded ? 80UL : kLeastRoom, kFirstRoom));
    }
  }
}

bool MariadbRow::bind(MYSQL_STMT* statement) {
  std::vector<MYSQL_BIND> bindings;
  bindings.reserve(fields_.size());
  for (MariadbField& field : fields_) {
    bindings.push_back(bindingOf(field));
  }
  return mysql_stmt_bind_result(statement, bindings.data()) == 0;
}

bool MariadbRow::complete(MYSQL_STMT* statement) {
  for (unsigned i = 0; i < fields_.size(); ++i) {
    MariadbField& field = fields_[i];
    bool const cut = field.holdsBytes() && field.isNull == 0 && field.length > field.bytes.size();
    if (cut && !completeField(statement, field, i)) {
      return false;
    }
  }
  return true;
}

}  // namespace mox::core
