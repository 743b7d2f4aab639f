#include "mox/core/datetime.h"

#include <climits>
#include <ctime>
#include <limits>
#include <tuple>

#include <gtest/gtest.h>

namespace {

void expectMoment(datetime_t const& moment, std::tuple<int, int, int> const& day,
                  std::tuple<int, int, int> const& time) {
  EXPECT_EQ(std::tuple(moment.day(), moment.month(), moment.year()), day);
  EXPECT_EQ(std::tuple(moment.hour(), moment.minute(), moment.second()), time);
}

}  // namespace

TEST(DateTime, IsEmptyWhenNotTold) {
  datetime_t const empty;
  EXPECT_FALSE(empty);
  expectMoment(empty, {0, 0, 0}, {0, 0, 0});
  EXPECT_EQ(empty.dow(), 0);
  EXPECT_FALSE(empty.asTM().has_value());
}

TEST(DateTime, KeepsItsParts) {
  expectMoment(datetime_t(29, 2, 2024, 13, 14, 15), {29, 2, 2024}, {13, 14, 15});
  expectMoment(datetime_t(29, 2, 2024), {29, 2, 2024}, {0, 0, 0});
}

TEST(DateTime, KeepsItsPartsBeforeTheEpoch) {
  datetime_t const moment(31, 12, 1899, 23, 59, 58);
  expectMoment(moment, {31, 12, 1899}, {23, 59, 58});
  EXPECT_EQ(moment.dow(), 0);
}

TEST(DateTime, CarriesPartsBeyondTheirRange) {
  expectMoment(datetime_t(31, 12, 2023, 23, 59, 60), {1, 1, 2024}, {0, 0, 0});
  expectMoment(datetime_t(1, 1, 2024, 0, 0, -1), {31, 12, 2023}, {23, 59, 59});
  expectMoment(datetime_t(1, 1, 2024, 48, -60, 0), {2, 1, 2024}, {23, 0, 0});
}

TEST(DateTime, DayMonthAndYear0AreEmptyWhateverTheTime) {
  EXPECT_FALSE(datetime_t(0, 0, 0));
  EXPECT_FALSE(datetime_t(0, 0, 0, INT_MAX, 0, 0));
}

TEST(DateTime, IsEmptyOutsideTheYears1To9999) {
  EXPECT_TRUE(datetime_t(31, 12, 9999, 23, 59, 59));
  EXPECT_FALSE(datetime_t(31, 12, 9999, 23, 59, 60));
  EXPECT_TRUE(datetime_t(1, 1, 1));
  EXPECT_FALSE(datetime_t(1, 1, 1, 0, 0, -1));
  EXPECT_FALSE(datetime_t(INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX));
  EXPECT_FALSE(datetime_t(INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN));
}

TEST(DateTime, FromTimeTGoesThereAndBack) {
  for (std::time_t const seconds : {-62135596800L, -1L, 0L, 1L, 951782400L, 253402300799L}) {
    auto const moment = datetime_t::fromTime_t(seconds);
    EXPECT_TRUE(moment) << seconds;
    EXPECT_EQ(moment.asTime_t(), seconds);
  }
  EXPECT_FALSE(datetime_t::fromTime_t(-62135596801L));
  EXPECT_FALSE(datetime_t::fromTime_t(253402300800L));
  EXPECT_FALSE(datetime_t::fromTime_t(std::numeric_limits<std::time_t>::max()));
}

TEST(DateTime, AdjustKeepsTheTimeOfDay) {
  datetime_t moment(31, 1, 2023, 23, 59, 58);
  moment.adjust(0, 1, 0);
  expectMoment(moment, {3, 3, 2023}, {23, 59, 58});
  moment.adjust(-3, -2, -53);
  expectMoment(moment, {31, 12, 1969}, {23, 59, 58});
}

TEST(DateTime, AdjustNeverMakesAMomentOfTheEmptyOne) {
  datetime_t moment;
  moment.adjust(1, 1, 2000);
  EXPECT_FALSE(moment);
}

TEST(DateTime, AdjustBeyondTheLastYearEmptiesTheMoment) {
  datetime_t moment(31, 12, 9999, 12, 0, 0);
  moment.adjust(1, 0, 0);
  EXPECT_FALSE(moment);
}

TEST(DateTime, OfADateIsMidnight) {
  expectMoment(datetime_t(date_t(5, 3, 2024)), {5, 3, 2024}, {0, 0, 0});
  EXPECT_FALSE(datetime_t(date_t()));
}

TEST(DateTime, EmptyComesBeforeAllOthers) {
  EXPECT_LT(datetime_t(), datetime_t(1, 1, 1));
  EXPECT_LT(datetime_t().asTime_t(), datetime_t(1, 1, 1).asTime_t());
}

TEST(DateTime, AsTmAgreesWithTheSystemAtEveryHourOfALeapYear) {
  for (datetime_t moment(1, 1, 2024); moment.year() == 2024;
       moment = datetime_t::fromTime_t(moment.asTime_t() + 3599)) {
    std::time_t const seconds = moment.asTime_t();
    std::tm expected{};
    gmtime_r(&seconds, &expected);
    auto const parts = moment.asTM().value();
    ASSERT_EQ(std::tuple(parts.tm_sec, parts.tm_min, parts.tm_hour),
              std::tuple(expected.tm_sec, expected.tm_min, expected.tm_hour));
    ASSERT_EQ(std::tuple(parts.tm_mday, parts.tm_mon, parts.tm_year, parts.tm_wday, parts.tm_yday),
              std::tuple(expected.tm_mday, expected.tm_mon, expected.tm_year, expected.tm_wday,
                         expected.tm_yday));
  }
}
