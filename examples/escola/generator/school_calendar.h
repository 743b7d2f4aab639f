#pragma once

#include "escola/generator/cell.h"

namespace escola {

inline constexpr int kSchoolYears = 10;
inline constexpr int kBimesters = 4;

/// The ten school years that end with the one of `today`, the day on which the database shows the
/// school.
class SchoolCalendar {
 public:
  explicit SchoolCalendar(Day today) : today_(today) {}

  Day today() const { return today_; }
  int lastYear() const;
  int firstYear() const { return lastYear() - kSchoolYears + 1; }

  /// First and last day of classes.
  Day classesBegin(int year) const;
  Day classesEnd(int year) const { return bimesterEnd(year, kBimesters); }

  /// Last day of the bimester, 1 to 4.
  Day bimesterEnd(int year, int bimester) const;

  /// Days with classes in a month, 1 to 12.
  int schoolDays(int month) const;

 private:
  Day today_;
};

Day dayOf(int year, int month, int day);

/// First day of the month that lies `months` further.
Day monthsLater(Day firstOfMonth, int months);

}  // namespace escola
