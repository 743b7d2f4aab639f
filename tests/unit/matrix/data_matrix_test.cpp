#include "mox/zyn/matrix/data_matrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

class DataMatrix : public testing::Test {
 protected:
  TestHost host_;
};

/// A column that only remembers what it was asked to reserve.
class ReserveProbe final : public moxDataMatrixIntColumn {
 public:
  std::string name() const override { return "testReserveProbe"; }
  void reserve(int rows) override { reserved = rows; }
  void clear() override {}
  unsigned int numRows() const override { return 0; }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Int; }
  bool isNull(unsigned int) const override { return true; }
  std::shared_ptr<moxIterator> begin() override { return {}; }
  std::string getName() const override { return ""; }
  void setName(std::string const&) override {}
  void appendNull() override {}
  void setFormatter(std::shared_ptr<moxGenericFormatter const>) override {}
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return {}; }
  void appendValue(int const&) override {}
  int getValue(unsigned int) const override { return 0; }

  int reserved = -1;
};

TEST_F(DataMatrix, IsRegisteredUnderTheNameItTellsAndNewEachTime) {
  EXPECT_EQ(matrix({})->name(), "moxDataMatrix");
  EXPECT_NE(matrix({}), matrix({}));
}

TEST_F(DataMatrix, RowCountIsThatOfTheShortestColumn) {
  EXPECT_EQ(matrix({{"a", ints(1, 2, 3)}, {"b", ints(1, 2)}})->rowCount(), 2U);
  EXPECT_EQ(matrix({{"a", ints(1, 2)}, {"b", ints(1, 2, 3)}})->rowCount(), 2U);
}

TEST_F(DataMatrix, WithoutColumnsItHasNoRowsAndNoFirstRow) {
  auto const empty = matrix({});

  EXPECT_EQ(empty->columnCount(), 0U);
  EXPECT_EQ(empty->rowCount(), 0U);
  EXPECT_EQ(empty->begin(), nullptr);
}

TEST_F(DataMatrix, WithEmptyColumnsItHasNoFirstRow) {
  EXPECT_EQ(matrix({{"a", ints()}, {"b", texts()}})->begin(), nullptr);
  EXPECT_EQ(matrix({{"a", ints(1)}, {"b", texts()}})->begin(), nullptr);
}

TEST_F(DataMatrix, AddingTheSameColumnTwiceKeepsIt) {
  auto const table = matrix({{"a", ints(1)}, {"b", ints(2)}});

  table->addColumn(table->columnAt(0));

  EXPECT_EQ(table->columnCount(), 2U);
  EXPECT_EQ(table->columnAt(0)->getName(), "a");
}

TEST_F(DataMatrix, AnEmptyPointerIsNoColumn) {
  auto const table = matrix({});

  table->addColumn(nullptr);

  EXPECT_EQ(table->columnCount(), 0U);
}

TEST_F(DataMatrix, TwoColumnsOfOneNameBothStayAndTheFirstIsFound) {
  auto const table = matrix({{"a", ints(1)}, {"a", ints(2)}});

  EXPECT_EQ(table->columnCount(), 2U);
  EXPECT_EQ(table->columnByName("a"), table->columnAt(0));
  EXPECT_EQ(table->getColumnIndexByName("a"), 0);
}

TEST_F(DataMatrix, NamesAreComparedByteByByte) {
  auto const table =
      matrix({{"Nome", ints(1)}, {"nome", ints(2)}, {std::string("a\0b", 3), ints()}});

  EXPECT_EQ(table->getColumnIndexByName("nome"), 1);
  EXPECT_EQ(table->getColumnIndexByName("NOME"), -1);
  EXPECT_EQ(table->getColumnIndexByName("a"), -1);
  EXPECT_EQ(table->getColumnIndexByName(std::string("a\0b", 3)), 2);
  EXPECT_EQ(table->columnByName("NOME"), nullptr);
}

TEST_F(DataMatrix, ARenamedColumnIsFoundUnderItsNewName) {
  auto const table = matrix({{"a", ints(1)}, {"b", ints(2)}});

  table->columnAt(0)->setName("c");

  EXPECT_EQ(table->getColumnIndexByName("c"), 0);
  EXPECT_EQ(table->columnByName("a"), nullptr);
}

TEST_F(DataMatrix, ColumnAtPastTheLastIsEmpty) {
  auto const table = matrix({{"a", ints(1)}});
  moxDataMatrix const& reader = *table;

  EXPECT_EQ(table->columnAt(1), nullptr);
  EXPECT_EQ(table->columnAt(UINT_MAX), nullptr);
  EXPECT_EQ(reader.columnAt(1), nullptr);
  EXPECT_EQ(reader.columnAt(0), table->columnAt(0));
  EXPECT_EQ(reader.columnByName("a"), table->columnAt(0));
  EXPECT_EQ(reader.columnByName("b"), nullptr);
}

