#include "escola/generator/school_calendar.h"

#include <array>

namespace escola {

namespace {

/// Saturday and Sunday give the Monday after.
Day workingDay(Day day) {
  unsigned const weekday = std::chrono::weekday(day).c_encoding();
  if (weekday == 6) {
    return day + std::chrono::days(2);
  }
  return weekday == 0 ? day + std::chrono::days(1) : day;
}

}  // namespace

Day dayOf(int year, int month, int day) {
  return std::chrono::year(year) / month / day;
}

Day monthsLater(Day firstOfMonth, int months) {
  return std::chrono::year_month_day(firstOfMonth) + std::chrono::months(months);
}

int SchoolCalendar::lastYear() const {
  return static_cast<int>(std::chrono::year_month_day(today_).year());
}

Day SchoolCalendar::classesBegin(int year) const {
  return workingDay(dayOf(year, 2, 5));
}

Day SchoolCalendar::bimesterEnd(int year, int bimester) const {
  static constexpr std::array<std::array<int, 2>, kBimesters> kEnds{
      {{4, 18}, {6, 30}, {9, 27}, {12, 11}}};
  auto const [month, day] = kEnds[static_cast<std::size_t>(bimester - 1)];
  return workingDay(dayOf(year, month, day));
}

int SchoolCalendar::schoolDays(int month) const {
  static constexpr std::array<int, 12> kDays{0, 17, 20, 21, 21, 20, 9, 22, 20, 21, 19, 8};
  return kDays[static_cast<std::size_t>(month - 1)];
}

}  // namespace escola
