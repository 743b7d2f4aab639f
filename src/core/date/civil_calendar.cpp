#include "core/date/civil_calendar.h"

namespace mox::core {

namespace {

constexpr std::int64_t kDaysPerEra = 146097;   // 400 years
constexpr std::int64_t kDaysToEpoch = 719468;  // from 1 March 0 to 1 January 1970

// Years are counted from March, so that the leap day is the last of its year and month lengths
// follow one line: the days before the n-th month are (153 n + 2) / 5.
std::int64_t daysBeforeMonth(std::int64_t monthFromMarch) noexcept {
  return (153 * monthFromMarch + 2) / 5;
}

std::int64_t daysBeforeYear(std::int64_t yearOfEra) noexcept {
  return 365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100;
}

std::int64_t yearOfEraFromDay(std::int64_t dayOfEra) noexcept {
  return (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
}

}  // namespace

std::int64_t floorDiv(std::int64_t value, std::int64_t divisor) noexcept {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

std::int64_t floorMod(std::int64_t value, std::int64_t divisor) noexcept {
  return value - floorDiv(value, divisor) * divisor;
}

std::int64_t daysFromCivil(CivilDay const& civil) noexcept {
  std::int64_t const monthFromMarch = floorMod(civil.month - 3, 12);
  std::int64_t const year = civil.year + floorDiv(civil.month - 3, 12);
  std::int64_t const era = floorDiv(year, 400);
  return era * kDaysPerEra + daysBeforeYear(year - era * 400) + daysBeforeMonth(monthFromMarch) +
         (civil.day - 1) - kDaysToEpoch;
}

CivilDay civilFromDays(std::int64_t days) noexcept {
  std::int64_t const sinceMarch = days + kDaysToEpoch;
  std::int64_t const era = floorDiv(sinceMarch, kDaysPerEra);
  std::int64_t const dayOfEra = sinceMarch - era * kDaysPerEra;
  std::int64_t const yearOfEra = yearOfEraFromDay(dayOfEra);
  std::int64_t const dayFromMarch = dayOfEra - daysBeforeYear(yearOfEra);
  std::int64_t const monthFromMarch = (5 * dayFromMarch + 2) / 153;
  std::int64_t const month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  std::int64_t const year = era * 400 + yearOfEra + (month <= 2 ? 1 : 0);
  return {dayFromMarch - daysBeforeMonth(monthFromMarch) + 1, month, year};
}

int dayOfWeek(std::int64_t days) noexcept {
  constexpr std::int64_t kThursday = 4;  // 1970-01-01
  return static_cast<int>(floorMod(days + kThursday, 7));
}

int dayOfYear(std::int64_t days) noexcept {
  return static_cast<int>(days - daysFromCivil({1, 1, civilFromDays(days).year}));
}

}  // namespace mox::core
