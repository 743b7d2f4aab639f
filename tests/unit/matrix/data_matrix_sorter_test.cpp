#include "mox/zyn/matrix/data_matrix_sorter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

constexpr bool kAscending = false;
constexpr bool kDescending = true;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class DataMatrixSorter : public testing::Test {
 protected:
  using Keys = std::vector<std::pair<std::string, bool>>;

  std::shared_ptr<moxDataMatrix> sorted(std::shared_ptr<moxDataMatrix> const& input,
                                        Keys const& keys) {
    auto const sorter = host_.get<moxDataMatrixSorter>("moxDataMatrixSorter");
    for (auto const& [columnName, descending] : keys) {
      sorter->pushSortColumn(columnName, descending);
    }
    return sorter->transform(input);
  }

  TestHost host_;
};

TEST_F(DataMatrixSorter, IsRegisteredUnderTheNameItTells) {
  auto const sorter = host_.get<moxDataMatrixSorter>("moxDataMatrixSorter");

  EXPECT_EQ(sorter->name(), "moxDataMatrixSorter");
}

TEST_F(DataMatrixSorter, WithoutSortColumnsTheVeryInputComesBack) {
  auto const input = matrix({{"k", ints(2, 1)}});

  EXPECT_EQ(sorted(input, {}), input);
}

TEST_F(DataMatrixSorter, AnEmptyPointerComesBack) {
  EXPECT_EQ(sorted(nullptr, {{"k", kAscending}}), nullptr);
}

TEST_F(DataMatrixSorter, AnUnknownSortColumnGivesTheVeryInputUnsorted) {
  auto const input = matrix({{"k", ints(2, 1)}});

  auto const result = sorted(input, {{"k", kAscending}, {"missing", kAscending}});

  EXPECT_EQ(result, input);
  EXPECT_THAT(result, isMatrix({{"k", ints(2, 1)}}));
}

TEST_F(DataMatrixSorter, AMatrixWithoutRowsGivesANewEmptyOneWithTheSameColumns) {
  auto const input = matrix({{"k", ints()}, {"t", texts()}});

  auto const result = sorted(input, {{"k", kAscending}});

  EXPECT_NE(result, input);
  EXPECT_NE(result->columnAt(0), input->columnAt(0));
  EXPECT_THAT(result, isMatrix({{"k", ints()}, {"t", texts()}}));
}

TEST_F(DataMatrixSorter, WithoutRowsAnUnknownSortColumnDoesNotMatter) {
  auto const input = matrix({{"k", ints()}});

  auto const result = sorted(input, {{"missing", kAscending}});

  EXPECT_NE(result, input);
  EXPECT_THAT(result, isMatrix({{"k", ints()}}));
}

TEST_F(DataMatrixSorter, NullsComeFirstAscending) {
  EXPECT_THAT(sorted(matrix({{"k", ints(2, null, 1)}}), {{"k", kAscending}}),
              isMatrix({{"k", ints(null, 1, 2)}}));
}

TEST_F(DataMatrixSorter, NullsComeLastDescending) {
  EXPECT_THAT(sorted(matrix({{"k", ints(2, null, 1)}}), {{"k", kDescending}}),
              isMatrix({{"k", ints(2, 1, null)}}));
}

TEST_F(DataMatrixSorter, ASecondKeyDecidesBetweenEqualFirstKeys) {
  auto const input = matrix({{"a", ints(1, 0, 1, 0)}, {"b", texts("x", "z", "w", "y")}});

  EXPECT_THAT(sorted(input, {{"a", kAscending}, {"b", kDescending}}),
              isMatrix({{"a", ints(0, 0, 1, 1)}, {"b", texts("z", "y", "x", "w")}}));
}

TEST_F(DataMatrixSorter, TheInputStaysAsItIs) {
  auto const input = matrix({{"k", ints(3, 1, 2)}});

  sorted(input, {{"k", kAscending}});

  EXPECT_THAT(input, isMatrix({{"k", ints(3, 1, 2)}}));
}

TEST_F(DataMatrixSorter, EveryKindOfColumnTravelsWithItsRow) {
  auto const input = matrix({{"k", ints(2, 1)},
                             {"d", doubles(0.5, null)},
                             {"t", texts("a text that does not fit in a cell", "b")},
                             {"m", dates("2024-03-05 10:20:30", null)},
                             {"b", blobs("xyz", null)}});

  EXPECT_THAT(sorted(input, {{"k", kAscending}}),
              isMatrix({{"k", ints(1, 2)},
                        {"d", doubles(null, 0.5)},
                        {"t", texts("b", "a text that does not fit in a cell")},
                        {"m", dates(null, "2024-03-05 10:20:30")},
                        {"b", blobs(null, "xyz")}}));
}

TEST_F(DataMatrixSorter, LongTextsOutliveTheInput) {
  std::string const longText(5000, 'x');
  auto input = matrix({{"t", texts(longText, "a")}});

  auto const result = sorted(input, {{"t", kAscending}});
  input.reset();

  EXPECT_THAT(result, isMatrix({{"t", texts("a", longText)}}));
}

