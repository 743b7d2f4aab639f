#include "core/database/mariadb_value.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace {

using mox::core::MariadbField;
using mox::core::MariadbKind;
using mox::core::momentOf;
using mox::core::readDouble;
using mox::core::readInt32;
using mox::core::readMoment;
using mox::core::readText;

template <class Number>
MariadbField numberField(MariadbKind kind, Number value) {
  MariadbField field;
  field.kind = kind;
  field.isNull = 0;
  field.number = 0xEEEEEEEEEEEEEEEE;  // what a wider value left behind
  std::memcpy(&field.number, &value, sizeof value);
  return field;
}

MariadbField bytesField(MariadbKind kind, std::string const& bytes) {
  MariadbField field;
  field.kind = kind;
  field.isNull = 0;
  field.bytes.assign(bytes.begin(), bytes.end());
  field.bytes.resize(bytes.size() + 7, '9');  // room behind the value
  field.length = bytes.size();
  return field;
}

MYSQL_TIME moment(unsigned year, unsigned month, unsigned day, unsigned hour = 0,
                  unsigned minute = 0, unsigned second = 0) {
  MYSQL_TIME time{};
  time.year = year;
  time.month = month;
  time.day = day;
  time.hour = hour;
  time.minute = minute;
  time.second = second;
  return time;
}

std::string textOf(MariadbField const& field) {
  std::string scratch = "left over";
  return std::string(readText(field, scratch));
}

std::int32_t intOf(std::string const& text) {
  return readInt32(bytesField(MariadbKind::kText, text));
}
double doubleOf(std::string const& text) {
  return readDouble(bytesField(MariadbKind::kText, text));
}

TEST(MariadbValue, NumbersAreReadInTheirOwnWidth) {
  EXPECT_EQ(readInt32(numberField<std::int8_t>(MariadbKind::kInt8, -5)), -5);
  EXPECT_EQ(readInt32(numberField<std::uint8_t>(MariadbKind::kUInt8, 250)), 250);
  EXPECT_EQ(readInt32(numberField<std::int16_t>(MariadbKind::kInt16, -5)), -5);
  EXPECT_EQ(readInt32(numberField<std::uint16_t>(MariadbKind::kUInt16, 65000)), 65000);
  EXPECT_EQ(readInt32(numberField<std::int32_t>(MariadbKind::kInt32, -5)), -5);
  EXPECT_EQ(readDouble(numberField<std::uint32_t>(MariadbKind::kUInt32, 4000000000U)),
            4000000000.0);
  EXPECT_EQ(readDouble(numberField<std::int64_t>(MariadbKind::kInt64, -5000000000)), -5000000000.0);
  EXPECT_EQ(readDouble(numberField<std::uint64_t>(MariadbKind::kUInt64, 18000000000000000000U)),
            1.8e19);
  EXPECT_EQ(readDouble(numberField<float>(MariadbKind::kFloat, 0.5F)), 0.5);
  EXPECT_EQ(readDouble(numberField<double>(MariadbKind::kDouble, 0.1)), 0.1);
}

TEST(MariadbValue, IntegersBeyond32BitsWrap) {
  EXPECT_EQ(readInt32(numberField<std::uint32_t>(MariadbKind::kUInt32, 4294967295U)), -1);
  EXPECT_EQ(readInt32(numberField<std::int64_t>(MariadbKind::kInt64, (std::int64_t{1} << 32) + 7)),
            7);
}

TEST(MariadbValue, DoublesAreCutOffAndStandAtTheLimitOf64Bits) {
  EXPECT_EQ(readInt32(numberField<double>(MariadbKind::kDouble, 12.9)), 12);
  EXPECT_EQ(readInt32(numberField<double>(MariadbKind::kDouble, -12.9)), -12);
  EXPECT_EQ(readInt32(numberField<double>(MariadbKind::kDouble, 1e300)), -1);
  EXPECT_EQ(readInt32(numberField<double>(MariadbKind::kDouble, -1e300)), 0);
  EXPECT_EQ(
      readInt32(numberField<double>(MariadbKind::kDouble, std::numeric_limits<double>::infinity())),
      -1);
  EXPECT_EQ(readInt32(numberField<double>(MariadbKind::kDouble,
                                          std::numeric_limits<double>::quiet_NaN())),
            0);
}

TEST(MariadbValue, TextsReadAsTheIntegerTheyBeginWith) {
  EXPECT_EQ(intOf("12"), 12);
  EXPECT_EQ(intOf("12.9abc"), 12);
  EXPECT_EQ(intOf(" \t\n-12"), -12);
  EXPECT_EQ(intOf("+12"), 12);
  EXPECT_EQ(intOf(""), 0);
  EXPECT_EQ(intOf("   "), 0);
  EXPECT_EQ(intOf("abc"), 0);
  EXPECT_EQ(intOf("+-1"), 0);
  EXPECT_EQ(intOf("-"), 0);
  EXPECT_EQ(intOf("--1"), 0);
  EXPECT_EQ(intOf("99999999999999999999"), -1);
  EXPECT_EQ(intOf("-99999999999999999999"), 0);
}

