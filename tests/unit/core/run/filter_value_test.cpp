#include "core/run/filter_value.h"

#include <gtest/gtest.h>

#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using Types = moxDataMatrixTypes::Types;

FilterValue one(Types type, std::string_view text) {
  return readFilterValue(text, {type, FilterForm::kOne});
}

FilterValue range(Types type, std::string_view text) {
  return readFilterValue(text, {type, FilterForm::kRange});
}

FilterValue list(Types type, std::string_view text) {
  return readFilterValue(text, {type, FilterForm::kList});
}

FilterValue digits(FilterForm form, std::string_view text) {
  return readFilterValue(text, {Types::Text, form, true});
}

template <class Read>
std::string refusal(Read read, Types type, std::string_view text) {
  return test::errorMessageOf([&] { read(type, text); });
}

TEST(FilterValue, WholeNumbersHaveThirtyTwoBits) {
  EXPECT_EQ(one(Types::Int, "5"), FilterValue(FilterOne<int>{5}));
  EXPECT_EQ(one(Types::Int, " -3 "), FilterValue(FilterOne<int>{-3}));
  EXPECT_EQ(one(Types::Int, "+007"), FilterValue(FilterOne<int>{7}));
  EXPECT_EQ(one(Types::Int, "2147483647"), FilterValue(FilterOne<int>{2147483647}));
  EXPECT_EQ(one(Types::Int, "-2147483648"), FilterValue(FilterOne<int>{-2147483647 - 1}));
}

TEST(FilterValue, WhatIsNoWholeNumberIsRefused) {
  for (auto const* const text : {"", "2147483648", "-2147483649", "1.5", "5x", "x", "0x10", "+-5",
                                 "1 2", "1e3", "٣", "99999999999999999999"}) {
    EXPECT_EQ(refusal(one, Types::Int, text),
              quotedForMessage(text) + " is no whole number between -2147483648 and 2147483647");
  }
}

TEST(FilterValue, NumbersTakePointOrComma) {
  EXPECT_EQ(one(Types::Double, "1234.5"), FilterValue(FilterOne<double>{1234.5}));
  EXPECT_EQ(one(Types::Double, "1234,5"), FilterValue(FilterOne<double>{1234.5}));
  EXPECT_EQ(one(Types::Double, "-0,25"), FilterValue(FilterOne<double>{-0.25}));
  EXPECT_EQ(one(Types::Double, "1e3"), FilterValue(FilterOne<double>{1000}));
  EXPECT_EQ(one(Types::Double, ".5"), FilterValue(FilterOne<double>{0.5}));
}

TEST(FilterValue, WhatIsNoNumberIsRefused) {
  for (auto const* const text : {"", "1.234,56", "1,234.56", "1,2,3", "nan", "inf", "infinity",
                                 "1e999", "0x1p3", "R$ 5", "--1", "1.2.3", "e"}) {
    EXPECT_EQ(refusal(one, Types::Double, text),
              quotedForMessage(text) +
                  " is no number; it is written like 1234.56 or 1234,56, without groups");
  }
}

TEST(FilterValue, DaysAreWrittenInTwoWays) {
  EXPECT_EQ(one(Types::Date, "2024-03-05"), FilterValue(FilterOne<date_t>{date_t(5, 3, 2024)}));
  EXPECT_EQ(one(Types::Date, "05/03/2024"), FilterValue(FilterOne<date_t>{date_t(5, 3, 2024)}));
  EXPECT_EQ(one(Types::Date, "29/02/2024"), FilterValue(FilterOne<date_t>{date_t(29, 2, 2024)}));
}

