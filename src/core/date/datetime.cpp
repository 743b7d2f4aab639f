#include "mox/core/datetime.h"

#include "core/date/civil_calendar.h"

namespace core = mox::core;

namespace {

constexpr std::int64_t kFirstSecond = core::kFirstDay * core::kSecondsPerDay;
constexpr std::int64_t kLastSecond = (core::kLastDay + 1) * core::kSecondsPerDay - 1;

std::int64_t inRangeOr(std::int64_t seconds, std::int64_t empty) noexcept {
  return seconds < kFirstSecond || seconds > kLastSecond ? empty : seconds;
}

std::int64_t secondOfDay(std::int64_t seconds) noexcept {
  return core::floorMod(seconds, core::kSecondsPerDay);
}

core::CivilDay civilOf(std::int64_t seconds) noexcept {
  return core::civilFromDays(core::floorDiv(seconds, core::kSecondsPerDay));
}

}  // namespace

datetime_t::datetime_t(int day, int month, int year, int hour, int minute, int second) noexcept {
  if (day == 0 && month == 0 && year == 0) {
    return;
  }
  std::int64_t const time = std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
  seconds_ =
      inRangeOr(core::daysFromCivil({day, month, year}) * core::kSecondsPerDay + time, kEmpty);
}

datetime_t::datetime_t(date_t const& date) noexcept
    : seconds_(date ? date.daysSinceEpoch() * core::kSecondsPerDay : kEmpty) {}

datetime_t datetime_t::fromTime_t(std::time_t seconds) noexcept {
  datetime_t moment;
  moment.seconds_ = inRangeOr(seconds, kEmpty);
  return moment;
}

void datetime_t::adjust(int days, int months, int years) noexcept {
  if (!*this) {
    return;
  }
  auto const civil = civilOf(seconds_);
  auto const day =
      core::daysFromCivil({civil.day + days, civil.month + months, civil.year + years});
  seconds_ = inRangeOr(day * core::kSecondsPerDay + secondOfDay(seconds_), kEmpty);
}

int datetime_t::day() const noexcept {
  return *this ? static_cast<int>(civilOf(seconds_).day) : 0;
}
int datetime_t::month() const noexcept {
  return *this ? static_cast<int>(civilOf(seconds_).month) : 0;
}
int datetime_t::year() const noexcept {
  return *this ? static_cast<int>(civilOf(seconds_).year) : 0;
}

int datetime_t::dow() const noexcept {
  return *this ? core::dayOfWeek(core::floorDiv(seconds_, core::kSecondsPerDay)) : 0;
}

int datetime_t::hour() const noexcept {
  return *this ? static_cast<int>(secondOfDay(seconds_) / 3600) : 0;
}

int datetime_t::minute() const noexcept {
  return *this ? static_cast<int>(secondOfDay(seconds_) / 60 % 60) : 0;
}

int datetime_t::second() const noexcept {
  return *this ? static_cast<int>(secondOfDay(seconds_) % 60) : 0;
}

std::optional<std::tm> datetime_t::asTM() const noexcept {
  if (!*this) {
    return std::nullopt;
  }
  auto const civil = civilOf(seconds_);
  std::tm parts{};
  parts.tm_year = static_cast<int>(civil.year) - 1900;
  parts.tm_mon = static_cast<int>(civil.month) - 1;
  parts.tm_mday = static_cast<int>(civil.day);
  parts.tm_hour = hour();
  parts.tm_min = minute();
  parts.tm_sec = second();
  parts.tm_wday = dow();
  parts.tm_yday = core::dayOfYear(core::floorDiv(seconds_, core::kSecondsPerDay));
  return parts;
}