TEST_F(DataMatrix, ClearDataTakesTheRowsAndKeepsTheColumns) {
  auto const table = matrix({{"a", ints(1, 2)}, {"b", texts("x", null)}});

  table->clearData();

  EXPECT_THAT(table, isMatrix({{"a", ints()}, {"b", texts()}}));
}

TEST_F(DataMatrix, ReserveReachesEveryColumnAndStopsAtWhatAColumnCanBeTold) {
  auto const table = matrix({});
  auto const one = std::make_shared<ReserveProbe>();
  auto const other = std::make_shared<ReserveProbe>();
  table->addColumn(one);
  table->addColumn(other);

  table->reserve(1000);
  EXPECT_EQ(one->reserved, 1000);
  EXPECT_EQ(other->reserved, 1000);

  table->reserve(UINT_MAX);
  EXPECT_EQ(one->reserved, INT_MAX);
}

TEST_F(DataMatrix, AppendNullRowAddsANullToEveryColumn) {
  auto const table = matrix({{"a", ints(1)}, {"b", texts("x")}});

  EXPECT_TRUE(table->appendNullRow());

  EXPECT_THAT(table, isMatrix({{"a", ints(1, null)}, {"b", texts("x", null)}}));
}

TEST_F(DataMatrix, AppendNullRowWithoutColumnsIsTrueAndChangesNothing) {
  auto const table = matrix({});

  EXPECT_TRUE(table->appendNullRow());
  EXPECT_EQ(table->rowCount(), 0U);
}

TEST_F(DataMatrix, DropColumnTakesThatVeryColumn) {
  auto const table = matrix({{"a", ints(1)}, {"a", ints(2)}});

  table->dropColumn(table->columnAt(1));
  EXPECT_THAT(table, isMatrix({{"a", ints(1)}}));

  table->dropColumn(column("a", ints(1)));
  table->dropColumn(nullptr);
  EXPECT_EQ(table->columnCount(), 1U);
}

TEST_F(DataMatrix, OrderColumnsByNameOrdersAndDropsWhatIsNotNamed) {
  auto const table = matrix({{"a", ints(1)}, {"b", ints(2)}, {"c", ints(3)}});

  table->orderColumnsByName({"c", "a"});

  EXPECT_THAT(table, isMatrix({{"c", ints(3)}, {"a", ints(1)}}));
}

TEST_F(DataMatrix, OrderColumnsByNamePassesOverUnknownNames) {
  auto const table = matrix({{"a", ints(1)}, {"b", ints(2)}});

  table->orderColumnsByName({"x", "b", "y", "a"});
  EXPECT_THAT(table, isMatrix({{"b", ints(2)}, {"a", ints(1)}}));

  table->orderColumnsByName({});
  EXPECT_EQ(table->columnCount(), 0U);
}

TEST_F(DataMatrix, OrderColumnsByNameFindsTheFirstOfTwoNames) {
  auto const table = matrix({{"a", ints(1)}, {"a", ints(2)}});

  table->orderColumnsByName({"a"});

  EXPECT_THAT(table, isMatrix({{"a", ints(1)}}));
}

TEST_F(DataMatrix, ANameThatIsListedTwiceShowsItsColumnTwice) {
  auto const table = matrix({{"a", ints(1)}, {"b", ints(2)}});

  table->orderColumnsByName({"b", "a", "b"});

  EXPECT_EQ(table->columnCount(), 3U);
  EXPECT_EQ(table->columnAt(0), table->columnAt(2));
}

TEST_F(DataMatrix, BeginGivesARowWithACursorAColumnInOrder) {
  auto const table = matrix({{"a", ints(1, 2)}, {"b", texts("x", "y")}});

  auto const row = table->begin();

  ASSERT_EQ(row->totalIterators(), 2U);
  EXPECT_EQ(row->name(), "moxDataMatrixRow");
  EXPECT_EQ(row->getIterator(0)->getParentColumn(), table->columnAt(0));
  EXPECT_EQ(row->getIterator(1)->getParentColumn(), table->columnAt(1));
  EXPECT_EQ(row->getIterator(0)->pos(), 0U);
}

TEST_F(DataMatrix, TakesForeignColumnsBesideItsOwn) {
  auto const table = matrix({{"a", ints(1, 2)}});
  table->addColumn(
      std::make_shared<ForeignIntColumn>("f", std::vector<std::optional<int>>{3, std::nullopt, 5}));

  EXPECT_EQ(table->rowCount(), 2U);
  EXPECT_EQ(table->getColumnIndexByName("f"), 1);
  ASSERT_TRUE(table->begin());
  EXPECT_EQ(table->begin()->findIterator("f")->getType(), moxDataMatrixTypes::Int);

  table->appendNullRow();
  EXPECT_THAT(table, isMatrix({{"a", ints(1, 2, null)}, {"f", ints(3, null, 5, null)}}));
}

}  // namespace
