#pragma once

#include <cstdint>

namespace mox::core {

/// A day of the proleptic Gregorian calendar, or parts that are still to be carried on. Wide enough
/// that sums of any ints do not overflow.
struct CivilDay {
  std::int64_t day = 0;
  std::int64_t month = 0;
  std::int64_t year = 0;
};

inline constexpr std::int64_t kSecondsPerDay = 86400;
inline constexpr std::int64_t kFirstDay = -719162;  // 1 January 1, in days since 1970-01-01
inline constexpr std::int64_t kLastDay = 2932896;   // 31 December 9999

/// Days since 1970-01-01 of a day whose parts may lie beyond their range: months are carried into
/// the year first, then the days are counted on.
std::int64_t daysFromCivil(CivilDay const& civil) noexcept;

/// The day that many days after 1970-01-01.
CivilDay civilFromDays(std::int64_t days) noexcept;

/// 0 for Sunday to 6.
int dayOfWeek(std::int64_t days) noexcept;

/// Days since the first of January of the same year, from 0.
int dayOfYear(std::int64_t days) noexcept;

/// Quotient and remainder that round towards the past, so that the remainder is never negative.
std::int64_t floorDiv(std::int64_t value, std::int64_t divisor) noexcept;
std::int64_t floorMod(std::int64_t value, std::int64_t divisor) noexcept;

}  // namespace mox::core
