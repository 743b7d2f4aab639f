#include "core/database/value_placement.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mox::core {
namespace {

using Kinds = std::vector<moxValueKind>;

constexpr auto kInt = moxValueKind::kInt;
constexpr auto kDouble = moxValueKind::kDouble;
constexpr auto kText = moxValueKind::kText;
constexpr auto kNull = moxValueKind::kNull;
constexpr auto kOther = moxValueKind::kOther;

constexpr ManyValuesRules kListsOfThree = {.mostMarks = 3, .bindsLists = true};
constexpr ManyValuesRules kWritesOfThree = {
    .mostMarks = 3, .writesDoubles = true, .writesHexadecimals = true};

/// The road of each value: m(ark), l(ist), n(umeral), h(exadecimal), 0 (a null by name).
std::string roads(std::string_view sql, Kinds const& kinds, ManyValuesRules const& rules) {
  ValuePlacement const placement(findMarks(sql), kinds, rules);
  std::string letters;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    letters += "mlnh0"[static_cast<std::size_t>(placement.roadOf(i))];
  }
  return letters + (placement.fits() ? "" : " too many");
}

TEST(ValuePlacement, AllKeepTheirMarksWhereTheseAreEnough) {
  Kinds const kinds = {kInt, kText, kInt};
  EXPECT_EQ(roads("a in (?, ?, ?)", kinds, kListsOfThree), "mmm");
  EXPECT_EQ(ValuePlacement(findMarks("a in (?, ?, ?)"), kinds, kListsOfThree).describe(), "");
}

TEST(ValuePlacement, TheLongestListIsBoundFirstAndOthersOnlyWhenNeeded) {
  EXPECT_EQ(roads("a in (?, ?) and b in (?, ?, ?)", Kinds(5, kText), kListsOfThree), "mmlll");
  EXPECT_EQ(roads("a in (?,?) and b in (?,?,?) and c = ?", Kinds(6, kText), kListsOfThree),
            "lllllm");
}

TEST(ValuePlacement, OnlyListsBehindInAreBound) {
  EXPECT_EQ(roads("f(?, ?, ?, ?)", Kinds(4, kText), kListsOfThree), "mmmm too many");
  EXPECT_EQ(roads("values (?, ?), (?, ?)", Kinds(4, kInt), kListsOfThree), "nnmm");
}

TEST(ValuePlacement, NumbersAreWrittenBeforeNullsAndTexts) {
  EXPECT_EQ(roads("a in (?, ?, ?, ?)", {kText, kInt, kDouble, kNull}, kWritesOfThree), "mnmm");
  EXPECT_EQ(roads("a in (?, ?, ?, ?)", {kText, kText, kDouble, kNull}, kWritesOfThree), "mmnm");
  EXPECT_EQ(roads("a in (?, ?, ?, ?)", {kText, kText, kOther, kNull}, kWritesOfThree), "mmm0");
  EXPECT_EQ(roads("a in (?, ?, ?, ?)", {kText, kText, kOther, kOther}, kWritesOfThree), "hhmm");
}

TEST(ValuePlacement, RunsAreWrittenAsAWholeTheLongestFirst) {
  EXPECT_EQ(roads("a in (?, ?) and b in (?, ?, ?)", Kinds(5, kInt), kWritesOfThree), "mmnnn");
}

TEST(ValuePlacement, MarksOutsideOfRunsStay) {
  EXPECT_EQ(roads("a = ? and b = ? and c = ? and d = ?", Kinds(4, kInt), kWritesOfThree),
            "mmmm too many");
}

TEST(ValuePlacement, TellsTheRoads) {
  auto const describe = [](std::string_view sql, Kinds const& kinds, ManyValuesRules const& rules) {
    return ValuePlacement(findMarks(sql), kinds, rules).describe();
  };
  EXPECT_EQ(describe("a in (?, ?, ?, ?)", {kInt, kInt, kText, kOther}, kWritesOfThree),
            "4 values are more than the 3 marks that the database takes: 2 numbers are written as "
            "numerals, 2 are bound to marks of their own");
  EXPECT_EQ(describe("a in (?, ?, ?, ?)", {kText, kOther, kOther, kOther}, kWritesOfThree),
            "4 values are more than the 3 marks that the database takes: 1 text is written as the "
            "hexadecimal numeral of its bytes, 3 are bound to marks of their own");
  EXPECT_EQ(describe("a in (?, ?, ?) and b in (?, ?)", Kinds(5, kText),
                     {.mostMarks = 2, .bindsLists = true}),
            "5 values are more than the 2 marks that the database takes: 5 are bound as 2 lists of "
            "one mark each");
  EXPECT_EQ(describe("f(?, ?, ?, ?)", Kinds(4, kOther), kWritesOfThree),
            "4 values are more than the 3 marks that the database takes: 4 would need a mark of "
            "their own each");
  EXPECT_EQ(describe("a in (?, ?, ?, ?)", {kNull, kOther, kOther, kOther}, kWritesOfThree),
            "4 values are more than the 3 marks that the database takes: 1 null is written by "
            "name, 3 are bound to marks of their own");
}

TEST(ValuePlacement, KnowsTheLimitsOfTheDatabases) {
  EXPECT_EQ(sqliteManyValues().mostMarks, 32766U);
  EXPECT_EQ(mariadbManyValues().mostMarks, 65535U);
}

}  // namespace
}  // namespace mox::core
