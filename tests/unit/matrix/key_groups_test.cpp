#include "zyn/matrix/key_groups.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Numbers = std::vector<std::uint32_t>;
using Columns = KeyGrouper::Columns;

class KeyGroupsTest : public testing::Test {
 protected:
  static Columns columnsOf(moxDataMatrix const& table) {
    Columns columns;
    for (unsigned int place = 0; place < table.columnCount(); ++place) {
      columns.push_back(table.columnAt(place).get());
    }
    return columns;
  }

  static void expectGroups(std::vector<NamedCells> const& keys, Numbers const& groupOfRow,
                           Numbers const& firstRow) {
    auto const table = matrix(keys);
    KeyGrouper grouper;
    ASSERT_TRUE(grouper.group(columnsOf(*table), table->rowCount()));
    EXPECT_EQ(grouper.groups().groupOfRow, groupOfRow);
    EXPECT_EQ(grouper.groups().firstRow, firstRow);
    for (std::uint32_t row = 0; row < table->rowCount(); ++row) {
      EXPECT_EQ(grouper.find(cursorsOn(*table, row)), groupOfRow[row]) << "row " << row;
    }
  }

  static KeyGrouper::Values cursorsOn(moxDataMatrix& table, unsigned int row) {
    KeyGrouper::Values values;
    for (unsigned int place = 0; place < table.columnCount(); ++place) {
      auto const cursor = table.columnAt(place)->begin();
      cursor->goTo(row);
      values.push_back(cursor);
    }
    return values;
  }

  static std::uint32_t found(KeyGrouper const& grouper, std::vector<NamedCells> const& values) {
    auto const table = matrix(values);
    return grouper.find(cursorsOn(*table, 0));
  }

  TestHost host_;
};

TEST_F(KeyGroupsTest, NumbersGroupsInTheOrderOfTheirFirstRows) {
  expectGroups({{"k", ints(5, 3, 5, 4, 3)}}, {0, 1, 0, 2, 1}, {0, 1, 3});
}

TEST_F(KeyGroupsTest, NullIsAKeyLikeAnyOther) {
  expectGroups({{"k", texts("b", null, "", null)}}, {0, 1, 2, 1}, {0, 1, 2});
}

TEST_F(KeyGroupsTest, AValueUnderANullIsNotSeen) {
  auto const key = column("k", doubles(1.0, NAN, 1.0));
  auto const cursor = key->begin();
  cursor->goTo(1);
  cursor->setNull();

  KeyGrouper grouper;
  ASSERT_TRUE(grouper.group({key.get()}, 3));
  EXPECT_EQ(grouper.groups().groupOfRow, Numbers({0, 1, 0}));
}

TEST_F(KeyGroupsTest, NegativeZeroIsZero) {
  expectGroups({{"k", doubles(0.0, -0.0, 1.0)}}, {0, 0, 1}, {0, 2});
}

TEST_F(KeyGroupsTest, TextsOfEveryLengthAreToldApart) {
  std::vector<std::optional<std::string>> cells;
  Numbers numbers;
  for (std::uint32_t length = 0; length < 40; ++length) {
    cells.emplace_back(std::string(length, 'x'));
    numbers.push_back(length);
  }

  expectGroups({{"k", texts(cells)}}, numbers, numbers);
}

TEST_F(KeyGroupsTest, SeveralKeysDecideOneAfterTheOther) {
  expectGroups({{"a", ints(2, 1, 2, 1, 2)}, {"b", texts("x", "y", null, "x", "x")}},
               {0, 1, 2, 3, 0}, {0, 1, 2, 3});
}

TEST_F(KeyGroupsTest, DatesAndBlobs) {
  auto const one = blob("x");
  auto const other = blob("x");
  expectGroups({{"b", blobs(one, other, one)}}, {0, 1, 0}, {0, 1});
  expectGroups({{"d", dates("2024-03-05", "2023-01-01", "2024-03-05")}}, {0, 1, 0}, {0, 1});
}

TEST_F(KeyGroupsTest, OnlyTheRowsAskedForAreGrouped) {
  auto const key = column("k", ints(1, 2, 3));
  KeyGrouper two;
  KeyGrouper none;

  ASSERT_TRUE(two.group({key.get()}, 2));
  ASSERT_TRUE(none.group({key.get()}, 0));

  EXPECT_EQ(two.groups().groupOfRow, Numbers({0, 1}));
  EXPECT_EQ(found(two, {{"k", ints(3)}}), KeyGrouper::kNoGroup);
  EXPECT_TRUE(none.groups().firstRow.empty());
}

