#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <mysql.h>

#include "mox/core/database_connection.h"

namespace mox::core {

/// How the values of a result field arrive. Numbers come in their own width and are widened when
/// read, which spares the client library its conversions.
enum class MariadbKind : std::uint8_t {
  kInt8,
  kUInt8,
  kInt16,
  kUInt16,
  kInt32,
  kUInt32,
  kInt64,
  kUInt64,
  kBit,  // up to 8 bytes, the highest first
  kFloat,
  kDouble,
  kDecimal,  // as text, so that no digit is lost for those who read it as text
  kDate,
  kDateTime,
  kText,  // times of day included
  kBlob
};

/// Place of a field's current value, bound to the client library, and what is known of the field.
/// Moving one keeps the bytes at their address, copying is not needed.
struct MariadbField {
  MariadbKind kind = MariadbKind::kText;
  std::uint8_t decimals = 0;  // digits of a second's fraction, for kDateTime
  my_bool isNull = 1;
  unsigned long length = 0;  // bytes of the value, where it is held in `bytes`
  std::uint64_t number = 0;  // a number of the width that `kind` tells, in the first bytes
  MYSQL_TIME time{};
  std::vector<char> bytes;  // room for a text's bytes; may be smaller than `length` before the
                            // value was completed

  bool holdsBytes() const {
    return kind >= MariadbKind::kText || kind == MariadbKind::kDecimal || kind == MariadbKind::kBit;
  }
  bool holdsTime() const { return kind == MariadbKind::kDate || kind == MariadbKind::kDateTime; }
  std::string_view view() const { return {bytes.data(), length}; }
};

/// Which kind the values of a field described by the client library have.
MariadbKind mariadbKind(MYSQL_FIELD const& field);

/// The framework's description of a field described by the client library.
moxDatabaseConnection::FieldInfo mariadbFieldInfo(MYSQL_FIELD const& field);

/// The place for the values of one result row, field by field. One object serves all rows of a
/// result: a fetch fills it through the addresses that bind() gave to the client library.
class MariadbRow {
 public:
  /// Makes places for the fields of a result.
  explicit MariadbRow(std::vector<MYSQL_FIELD> const& fields);
  MariadbRow() = default;

  /// Has the next fetches of the statement write to this row. False when the client library
  /// refuses.
  bool bind(MYSQL_STMT* statement);

  /// Completes the values that had no room in their places, which grow for it. To be called when a
  /// fetch reports truncation; the places must be bound again before the next fetch. False when the
  /// client library fails.
  bool complete(MYSQL_STMT* statement);

  std::vector<MariadbField>& fields() { return fields_; }
  std::vector<MariadbField> const& fields() const { return fields_; }

 private:
  std::vector<MariadbField> fields_;
};

}  // namespace mox::core
