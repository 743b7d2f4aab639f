#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/database/mariadb_field.h"
#include "mox/core/datetime.h"

namespace mox::core {

/// Readings of a field's current value, which must not be null. A number out of a text is the
/// longest prefix that is one; fractions are cut off; what is beyond 64 bits stands at the nearest
/// limit; 32 bits wrap.
std::int64_t readInt64Slow(MariadbField const& field);
double readDoubleSlow(MariadbField const& field);
datetime_t readMomentSlow(MariadbField const& field);

/// The value as text, in `scratch` where it is no text already. Valid until either changes.
std::string_view readTextSlow(MariadbField const& field, std::string& scratch);

/// A moment that the server sent; the zero date and dates with a zero month or day are empty.
inline datetime_t momentOf(MYSQL_TIME const& time) {
  constexpr unsigned kMaxYear = 9999;
  constexpr std::int64_t kDaysBeforeEpoch = 719468 + 146097;
  if (time.month == 0 || time.day == 0 || time.year > kMaxYear) {
    return {};
  }
  // Days since 1970-01-01, the year counted from March so that the leap day comes last, and from
  // four centuries before the year 0 so that nothing is below zero.
  unsigned const isEarly = time.month <= 2 ? 1 : 0;
  unsigned const year = time.year + 400 - isEarly;
  unsigned const centuries = year / 100;
  unsigned const dayOfYear = (153 * (time.month + 12 * isEarly - 3) + 2) / 5 + time.day - 1;
  unsigned const daysBefore = year * 365 + year / 4 - centuries + centuries / 4;
  std::int64_t const days = std::int64_t{daysBefore + dayOfYear} - kDaysBeforeEpoch;
  unsigned const seconds = (time.hour * 60 + time.minute) * 60 + time.second;
  return datetime_t::fromTime_t(days * 86400 + seconds);
}

template <class Number>
Number storedNumber(MariadbField const& field) {
  Number value;
  std::memcpy(&value, &field.number, sizeof value);
  return value;
}

// The readings that the loops over whole blocks use: the usual case of each stands in line.

inline std::int32_t readInt32(MariadbField const& field) {
  if (field.kind == MariadbKind::kInt32) {
    return storedNumber<std::int32_t>(field);
  }
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(readInt64Slow(field)));
}

inline double readDouble(MariadbField const& field) {
  return field.kind == MariadbKind::kDouble ? storedNumber<double>(field) : readDoubleSlow(field);
}

inline datetime_t readMoment(MariadbField const& field) {
  return field.holdsTime() ? momentOf(field.time) : readMomentSlow(field);
}

inline std::string_view readText(MariadbField const& field, std::string& scratch) {
  bool const isBytes = field.kind >= MariadbKind::kText || field.kind == MariadbKind::kDecimal;
  return isBytes ? field.view() : readTextSlow(field, scratch);
}

}  // namespace mox::core