TEST_F(KeyGroupsTest, ANaNCannotBeHashedUnlessItIsBehindTheRows) {
  auto const key = column("k", doubles(1.0, 2.0, NAN));

  EXPECT_FALSE(KeyGrouper().group({key.get()}, 3));
  EXPECT_TRUE(KeyGrouper().group({key.get()}, 2));
}

TEST_F(KeyGroupsTest, ForeignColumnsAreNotGrouped) {
  auto const own = column("k", ints(1));
  ForeignIntColumn const foreign("f", {1});

  EXPECT_FALSE(KeyGrouper().group({&foreign}, 1));
  EXPECT_FALSE(KeyGrouper().group({own.get(), &foreign}, 1));
}

TEST_F(KeyGroupsTest, FindsAbsentKeysNowhere) {
  auto const table = matrix({{"a", ints(1, 2)}, {"b", texts("x", "y")}});
  KeyGrouper grouper;
  ASSERT_TRUE(grouper.group(columnsOf(*table), 2));

  EXPECT_EQ(found(grouper, {{"a", ints(3)}, {"b", texts("x")}}), KeyGrouper::kNoGroup);
  EXPECT_EQ(found(grouper, {{"a", ints(1)}, {"b", texts("y")}}), KeyGrouper::kNoGroup);
  EXPECT_EQ(found(grouper, {{"a", ints(1)}, {"b", texts(null)}}), KeyGrouper::kNoGroup);
  EXPECT_EQ(found(grouper, {{"a", ints(2)}, {"b", texts("y")}}), 1U);
}

TEST_F(KeyGroupsTest, SaysWhereHashingCannotTell) {
  auto const table = matrix({{"a", doubles(1.0)}, {"b", texts("x")}});
  KeyGrouper grouper;
  ASSERT_TRUE(grouper.group(columnsOf(*table), 1));

  EXPECT_EQ(found(grouper, {{"a", doubles(1.0)}}), KeyGrouper::kCannotTell);
  EXPECT_EQ(found(grouper, {{"a", doubles(NAN)}, {"b", texts("x")}}), KeyGrouper::kCannotTell);
  EXPECT_EQ(found(grouper, {{"a", doubles(1.0)}, {"b", ints(1)}}), KeyGrouper::kCannotTell);
}

TEST_F(KeyGroupsTest, FindsTheKeysOfForeignCursors) {
  auto const key = column("k", texts("a text that is longer than twelve", null));
  KeyGrouper grouper;
  ASSERT_TRUE(grouper.group({key.get()}, 2));
  auto const foreign = std::make_shared<ForeignTextColumn>(
      "f",
      std::vector<std::optional<std::string>>{std::nullopt, "a text that is longer than twelve"});
  auto const cursor = foreign->begin();

  EXPECT_EQ(grouper.find({cursor}), 1U);
  cursor->next();
  EXPECT_EQ(grouper.find({cursor}), 0U);
}

TEST_F(KeyGroupsTest, AKeyColumnThatWasClearedIsNotReadBeyondItsEnd) {
  auto const key = column("k", texts("a text that is longer than twelve"));
  auto const wanted = column("k", texts("a text that is longer than twelve"));
  KeyGrouper grouper;
  ASSERT_TRUE(grouper.group({key.get()}, 1));

  key->clear();

  EXPECT_EQ(grouper.find({wanted->begin()}), KeyGrouper::kNoGroup);
}

TEST_F(KeyGroupsTest, ManyGroupsSurviveTheGrowthOfTheTable) {
  std::vector<std::optional<int>> cells;
  Numbers numbers;
  for (std::uint32_t i = 0; i < 50000; ++i) {
    cells.emplace_back(static_cast<int>(i * 64));
    numbers.push_back(i);
  }
  cells.insert(cells.end(), cells.begin(), cells.begin() + 50000);
  auto const key = column("k", ints(cells));

  KeyGrouper grouper;
  ASSERT_TRUE(grouper.group({key.get()}, 100000));

  EXPECT_EQ(grouper.groups().firstRow, numbers);
  numbers.insert(numbers.end(), numbers.begin(), numbers.begin() + 50000);
  EXPECT_EQ(grouper.groups().groupOfRow, numbers);
}

}  // namespace