TEST(MariadbValue, TextsReadAsTheDoubleTheyBeginWith) {
  EXPECT_EQ(doubleOf("2.5"), 2.5);
  EXPECT_EQ(doubleOf(" +7.5e2x"), 750);
  EXPECT_EQ(doubleOf(".5"), 0.5);
  EXPECT_EQ(doubleOf("-.5"), -0.5);
  EXPECT_EQ(doubleOf("."), 0);
  EXPECT_EQ(doubleOf("nan"), 0);
  EXPECT_EQ(doubleOf("inf"), 0);
  EXPECT_EQ(doubleOf("-infinity"), 0);
  EXPECT_EQ(doubleOf("1e400"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(doubleOf("-1e400"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(doubleOf("1e-400"), 0);
}

TEST(MariadbValue, BitsAreANumber) {
  EXPECT_EQ(readInt32(bytesField(MariadbKind::kBit, std::string("\x0A\x01", 2))), 2561);
  EXPECT_EQ(
      textOf(bytesField(MariadbKind::kBit, std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8))),
      "18446744073709551615");
}

TEST(MariadbValue, NumbersAsTexts) {
  EXPECT_EQ(textOf(numberField<std::int8_t>(MariadbKind::kInt8, -5)), "-5");
  EXPECT_EQ(textOf(numberField<double>(MariadbKind::kDouble, 2.5)), "2.5");
  EXPECT_EQ(textOf(numberField<double>(MariadbKind::kDouble, 100)), "100");
  EXPECT_EQ(textOf(numberField<float>(MariadbKind::kFloat, 0.1F)), "0.1");
  EXPECT_EQ(textOf(bytesField(MariadbKind::kDecimal, "12.50")), "12.50");
}

TEST(MariadbValue, MomentsOfAllYears) {
  for (int year = 1; year <= 9999; ++year) {
    for (int const month : {1, 2, 3, 12}) {
      MYSQL_TIME const time =
          moment(static_cast<unsigned>(year), static_cast<unsigned>(month), 28, 23, 59, 58);
      ASSERT_EQ(momentOf(time), datetime_t(28, month, year, 23, 59, 58)) << year << '-' << month;
    }
  }
}

TEST(MariadbValue, EveryDayOfALeapYearAndOfACentury) {
  for (int const year : {1900, 2000, 2023, 2024}) {
    date_t day(1, 1, year);
    while (day.year() == year) {
      MYSQL_TIME const time =
          moment(static_cast<unsigned>(year), static_cast<unsigned>(day.month()),
                 static_cast<unsigned>(day.day()));
      ASSERT_EQ(momentOf(time), datetime_t(day));
      day.adjust(1, 0, 0);
    }
  }
}

TEST(MariadbValue, ZeroPartsOfADateMakeItEmpty) {
  EXPECT_FALSE(momentOf(moment(0, 0, 0)));
  EXPECT_FALSE(momentOf(moment(2024, 0, 10)));
  EXPECT_FALSE(momentOf(moment(2024, 5, 0)));
  EXPECT_FALSE(momentOf(moment(0, 5, 5)));
  EXPECT_FALSE(momentOf(moment(10000, 1, 1)));
}

TEST(MariadbValue, MomentsAsTextsAndNumbers) {
  MariadbField field;
  field.isNull = 0;
  field.kind = MariadbKind::kDateTime;
  field.time = moment(2024, 3, 5, 1, 2, 3);
  field.time.second_part = 45000;
  EXPECT_EQ(textOf(field), "2024-03-05 01:02:03");
  field.decimals = 3;
  EXPECT_EQ(textOf(field), "2024-03-05 01:02:03.045");
  EXPECT_EQ(readDouble(field), 20240305010203.0);
  field.kind = MariadbKind::kDate;
  EXPECT_EQ(textOf(field), "2024-03-05");
  EXPECT_EQ(readInt32(field), 20240305);
}

TEST(MariadbValue, TextsAsMoments) {
  EXPECT_EQ(readMoment(bytesField(MariadbKind::kText, "2024-03-05 01:02:03")),
            datetime_t(5, 3, 2024, 1, 2, 3));
  EXPECT_FALSE(readMoment(bytesField(MariadbKind::kText, "no date")));
  EXPECT_FALSE(readMoment(numberField<std::int32_t>(MariadbKind::kInt32, 20240305)));
}

}  // namespace
