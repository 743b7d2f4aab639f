#include "mox/core/date.h"

#include "core/date/civil_calendar.h"
#include "core/date/clock.h"
#include "mox/core/datetime.h"

namespace core = mox::core;

namespace {

std::int32_t daysOrEmpty(core::CivilDay const& civil, std::int32_t empty) noexcept {
  std::int64_t const days = core::daysFromCivil(civil);
  return days < core::kFirstDay || days > core::kLastDay ? empty : static_cast<std::int32_t>(days);
}

}  // namespace

date_t::date_t(int day, int month, int year) noexcept
    : days_(daysOrEmpty({day, month, year}, kEmpty)) {}

date_t::date_t(datetime_t const& moment) noexcept {
  if (moment) {
    days_ = static_cast<std::int32_t>(core::floorDiv(moment.asTime_t(), core::kSecondsPerDay));
  }
}

date_t date_t::currdate() {
  return date_t(core::now());
}

void date_t::adjust(int days, int months, int years) noexcept {
  if (!*this) {
    return;
  }
  auto const civil = core::civilFromDays(days_);
  days_ = daysOrEmpty({civil.day + days, civil.month + months, civil.year + years}, kEmpty);
}

int date_t::day() const noexcept {
  return *this ? static_cast<int>(core::civilFromDays(days_).day) : 0;
}
int date_t::month() const noexcept {
  return *this ? static_cast<int>(core::civilFromDays(days_).month) : 0;
}
int date_t::year() const noexcept {
  return *this ? static_cast<int>(core::civilFromDays(days_).year) : 0;
}
int date_t::dow() const noexcept {
  return *this ? core::dayOfWeek(days_) : 0;
}

std::optional<std::tm> date_t::asTM() const noexcept {
  return datetime_t(*this).asTM();
}

std::time_t date_t::asTime_t() const noexcept {
  return *this ? days_ * core::kSecondsPerDay : std::numeric_limits<std::time_t>::min();
}

int date_t::daysTo(date_t const& other) const noexcept {
  return *this && other ? other.days_ - days_ : 0;
}
