#include "cli/bind_value.h"

#include <gtest/gtest.h>

#include "cli/error_text.h"

namespace mox::cli {
namespace {

using std::string_literals::operator""s;

std::string refusal(std::string const& text) {
  try {
    parseBindValue(text);
  } catch (UsageError const& error) {
    return error.what();
  }
  return "accepted";
}

TEST(BindValue, ReadsBareNumbersByTheirForm) {
  EXPECT_EQ(parseBindValue("5"), BindValue(5));
  EXPECT_EQ(parseBindValue("-2147483648"), BindValue(-2147483647 - 1));
  EXPECT_EQ(parseBindValue("0"), BindValue(0));
  EXPECT_EQ(parseBindValue("2.5"), BindValue(2.5));
  EXPECT_EQ(parseBindValue("-.5e3"), BindValue(-500.0));
  EXPECT_EQ(parseBindValue("0.5"), BindValue(0.5));
  EXPECT_EQ(parseBindValue("5000000000"), BindValue(5e9))
      << "too large for 32 bits, but exact in a double";
}

TEST(BindValue, TakesEverythingElseAsText) {
  for (auto const& text : {"abc"s, ""s, "5x"s, "-"s, "."s, "1e999"s, "inf"s, "nan"s, "infinity"s,
                           "+5"s, " 5"s, "2024-03-05"s, "http://x"s, "NULL"s, "0x10"s, "a:b"s}) {
    EXPECT_EQ(parseBindValue(text), BindValue(text)) << text;
  }
}

TEST(BindValue, KeepsTheZerosOfCodes) {
  EXPECT_EQ(parseBindValue("01234567890"), BindValue("01234567890"s));
  EXPECT_EQ(parseBindValue("-007"), BindValue("-007"s));
  EXPECT_EQ(parseBindValue("int:007"), BindValue(7));
}

TEST(BindValue, KeepsWholeNumbersThatADoubleWouldRound) {
  EXPECT_EQ(parseBindValue("9007199254740993"), BindValue("9007199254740993"s));
  EXPECT_EQ(parseBindValue("9007199254740991"), BindValue(9007199254740991.0));
}

TEST(BindValue, ReadsWhatIsSaid) {
  EXPECT_EQ(parseBindValue("text:5"), BindValue("5"s));
  EXPECT_EQ(parseBindValue("text:"), BindValue(""s));
  EXPECT_EQ(parseBindValue("text:null"), BindValue("null"s));
  EXPECT_EQ(parseBindValue("text:a:b"), BindValue("a:b"s));
  EXPECT_EQ(parseBindValue("int:-3"), BindValue(-3));
  EXPECT_EQ(parseBindValue("double:5"), BindValue(5.0));
  EXPECT_EQ(parseBindValue("date:2024-02-29"), BindValue(date_t(29, 2, 2024)));
  EXPECT_EQ(parseBindValue("null"), BindValue(NullValue{}));
}

TEST(BindValue, RefusesWhatTheSaidKindCannotHold) {
  EXPECT_EQ(refusal("int:abc"),
            "--bind int:abc: no whole number between -2147483648 and 2147483647");
  EXPECT_EQ(refusal("int:2147483648"),
            "--bind int:2147483648: no whole number between -2147483648 and 2147483647");
  EXPECT_EQ(refusal("int:"), "--bind int:: no whole number between -2147483648 and 2147483647");
  EXPECT_EQ(refusal("double:nan"), "--bind double:nan: no number that a double can hold");
  EXPECT_EQ(refusal("double:1e999"), "--bind double:1e999: no number that a double can hold");
  for (auto const& day : {"2023-02-29", "2024-13-01", "2024-3-5", "05/03/2024",
                          "2024-03-05 10:00:00", "0000-00-00", "2024-+3-05", ""}) {
    EXPECT_EQ(refusal("date:"s + day), "--bind date:"s + day + ": no day of the form YYYY-MM-DD");
  }
}

}  // namespace
}  // namespace mox::cli
