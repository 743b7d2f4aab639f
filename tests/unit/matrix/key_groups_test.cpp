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
using Columns = std::vector<moxDataMatrixColumn const*>;

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
                           Numbers const& firstRow, Numbers const& inKeyOrder) {
    auto const table = matrix(keys);
    auto const groups = groupByKeys(columnsOf(*table), table->rowCount());
    ASSERT_TRUE(groups);
    EXPECT_EQ(groups->groupOfRow, groupOfRow);
    EXPECT_EQ(groups->firstRow, firstRow);
    EXPECT_EQ(groupsInKeyOrder(columnsOf(*table), *groups), inKeyOrder);
  }

  TestHost host_;
};

TEST_F(KeyGroupsTest, NumbersGroupsInTheOrderOfTheirFirstRows) {
  expectGroups({{"k", ints(5, 3, 5, 4, 3)}}, {0, 1, 0, 2, 1}, {0, 1, 3}, {1, 2, 0});
}

TEST_F(KeyGroupsTest, NullIsAKeyAndComesFirstInOrder) {
  expectGroups({{"k", texts("b", null, "", null)}}, {0, 1, 2, 1}, {0, 1, 2}, {1, 2, 0});
}

TEST_F(KeyGroupsTest, AValueUnderANullIsNotSeen) {
  auto const key = column("k", doubles(1.0, NAN, 1.0));
  auto const cursor = key->begin();
  cursor->goTo(1);
  cursor->setNull();

  auto const groups = groupByKeys({key.get()}, 3);

  ASSERT_TRUE(groups);
  EXPECT_EQ(groups->groupOfRow, Numbers({0, 1, 0}));
}

TEST_F(KeyGroupsTest, NegativeZeroIsZero) {
  expectGroups({{"k", doubles(0.0, -0.0, 1.0)}}, {0, 0, 1}, {0, 2}, {0, 1});
}

TEST_F(KeyGroupsTest, TextsOfEveryLengthAreToldApart) {
  std::vector<std::optional<std::string>> cells;
  Numbers numbers;
  for (std::uint32_t length = 0; length < 40; ++length) {
    cells.emplace_back(std::string(length, 'x'));
    numbers.push_back(length);
  }

  expectGroups({{"k", texts(cells)}}, numbers, numbers, numbers);
}

TEST_F(KeyGroupsTest, SeveralKeysDecideOneAfterTheOther) {
  expectGroups({{"a", ints(2, 1, 2, 1, 2)}, {"b", texts("x", "y", null, "x", "x")}},
               {0, 1, 2, 3, 0}, {0, 1, 2, 3}, {3, 1, 2, 0});
}

TEST_F(KeyGroupsTest, DatesAndBlobs) {
  auto const one = blob("x");
  auto const other = blob("x");
  auto const groups = groupByKeys({column("b", blobs(one, other, one)).get()}, 3);
  EXPECT_EQ(groups->groupOfRow, Numbers({0, 1, 0}));

  expectGroups({{"d", dates("2024-03-05", "2023-01-01", "2024-03-05")}}, {0, 1, 0}, {0, 1}, {1, 0});
}

TEST_F(KeyGroupsTest, OnlyTheRowsAskedForAreGrouped) {
  auto const key = column("k", ints(1, 2, 3));

  EXPECT_EQ(groupByKeys({key.get()}, 2)->groupOfRow, Numbers({0, 1}));
  EXPECT_TRUE(groupByKeys({key.get()}, 0)->firstRow.empty());
}

TEST_F(KeyGroupsTest, ANaNCannotBeHashedUnlessItIsBehindTheRows) {
  auto const key = column("k", doubles(1.0, 2.0, NAN));

  EXPECT_FALSE(groupByKeys({key.get()}, 3));
  EXPECT_TRUE(groupByKeys({key.get()}, 2));
}

TEST_F(KeyGroupsTest, ForeignColumnsAreNotGrouped) {
  auto const own = column("k", ints(1));
  ForeignIntColumn const foreign("f", {1});

  EXPECT_FALSE(groupByKeys({&foreign}, 1));
  EXPECT_FALSE(groupByKeys({own.get(), &foreign}, 1));
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

  auto const groups = groupByKeys({key.get()}, 100000);

  EXPECT_EQ(groups->firstRow, numbers);
  numbers.insert(numbers.end(), numbers.begin(), numbers.begin() + 50000);
  EXPECT_EQ(groups->groupOfRow, numbers);
}

}  // namespace
