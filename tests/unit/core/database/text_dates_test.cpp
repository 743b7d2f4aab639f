#include "core/database/text_dates.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace mox::core {
namespace {

TEST(TextDates, ReadsIsoDatesAndTimes) {
  EXPECT_EQ(parseIsoDate("2024-03-05"), datetime_t(5, 3, 2024));
  EXPECT_EQ(parseIsoDate("2024-03-05 14:07:09"), datetime_t(5, 3, 2024, 14, 7, 9));
  EXPECT_EQ(parseIsoDate("2024-03-05T14:07:09"), datetime_t(5, 3, 2024, 14, 7, 9));
  EXPECT_EQ(parseIsoDate("2024-03-05 14:07:09.123456"), datetime_t(5, 3, 2024, 14, 7, 9));
  EXPECT_EQ(parseIsoDate("0001-01-01"), datetime_t(1, 1, 1));
  EXPECT_EQ(parseIsoDate("9999-12-31 23:59:59"), datetime_t(31, 12, 9999, 23, 59, 59));
}

TEST(TextDates, IsoFormIsExact) {
  for (char const* text : {"",
                           "2024-3-5",
                           "2024/03/05",
                           "2024-03-05x",
                           "2024-03-05 14:07",
                           "2024-03-05 14:07:09.",
                           "2024-03-05 14:07:09 ",
                           "2024-03-05 1a:07:09",
                           "20a4-03-05",
                           "2024-0:-05",
                           "0000-00-00",
                           "2024-13-01",
                           "2024-02-30",
                           "2023-02-29",
                           "1900-02-29",
                           "2024-04-31",
                           "2024-01-00",
                           "2024-03-05 24:00:00",
                           "2024-03-05 23:60:00",
                           "2024-03-05 23:59:60"}) {
    EXPECT_EQ(parseIsoDate(text), std::nullopt) << text;
  }
}

TEST(TextDates, EveryDayOfFourHundredYearsAgreesWithTheCalendar) {
  for (datetime_t day(1, 1, 1899); day.year() < 2301; day.adjust(1, 0, 0)) {
    ASSERT_EQ(parseIsoDate(isoText(date_t(day))), day) << isoText(day);
  }
}

TEST(TextDates, ReadsPartsWithoutLeadingZerosAndOtherSeparators) {
  EXPECT_EQ(parseDateText("2024-1-01"), datetime_t(1, 1, 2024));
  EXPECT_EQ(parseDateText("2024/3/5"), datetime_t(5, 3, 2024));
  EXPECT_EQ(parseDateText("2024.03.05"), datetime_t(5, 3, 2024));
  EXPECT_EQ(parseDateText(" 2024-3-5"), datetime_t(5, 3, 2024));
  EXPECT_EQ(parseDateText("2024-3-5 7:8:9"), datetime_t(5, 3, 2024, 7, 8, 9));
  EXPECT_EQ(parseDateText("2024-03-05 14:07"), datetime_t(5, 3, 2024, 14, 7, 0));
  EXPECT_EQ(parseDateText("2024-03-05 and more"), datetime_t(5, 3, 2024));
}

TEST(TextDates, ReadsTwoDigitsOfAYear) {
  EXPECT_EQ(parseDateText("69-12-31"), datetime_t(31, 12, 2069));
  EXPECT_EQ(parseDateText("70-01-01"), datetime_t(1, 1, 1970));
  EXPECT_EQ(parseDateText("5-1-1"), datetime_t(1, 1, 5));
}

TEST(TextDates, ReadsUndividedDigits) {
  EXPECT_EQ(parseDateText("20240305"), datetime_t(5, 3, 2024));
  EXPECT_EQ(parseDateText("240305"), datetime_t(5, 3, 2024));
  EXPECT_EQ(parseDateText("20240305140709"), datetime_t(5, 3, 2024, 14, 7, 9));
  EXPECT_EQ(parseDateText("240305140709"), datetime_t(5, 3, 2024, 14, 7, 9));
}

TEST(TextDates, OtherTextsAreNoDates) {
  for (char const* text :
       {"", "abc", "2024", "2024-03", "2024-02-30", "2024-13-1", "2024a3a5", "0000-00-00", "-1-1-1",
        "123456789", "2024-3-5 25:00:00", "2024-333-1"}) {
    EXPECT_EQ(parseDateText(text), std::nullopt) << text;
  }
}

TEST(TextDates, WritesIsoTexts) {
  EXPECT_EQ(isoText(date_t(5, 3, 2024)), "2024-03-05");
  EXPECT_EQ(isoText(datetime_t(5, 3, 33, 4, 5, 6)), "0033-03-05 04:05:06");
  EXPECT_EQ(isoText(date_t()), "");
  EXPECT_EQ(isoText(datetime_t()), "");
}

}  // namespace
}  // namespace mox::core
