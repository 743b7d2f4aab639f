// The two roads of rows into a matrix: cell by cell, and in blocks. Whichever is taken, the matrix
// is the same.

#include "zyn/sql/block_fetch.h"

#include <random>

#include "mox/core/error.h"
#include "support/foreign_column.h"
#include "unit/sql/loader_fixture.h"

namespace mox_test {

namespace {

constexpr int kBlockRows = 1024;

/// Texts on both sides of what fits into a cell, with zero bytes and empty ones among them.
std::string randomText(std::mt19937& random) {
  std::size_t const lengths[] = {0, 1, 11, 12, 13, 30, 300};
  std::string text(lengths[random() % std::size(lengths)], '\0');
  for (char& c : text) {
    c = static_cast<char>(random() % 256);
  }
  return text;
}

FakeCell randomCell(FieldType type, std::mt19937& random) {
  if (random() % 5 == 0) {
    return {};
  }
  switch (type) {
    case FieldType::kInt:
      return static_cast<int>(random());
    case FieldType::kDouble:
      return static_cast<double>(random()) / 7.0 - 1e8;
    case FieldType::kDate:
      return datetime_t::fromTime_t(static_cast<std::time_t>(random()));
    case FieldType::kText:
    case FieldType::kBlob:
      return randomText(random);
  }
  return {};
}

FakeResult randomResult(std::mt19937& random, int rows) {
  FakeResult result;
  int const fieldCount = 1 + static_cast<int>(random() % 8);
  for (int i = 0; i < fieldCount; ++i) {
    result.fields.push_back({"f" + std::to_string(i), static_cast<FieldType>(1 + random() % 5)});
  }
  for (int row = 0; row < rows; ++row) {
    auto& cells = result.rows.emplace_back();
    for (auto const& field : result.fields) {
      cells.push_back(randomCell(field.type, random));
    }
  }
  result.rowCount = random() % 2 == 0 ? -1 : rows;
  return result;
}

class BlockFetchTest : public LoaderTest {
 protected:
  /// Loads the result by one of the roads into a matrix, new unless one is given.
  std::shared_ptr<moxDataMatrix> load(FakeResult const& result, bool byBlocks,
                                      std::shared_ptr<moxDataMatrix> target = matrix({})) {
    database_.result = result;
    database_.offersBlocks = byBlocks;
    loader_.setDataMatrix(target);
    loader_.execute();
    return target;
  }
};

class BothRoadsTest : public BlockFetchTest, public testing::WithParamInterface<int> {};

TEST_P(BothRoadsTest, GiveEqualMatrices) {
  for (unsigned int seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    auto const result = randomResult(random, GetParam());
    EXPECT_TRUE(sameMatrix(*load(result, true), *load(result, false)));
  }
}

TEST_P(BothRoadsTest, GiveEqualMatricesForALayoutOfOtherKinds) {
  for (unsigned int seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    auto const result = randomResult(random, GetParam());
    auto const layout = [] {
      return matrix({{"f1", ints()}, {"missing", texts()}, {"f0", doubles()}, {"f2", texts()}});
    };
    EXPECT_TRUE(sameMatrix(*load(result, true, layout()), *load(result, false, layout())));
  }
}

INSTANTIATE_TEST_SUITE_P(RowCounts, BothRoadsTest,
                         testing::Values(0, 1, 7, 8, 9, kBlockRows - 1, kBlockRows, kBlockRows + 1,
                                         3 * kBlockRows + 5));

TEST_F(BlockFetchTest, ReadsByBlocksWhereTheStatementOffersThem) {
  FakeResult result{{{"a", FieldType::kInt}}, {}, -1};
  result.rows.assign(kBlockRows + 1, {7});
  auto const loaded = load(result, true);
  EXPECT_EQ(loaded->rowCount(), kBlockRows + 1U);
  EXPECT_EQ(database_.blockCalls(), 2);
  EXPECT_EQ(database_.fetchCalls(), 0);
}

// A database may report few rows and have many, or the other way round.
TEST_F(BlockFetchTest, ReportedRowCountIsOnlyAHint) {
  FakeResult result{{{"a", FieldType::kInt}, {"t", FieldType::kText}}, {}, 10};
  result.rows.assign(5000, {7, "x"});
  EXPECT_EQ(load(result, true)->rowCount(), 5000U);
  result.rowCount = 900'000;
  EXPECT_EQ(load(result, true)->rowCount(), 5000U);
}

// Columns grow in another way once they are large.
TEST_F(BlockFetchTest, LargeResultsKeepEveryRow) {
  constexpr int kRows = 140'000;
  FakeResult result{{{"n", FieldType::kInt}, {"t", FieldType::kText}}, {}, -1};
  for (int row = 0; row < kRows; ++row) {
    result.rows.push_back({row, "row " + std::to_string(row)});
  }
  auto const loaded = load(result, true);
  ASSERT_EQ(loaded->rowCount(), static_cast<unsigned int>(kRows));
  auto const& numbers = dynamic_cast<moxDataMatrixIntColumn const&>(*loaded->columnAt(0));
  auto const& names = dynamic_cast<moxDataMatrixTextColumn const&>(*loaded->columnAt(1));
  for (int row = 0; row < kRows; ++row) {
    auto const at = static_cast<unsigned int>(row);
    ASSERT_EQ(numbers.getValue(at), row);
    ASSERT_EQ(names.getValue(at), "row " + std::to_string(row));
  }
}

TEST_F(BlockFetchTest, SecondExecutionReplacesTheRows) {
  FakeResult const result{{{"t", FieldType::kText}},
                          {{"a text that is too long to stand in a cell"}, {FakeCell{}}},
                          -1};
  auto const loaded = load(result, true);
  loader_.execute();
  EXPECT_THAT(loaded, isMatrix({{"t", texts("a text that is too long to stand in a cell", null)}}));
}

TEST_F(BlockFetchTest, TextsOutliveTheStatement) {
  FakeResult result{{{"t", FieldType::kText}}, {}, -1};
  for (int row = 0; row < 2 * kBlockRows; ++row) {
    result.rows.push_back({"the text of the row with the number " + std::to_string(row)});
  }
  auto const loaded = load(result, true);
  auto const& column = dynamic_cast<moxDataMatrixTextColumn const&>(*loaded->columnAt(0));
  for (unsigned int row = 0; row < 2 * kBlockRows; ++row) {
    ASSERT_EQ(column.getValue(row), "the text of the row with the number " + std::to_string(row));
  }
}

TEST_F(BlockFetchTest, ColumnOfForeignMakeIsFilledCellByCell) {
  auto const target = matrix({{"a", ints()}});
  target->addColumn(std::make_shared<ForeignTextColumn>(
      "t", std::vector<std::optional<std::string>>{"from before"}));
  FakeResult const result{
      {{"a", FieldType::kInt}, {"t", FieldType::kText}}, {{1, "x"}, {2, FakeCell{}}}, -1};
  load(result, true, target);
  EXPECT_EQ(database_.blockCalls(), 0);
  EXPECT_THAT(target, isMatrix({{"a", ints(1, 2)}, {"t", texts("x", null)}}));
}

TEST_F(BlockFetchTest, TwoFieldsOfOneNameAlternateInTheOneColumn) {
  FakeResult const result{
      {{"a", FieldType::kInt}, {"a", FieldType::kInt}}, {{1, 2}, {3, FakeCell{}}}, -1};
  for (bool const byBlocks : {true, false}) {
    auto const target = matrix({{"a", ints()}});
    load(result, byBlocks, target);
    EXPECT_THAT(target, isMatrix({{"a", ints(1, 2, 3, null)}}));
  }
}

TEST_F(BlockFetchTest, TwoFieldsOfOneNameMakeTwoColumnsOfAnEmptyMatrix) {
  FakeResult const result{{{"a", FieldType::kInt}, {"a", FieldType::kInt}}, {{1, 2}}, -1};
  for (bool const byBlocks : {true, false}) {
    EXPECT_THAT(load(result, byBlocks), isMatrix({{"a", ints(1)}, {"a", ints(2)}}));
  }
}

TEST_F(BlockFetchTest, FieldsThatNobodyWantsArePassedOver) {
  FakeResult const result{
      {{"a", FieldType::kInt}, {"x", FieldType::kText}, {"b", FieldType::kInt}}, {{1, "x", 2}}, -1};
  auto const target = matrix({{"b", ints()}});
  load(result, true, target);
  EXPECT_EQ(database_.blockCalls(), 1);
  EXPECT_THAT(target, isMatrix({{"b", ints(2)}}));
}

TEST_F(BlockFetchTest, FailureOnTheWayKeepsWholeBlocks) {
  FakeResult result{{{"a", FieldType::kInt}, {"t", FieldType::kText}}, {}, -1};
  result.rows.assign(3 * kBlockRows, {7, "a text that is too long to stand in a cell"});
  database_.failAt(FakeCall::kFetch, 3);
  auto const target = matrix({});
  EXPECT_THROW(load(result, true, target), moxError);
  EXPECT_EQ(target->columnAt(0)->numRows(), 2U * kBlockRows);
  EXPECT_EQ(target->columnAt(1)->numRows(), 2U * kBlockRows);
  target->appendNullRow();
  auto const& column = dynamic_cast<moxDataMatrixIntColumn const&>(*target->columnAt(0));
  EXPECT_EQ(column.getValue(2 * kBlockRows - 1), 7);
  EXPECT_TRUE(column.isNull(2 * kBlockRows));
}

TEST_F(BlockFetchTest, FailureInTheFirstBlockLeavesNoRows) {
  FakeResult result{{{"a", FieldType::kInt}}, {{1}}, -1};
  database_.failAt(FakeCall::kFetch, 1);
  auto const target = matrix({});
  EXPECT_THROW(load(result, true, target), moxError);
  EXPECT_THAT(target, isMatrix({{"a", ints()}}));
}

}  // namespace

}  // namespace mox_test
