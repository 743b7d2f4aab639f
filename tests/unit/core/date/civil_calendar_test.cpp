#include "core/date/civil_calendar.h"

#include <ctime>

#include <gtest/gtest.h>

using mox::core::civilFromDays;
using mox::core::daysFromCivil;
using mox::core::kFirstDay;
using mox::core::kLastDay;

TEST(CivilCalendar, EveryDayAgreesWithTheSystemsCalendar) {
  for (std::int64_t day = kFirstDay; day <= kLastDay; ++day) {
    std::time_t const seconds = day * mox::core::kSecondsPerDay;
    std::tm expected{};
    ASSERT_NE(gmtime_r(&seconds, &expected), nullptr);
    auto const civil = civilFromDays(day);
    ASSERT_EQ(civil.day, expected.tm_mday) << day;
    ASSERT_EQ(civil.month, expected.tm_mon + 1) << day;
    ASSERT_EQ(civil.year, expected.tm_year + 1900) << day;
    ASSERT_EQ(daysFromCivil(civil), day);
    ASSERT_EQ(mox::core::dayOfWeek(day), expected.tm_wday) << day;
    ASSERT_EQ(mox::core::dayOfYear(day), expected.tm_yday) << day;
  }
}

TEST(CivilCalendar, FirstAndLastDayAreThoseOfTheYears1And9999) {
  EXPECT_EQ(daysFromCivil({1, 1, 1}), kFirstDay);
  EXPECT_EQ(daysFromCivil({31, 12, 9999}), kLastDay);
}

TEST(CivilCalendar, MonthsAreCarriedBeforeDays) {
  EXPECT_EQ(daysFromCivil({31, 14, 2023}), daysFromCivil({2, 3, 2024}));
  EXPECT_EQ(daysFromCivil({0, 1, 2024}), daysFromCivil({31, 12, 2023}));
  EXPECT_EQ(daysFromCivil({1, 0, 2024}), daysFromCivil({1, 12, 2023}));
  EXPECT_EQ(daysFromCivil({1, -11, 2024}), daysFromCivil({1, 1, 2023}));
}

TEST(CivilCalendar, DivisionRoundsTowardsThePast) {
  EXPECT_EQ(mox::core::floorDiv(-1, 12), -1);
  EXPECT_EQ(mox::core::floorDiv(-12, 12), -1);
  EXPECT_EQ(mox::core::floorMod(-1, 12), 11);
  EXPECT_EQ(mox::core::floorMod(-12, 12), 0);
}
