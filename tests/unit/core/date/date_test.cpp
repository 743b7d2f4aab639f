#include "mox/core/date.h"

#include <climits>
#include <ctime>
#include <tuple>

#include <gtest/gtest.h>

#include "core/date/clock.h"
#include "mox/core/datetime.h"

namespace {

void expectDay(date_t const& date, int day, int month, int year) {
  EXPECT_EQ(std::tuple(date.day(), date.month(), date.year()), std::tuple(day, month, year));
}

date_t adjusted(date_t date, int days, int months, int years) {
  date.adjust(days, months, years);
  return date;
}

}  // namespace

TEST(Date, IsEmptyWhenNotTold) {
  date_t const empty;
  EXPECT_FALSE(empty);
  expectDay(empty, 0, 0, 0);
  EXPECT_EQ(empty.dow(), 0);
  EXPECT_FALSE(empty.asTM().has_value());
}

TEST(Date, AllZeroIsEmpty) {
  EXPECT_FALSE(date_t(0, 0, 0));
}

TEST(Date, KeepsItsParts) {
  date_t const date(29, 2, 2024);
  EXPECT_TRUE(date);
  expectDay(date, 29, 2, 2024);
  EXPECT_EQ(date.dow(), 4);
}

TEST(Date, CarriesPartsBeyondTheirRange) {
  expectDay(date_t(31, 2, 2023), 3, 3, 2023);
  expectDay(date_t(1, 13, 2023), 1, 1, 2024);
  expectDay(date_t(0, 3, 2024), 29, 2, 2024);
}

TEST(Date, IsEmptyOutsideTheYears1To9999) {
  EXPECT_TRUE(date_t(1, 1, 1));
  EXPECT_FALSE(date_t(31, 12, 0));
  EXPECT_TRUE(date_t(31, 12, 9999));
  EXPECT_FALSE(date_t(1, 1, 10000));
}

TEST(Date, ExtremePartsDoNotOverflow) {
  for (int const day : {INT_MIN, INT_MAX}) {
    for (int const month : {INT_MIN, INT_MAX}) {
      for (int const year : {INT_MIN, INT_MAX}) {
        EXPECT_FALSE(date_t(day, month, year));
      }
    }
  }
  EXPECT_FALSE(adjusted(date_t(1, 1, 2000), INT_MAX, INT_MAX, INT_MAX));
  EXPECT_FALSE(adjusted(date_t(1, 1, 2000), INT_MIN, INT_MIN, INT_MIN));
}

TEST(Date, PartsThatMakeUpForEachOtherAreCarried) {
  expectDay(date_t(1, 1 - 12 * 100, 2100), 1, 1, 2000);
  expectDay(adjusted(date_t(1, 1, 2000), 0, -12000, 1000), 1, 1, 2000);
}

TEST(Date, AdjustAMonthAfter31JanuaryIsThe2ndOr3rdOfMarch) {
  expectDay(adjusted(date_t(31, 1, 2023), 0, 1, 0), 3, 3, 2023);
  expectDay(adjusted(date_t(31, 1, 2024), 0, 1, 0), 2, 3, 2024);
}

TEST(Date, AdjustGoesBackwards) {
  expectDay(adjusted(date_t(1, 3, 2024), -1, 0, 0), 29, 2, 2024);
  expectDay(adjusted(date_t(15, 1, 2024), 0, -1, 0), 15, 12, 2023);
  expectDay(adjusted(date_t(29, 2, 2024), 0, 0, -1), 1, 3, 2023);
}

TEST(Date, AdjustLeavesTheEmptyDateEmpty) {
  EXPECT_FALSE(adjusted(date_t(), 1, 1, 2000));
}

TEST(Date, AdjustBeyondTheLastYearEmptiesTheDate) {
  EXPECT_FALSE(adjusted(date_t(31, 12, 9999), 1, 0, 0));
  EXPECT_FALSE(adjusted(date_t(1, 1, 1), -1, 0, 0));
}

TEST(Date, AsTimeTIsMidnightAsIfInUtc) {
  EXPECT_EQ(date_t(1, 1, 1970).asTime_t(), 0);
  EXPECT_EQ(date_t(2, 1, 1970).asTime_t(), 86400);
  EXPECT_EQ(date_t(31, 12, 1969).asTime_t(), -86400);
}

TEST(Date, EmptyComesBeforeAllOthers) {
  EXPECT_LT(date_t(), date_t(1, 1, 1));
  EXPECT_LT(date_t().asTime_t(), date_t(1, 1, 1).asTime_t());
  EXPECT_EQ(date_t(), date_t(0, 0, 0));
}

TEST(Date, OrderFollowsTheCalendar) {
  EXPECT_LT(date_t(31, 12, 2023), date_t(1, 1, 2024));
  EXPECT_EQ(date_t(3, 3, 2023), date_t(31, 2, 2023));
}

TEST(Date, DaysToIsNegativeTowardsThePast) {
  EXPECT_EQ(date_t(28, 2, 2024).daysTo(date_t(1, 3, 2024)), 2);
  EXPECT_EQ(date_t(1, 3, 2024).daysTo(date_t(28, 2, 2024)), -2);
  EXPECT_EQ(date_t(1, 1, 1).daysTo(date_t(31, 12, 9999)), 3652058);
}

TEST(Date, DaysToIs0WhenEitherIsEmpty) {
  EXPECT_EQ(date_t().daysTo(date_t(1, 3, 2024)), 0);
  EXPECT_EQ(date_t(1, 3, 2024).daysTo(date_t()), 0);
}

TEST(Date, AsTmHasWeekdayAndDayOfTheYear) {
  auto const parts = date_t(31, 12, 2024).asTM();
  ASSERT_TRUE(parts.has_value());
  EXPECT_EQ(parts->tm_year, 124);
  EXPECT_EQ(parts->tm_mon, 11);
  EXPECT_EQ(parts->tm_mday, 31);
  EXPECT_EQ(parts->tm_wday, 2);
  EXPECT_EQ(parts->tm_yday, 365);
  EXPECT_EQ(parts->tm_isdst, 0);
  EXPECT_EQ(parts->tm_hour, 0);
}

TEST(Date, OfAMomentIsItsDay) {
  expectDay(date_t(datetime_t(31, 12, 1969, 23, 59, 59)), 31, 12, 1969);
  expectDay(date_t(datetime_t(1, 1, 1, 0, 0, 0)), 1, 1, 1);
  EXPECT_FALSE(date_t(datetime_t()));
}

TEST(Date, CurrdateFollowsTheClock) {
  mox::core::setClock([] { return datetime_t(5, 3, 2024, 23, 59, 59); });
  expectDay(date_t::currdate(), 5, 3, 2024);
  mox::core::setClock({});
}