TEST(FilterValue, DaysThatNoCalendarHasAreRefused) {
  for (auto const* const text :
       {"", "2023-02-29", "30/02/2024", "2024-13-01", "00/01/2024", "2024-00-10", "0000-01-01",
        "5/3/2024", "2024/03/05", "05-03-2024", "2024-3-05", "2024-03-05x", "24-03-05",
        "+024-03-05", "ontem", "--2024-0-5"}) {
    EXPECT_EQ(refusal(one, Types::Date, text),
              quotedForMessage(text) +
                  " is no day of the calendar; it is written like 2024-03-05 or 05/03/2024");
  }
}

TEST(FilterValue, OneTextIsTakenAsItStands) {
  for (auto const* const text :
       {"", "a..b", "a,b", "\"x\"", " x ", "O'Brien -- /* {{x}} */ ; drop", "Zé%", "=", "null"}) {
    EXPECT_EQ(one(Types::Text, text), FilterValue(FilterOne<std::string>{text}));
  }
}

TEST(FilterValue, PunctuationIsTakenOutWhereTheDefinitionSaysSo) {
  EXPECT_EQ(digits(FilterForm::kOne, "123.456.789-09"),
            FilterValue(FilterOne<std::string>{"12345678909"}));
  EXPECT_EQ(digits(FilterForm::kOne, "(11) 98765_4321"),
            FilterValue(FilterOne<std::string>{"11 987654321"}));
  EXPECT_EQ(digits(FilterForm::kOne, "Zé-12%"), FilterValue(FilterOne<std::string>{"Zé12%"}));
  EXPECT_EQ(digits(FilterForm::kList, "1-2,3.4"),
            FilterValue(FilterList<std::string>{{"12", "34"}}));
  EXPECT_EQ(digits(FilterForm::kRange, "1-2..3.4"),
            FilterValue(FilterRange<std::string>{"12", "34"}));
}

TEST(FilterValue, RangesMayBeOpenAtOneEnd) {
  EXPECT_EQ(range(Types::Int, "5..9"), FilterValue(FilterRange<int>{5, 9}));
  EXPECT_EQ(range(Types::Int, "5.."), FilterValue(FilterRange<int>{5, std::nullopt}));
  EXPECT_EQ(range(Types::Int, "..9"), FilterValue(FilterRange<int>{std::nullopt, 9}));
  EXPECT_EQ(range(Types::Int, "-5..-5"), FilterValue(FilterRange<int>{-5, -5}));
  EXPECT_EQ(range(Types::Double, "1,5..2.5"), FilterValue(FilterRange<double>{1.5, 2.5}));
  EXPECT_EQ(range(Types::Date, "01/02/2024..2024-03-01"),
            FilterValue(FilterRange<date_t>{date_t(1, 2, 2024), date_t(1, 3, 2024)}));
}

TEST(FilterValue, OneValueIsARangeFromItselfToItself) {
  EXPECT_EQ(range(Types::Int, "5"), FilterValue(FilterRange<int>{5, 5}));
  EXPECT_EQ(range(Types::Text, "B"), FilterValue(FilterRange<std::string>{"B", "B"}));
}

TEST(FilterValue, RangesOfTextsMayBeQuoted) {
  EXPECT_EQ(range(Types::Text, "A..M"), FilterValue(FilterRange<std::string>{"A", "M"}));
  EXPECT_EQ(range(Types::Text, "\"a..b\"..\"c\"\"d\""),
            FilterValue(FilterRange<std::string>{"a..b", "c\"d"}));
  EXPECT_EQ(range(Types::Text, "\"\".."), FilterValue(FilterRange<std::string>{"", std::nullopt}));
  EXPECT_EQ(range(Types::Text, "Z..A"), FilterValue(FilterRange<std::string>{"Z", "A"}))
      << "only the database knows the order of its texts";
}