TEST_F(DataMatrixSorter, WritingToTheResultLeavesTheInputAlone) {
  std::string const longText(50, 'x');
  auto const input = matrix({{"t", texts(longText)}});

  auto const result = sorted(input, {{"t", kAscending}});
  auto const cursor = result->columnAt(0)->begin();
  dynamic_cast<moxIteratorBase<std::string>&>(*cursor).set(std::string(50, 'y'));

  EXPECT_THAT(input, isMatrix({{"t", texts(longText)}}));
}

TEST_F(DataMatrixSorter, FormattersStayWithTheirColumns) {
  auto const input = matrix({{"k", ints(2, 1)}, {"t", texts("a", "b")}});
  // The sorter only hands the formatter on, so a pointer that owns nothing will do.
  std::shared_ptr<moxGenericFormatter const> const formatter(
      std::make_shared<int>(), reinterpret_cast<moxGenericFormatter const*>(&host_));
  input->columnAt(1)->setFormatter(formatter);

  auto const result = sorted(input, {{"k", kAscending}});

  EXPECT_EQ(result->columnAt(0)->getFormatter(), nullptr);
  EXPECT_EQ(result->columnAt(1)->getFormatter(), formatter);
}

TEST_F(DataMatrixSorter, TextsAreOrderedByBytes) {
  using namespace std::string_literals;

  EXPECT_THAT(sorted(matrix({{"t", texts("é", "z", "Z", "a\0b"s, "a", "", null, "a\0"s)}}),
                     {{"t", kAscending}}),
              isMatrix({{"t", texts(null, "", "Z", "a", "a\0"s, "a\0b"s, "z", "é")}}));
}

TEST_F(DataMatrixSorter, TextsThatDifferBehindACommonBeginningAreOrdered) {
  std::string const beginning(100, 'p');

  EXPECT_THAT(sorted(matrix({{"t", texts(beginning + "b", beginning, beginning + "a")}}),
                     {{"t", kDescending}}),
              isMatrix({{"t", texts(beginning + "b", beginning + "a", beginning)}}));
}

TEST_F(DataMatrixSorter, ANaNStandsBetweenTheNullsAndAllNumbers) {
  auto const input = matrix({{"d", doubles(0.0, -kInfinity, NAN, null, kInfinity)}});

  EXPECT_THAT(sorted(input, {{"d", kAscending}}),
              isMatrix({{"d", doubles(null, NAN, -kInfinity, 0.0, kInfinity)}}));
  EXPECT_THAT(sorted(input, {{"d", kDescending}}),
              isMatrix({{"d", doubles(kInfinity, 0.0, -kInfinity, NAN, null)}}));
}

TEST_F(DataMatrixSorter, MinusZeroEqualsZeroAndAllNaNsAreEqual) {
  auto const input =
      matrix({{"d", doubles(0.0, -0.0, 0.0, NAN, -NAN)}, {"n", ints(3, 2, 1, 5, 4)}});

  auto const result = sorted(input, {{"d", kAscending}, {"n", kAscending}});

  result->orderColumnsByName({"n"});
  EXPECT_THAT(result, isMatrix({{"n", ints(4, 5, 1, 2, 3)}}));
}

TEST_F(DataMatrixSorter, RowsWithEqualKeysKeepTheirOrder) {
  auto const input = matrix({{"k", ints(1, 0, 1, 0)}, {"n", ints(0, 1, 2, 3)}});

  EXPECT_THAT(sorted(input, {{"k", kDescending}}),
              isMatrix({{"k", ints(1, 1, 0, 0)}, {"n", ints(0, 2, 1, 3)}}));
}

TEST_F(DataMatrixSorter, DatesAreOrderedByTheirSecondAndTheEmptyOneComesFirst) {
  auto const input =
      matrix({{"m", dates("2024-03-05 00:00:01", "2024-03-05", null, datetime_t())}});

  EXPECT_THAT(sorted(input, {{"m", kAscending}}),
              isMatrix({{"m", dates(null, datetime_t(), "2024-03-05", "2024-03-05 00:00:01")}}));
}

TEST_F(DataMatrixSorter, OnlyRowsCompleteInAllColumnsAreTaken) {
  auto const input = matrix({{"k", ints(3, 1, 2)}, {"t", texts("a", "b")}});

  EXPECT_THAT(sorted(input, {{"k", kAscending}}),
              isMatrix({{"k", ints(1, 3)}, {"t", texts("b", "a")}}));
}

TEST_F(DataMatrixSorter, TheFirstOfTwoColumnsWithOneNameDecides) {
  auto const input = matrix({{"k", ints(2, 1)}, {"k", ints(1, 2)}});

  EXPECT_THAT(sorted(input, {{"k", kAscending}}), isMatrix({{"k", ints(1, 2)}, {"k", ints(2, 1)}}));
}

TEST_F(DataMatrixSorter, ColumnsOfForeignMakeAreSortedAlike) {
  auto const input = matrix({{"n", ints(0, 1, 2)}});
  input->addColumn(std::make_shared<ForeignTextColumn>(
      "t", std::vector<std::optional<std::string>>{"b", std::nullopt, "a"}));

  auto const result = sorted(input, {{"t", kAscending}});

  EXPECT_THAT(result, isMatrix({{"n", ints(1, 2, 0)}, {"t", texts(null, "a", "b")}}));
}

}  // namespace