TEST(FilterValue, RangesThatAreNoneAreRefused) {
  EXPECT_EQ(refusal(range, Types::Int, ".."), "a range needs a value at one end at least");
  EXPECT_EQ(refusal(range, Types::Int, ""), "a range needs a value at one end at least");
  EXPECT_EQ(refusal(range, Types::Int, "9..5"), "the range '9..5' ends before it begins");
  EXPECT_EQ(refusal(range, Types::Date, "2024-01-02..2024-01-01"),
            "the range '2024-01-02..2024-01-01' ends before it begins");
  EXPECT_EQ(refusal(range, Types::Int, "a..5"),
            "'a' is no whole number between -2147483648 and 2147483647");
  EXPECT_EQ(refusal(range, Types::Text, "\"a"), "a quote is not closed in '\"a'");
  EXPECT_EQ(refusal(range, Types::Text, "\"a\"b..c"),
            "after a closing quote comes '..' or the end, not 'b..c'");
}

TEST(FilterValue, ListsArePartedByCommas) {
  EXPECT_EQ(list(Types::Int, "3,1, 2"), FilterValue(FilterList<int>{{3, 1, 2}}));
  EXPECT_EQ(list(Types::Int, "3"), FilterValue(FilterList<int>{{3}}));
  EXPECT_EQ(list(Types::Double, "1.5,\"2,5\""), FilterValue(FilterList<double>{{1.5, 2.5}}));
  EXPECT_EQ(list(Types::Text, "a,\"b,c\",\"d\"\"e\",f\"g,\"\""),
            FilterValue(FilterList<std::string>{{"a", "b,c", "d\"e", "f\"g", ""}}));
  EXPECT_EQ(list(Types::Text, "a..b"), FilterValue(FilterList<std::string>{{"a..b"}}));
}

TEST(FilterValue, ListsThatAreNoneAreRefused) {
  for (auto const* const text : {"", "1,,2", ",1", "1,"}) {
    EXPECT_EQ(refusal(list, Types::Int, text),
              "a list has an empty value; the empty text is written \"\"");
  }
  EXPECT_EQ(refusal(list, Types::Int, "1,x"),
            "'x' is no whole number between -2147483648 and 2147483647");
  EXPECT_EQ(refusal(list, Types::Text, "\"a\"b"),
            "after a closing quote comes ',' or the end, not 'b'");
  EXPECT_EQ(refusal(list, Types::Date, "2024-01-01"), "there are no lists of days");
}

TEST(FilterValue, ListsHaveABound) {
  std::string text = "1";
  for (int i = 1; i < 10'000; ++i) {
    text += ",1";
  }
  EXPECT_EQ(std::get<FilterList<int>>(list(Types::Int, text)).values.size(), 10'000U);
  EXPECT_EQ(refusal(list, Types::Int, text + ",1"), "a list has at most 10000 values");
}

TEST(FilterValue, BlobsCannotBeWritten) {
  EXPECT_EQ(refusal(one, Types::Blob, "x"), "values of this kind cannot be written as a text");
}

TEST(FilterValue, TextsLookLikeTheirForms) {
  EXPECT_EQ(looksLike("5"), FilterForm::kOne);
  EXPECT_EQ(looksLike("5..9"), FilterForm::kRange);
  EXPECT_EQ(looksLike("1,5..2"), FilterForm::kRange);
  EXPECT_EQ(looksLike("a,b"), FilterForm::kList);
  EXPECT_EQ(looksLike("\"a..b\",c"), FilterForm::kList);
  EXPECT_EQ(looksLike("\"a,b\""), FilterForm::kOne);
}

TEST(FilterValue, MessagesQuoteInOneLineAndShorten) {
  EXPECT_EQ(quotedForMessage("a\nb\x7F"), "'a b '");
  EXPECT_EQ(quotedForMessage(std::string(60, 'x')), "'" + std::string(60, 'x') + "'");
  EXPECT_EQ(quotedForMessage(std::string(61, 'x')), "'" + std::string(60, 'x') + "...'");
  EXPECT_EQ(quotedForMessage(std::string(59, 'x') + "éy"), "'" + std::string(59, 'x') + "...'");
}

}  // namespace
}  // namespace mox::core
