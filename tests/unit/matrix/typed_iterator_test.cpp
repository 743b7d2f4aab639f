#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <typeinfo>
#include <vector>

#include "mox/zyn/matrix/iterator.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "zyn/matrix/data_matrix_columns.h"

using namespace mox_test;

namespace {

/// A column and a cursor over it, which does not own it.
struct Walk {
  explicit Walk(Cells const& cells) : over(column("k", cells)), cursor(over->begin()) {}

  /// On the last row, and one further.
  Walk& toEnd() {
    cursor->goToEnd();
    cursor->next();
    return *this;
  }

  Walk& to(unsigned int row) {
    cursor->goTo(row);
    return *this;
  }

  template <class T>
  moxIteratorBase<T>& as() {
    return dynamic_cast<moxIteratorBase<T>&>(*cursor);
  }

  std::shared_ptr<moxDataMatrixColumn> over;
  std::shared_ptr<moxIterator> cursor;
};

int compare(Cells const& left, Cells const& right) {
  return Walk(left).cursor->compare(Walk(right).cursor);
}

class TypedIterator : public testing::Test {
  TestHost host_;
};

TEST_F(TypedIterator, TellsItsNameTypeAndColumn) {
  Walk walk(texts("a"));

  EXPECT_EQ(walk.cursor->name(), "moxDataMatrixTypedColumnIterator");
  EXPECT_EQ(walk.cursor->getType(), moxDataMatrixTypes::Text);
  EXPECT_EQ(walk.cursor->getParentColumn(), walk.over);
}

TEST_F(TypedIterator, ParentOfAColumnThatNobodySharesIsABadWeakPtr) {
  moxDataMatrixIntColumn_internal loose;

  EXPECT_THROW(loose.begin()->getParentColumn(), std::bad_weak_ptr);
}

TEST_F(TypedIterator, WalksForwardsUntilTheEnd) {
  Walk walk(ints(1, null));

  EXPECT_EQ(walk.as<int>().get(), 1);
  EXPECT_TRUE(walk.cursor->next());
  EXPECT_TRUE(walk.cursor->isNull());
  EXPECT_FALSE(walk.cursor->next());
  EXPECT_TRUE(walk.cursor->atEnd());
}

TEST_F(TypedIterator, GoToEndStandsOnTheLastRowAndOneNextBehindIt) {
  Walk walk(ints(1, 2, 3));

  EXPECT_TRUE(walk.cursor->goToEnd());
  EXPECT_EQ(walk.cursor->pos(), 2U);
  EXPECT_FALSE(walk.cursor->atEnd());

  EXPECT_FALSE(walk.cursor->next());
  EXPECT_TRUE(walk.cursor->atEnd());
  EXPECT_EQ(walk.as<int>().get(), 0);
}

TEST_F(TypedIterator, GoToEndOfAnEmptyColumnIsRefused) {
  Walk walk(ints());

  EXPECT_FALSE(walk.cursor->goToEnd());
  EXPECT_TRUE(walk.cursor->atEnd());
}

TEST_F(TypedIterator, PreviousAtRowZeroStaysThere) {
  Walk walk(ints(1, 2));

  EXPECT_FALSE(walk.cursor->previous());
  EXPECT_EQ(walk.cursor->pos(), 0U);
}

TEST_F(TypedIterator, PreviousComesBackFromTheEnd) {
  Walk walk(ints(1, 2));
  walk.toEnd();

  EXPECT_TRUE(walk.cursor->previous());
  EXPECT_EQ(walk.cursor->pos(), 1U);
}

TEST_F(TypedIterator, GoToRefusesRowsPastTheLast) {
  Walk walk(ints(1, 2));

  EXPECT_TRUE(walk.cursor->goTo(1));
  EXPECT_FALSE(walk.cursor->goTo(2));
  EXPECT_EQ(walk.cursor->pos(), 1U);
}

TEST_F(TypedIterator, CountIsTheRowsLeftWithThisOne) {
  Walk walk(ints(1, 2, 3, 4, 5));

  EXPECT_EQ(walk.cursor->count(), 5U);
  walk.cursor->goTo(2);
  EXPECT_EQ(walk.cursor->count(), 3U);
  walk.toEnd();
  EXPECT_EQ(walk.cursor->count(), 0U);
}

TEST_F(TypedIterator, SetNullThenGetGivesTheNullValueAndSetBringsTheNewOne) {
  Walk walk(ints(1, 2));

  walk.cursor->setNull();
  EXPECT_TRUE(walk.cursor->isNull());
  EXPECT_EQ(walk.as<int>().get(), 0);

  walk.as<int>().set(9);
  EXPECT_EQ(cellAt(*walk.over, 0), Cell(9));
}

TEST_F(TypedIterator, SetNullLeavesTheStoredValue) {
  Walk walk(ints(7));

  walk.cursor->setNull();

  withStorage(*walk.over, []<class T>(ColumnStorage<T>& storage) {
    if constexpr (std::is_same_v<T, int>) {
      EXPECT_EQ(storage.values.cells()[0], 7);
    }
  });
}

TEST_F(TypedIterator, SetFromACursorTakesValueOrNull) {
  Walk target(texts("a text that is longer than twelve", "b"));
  Walk const source(texts("another text longer than twelve"));
  Walk const nothing(texts(null));

  target.cursor->set(source.cursor);
  EXPECT_EQ(target.as<std::string>().get(), "another text longer than twelve");

  target.cursor->set(nothing.cursor);
  EXPECT_TRUE(target.cursor->isNull());
}

TEST_F(TypedIterator, SetFromANullStoresTheNullValueUnderTheFlag) {
  Walk target(ints(7));

  target.cursor->set(Walk(ints(null)).cursor);

  withStorage(*target.over, []<class T>(ColumnStorage<T>& storage) {
    if constexpr (std::is_same_v<T, int>) {
      EXPECT_EQ(storage.values.cells()[0], 0);
    }
  });
}

TEST_F(TypedIterator, SetFromAnotherKindOrNothingChangesNothing) {
  Walk target(ints(7));

  target.cursor->set(Walk(doubles(1.5)).cursor);
  target.cursor->set(std::shared_ptr<moxIterator const>());

  EXPECT_EQ(target.as<int>().get(), 7);
}

TEST_F(TypedIterator, SetFromAForeignCursorOfTheSameKind) {
  Walk target(ints(7, 8));
  auto const foreign =
      std::make_shared<ForeignIntColumn>("f", std::vector<std::optional<int>>{3, std::nullopt});
  auto const cursor = foreign->begin();

  target.cursor->set(cursor);
  EXPECT_EQ(target.as<int>().get(), 3);

  cursor->next();
  target.cursor->set(cursor);
  EXPECT_TRUE(target.cursor->isNull());
}

TEST_F(TypedIterator, SetFromItselfKeepsTheCell) {
  Walk walk(texts("a text that is longer than twelve"));

  walk.cursor->set(walk.cursor);

  EXPECT_EQ(walk.as<std::string>().get(), "a text that is longer than twelve");
}

TEST_F(TypedIterator, AtTheEndItReadsAsNullAndRefusesToWrite) {
  Walk walk(ints(1));
  walk.toEnd();

  EXPECT_FALSE(walk.cursor->next());
  EXPECT_EQ(walk.cursor->pos(), 1U);
  EXPECT_TRUE(walk.cursor->isNull());
  walk.as<int>().set(5);
  walk.cursor->setNull();
  walk.cursor->set(Walk(ints(5)).cursor);

  EXPECT_THAT(walk.over->numRows(), 1U);
  EXPECT_EQ(cellAt(*walk.over, 0), Cell(1));
}

TEST_F(TypedIterator, AtTheEndItComparesAsNull) {
  Walk end(ints(1));
  end.toEnd();

  EXPECT_EQ(end.cursor->compare(Walk(ints(null)).cursor), 0);
  EXPECT_EQ(end.cursor->compare(Walk(ints(-5)).cursor), -1);
  EXPECT_EQ(Walk(ints(-5)).cursor->compare(end.cursor), 1);
}

TEST_F(TypedIterator, ACloneStandsOnTheSameRowAndMovesAlone) {
  Walk walk(ints(1, 2, 3));
  walk.cursor->next();

  auto const clone = walk.cursor->clone();
  EXPECT_EQ(clone->pos(), 1U);
  EXPECT_EQ(clone->getParentColumn(), walk.over);

  clone->next();
  EXPECT_EQ(walk.cursor->pos(), 1U);
}

TEST_F(TypedIterator, StaysWhereItIsWhileTheColumnGrows) {
  Walk walk(texts("first text of some length", "second"));
  walk.cursor->next();

  for (int i = 0; i < 10000; ++i) {
    append(*walk.over, std::string("a text that is longer than twelve"));
  }

  EXPECT_EQ(walk.as<std::string>().get(), "second");
  EXPECT_EQ(walk.cursor->count(), 10001U);
}

TEST_F(TypedIterator, AtTheEndOfAColumnThatGrowsItStandsOnTheNewRow) {
  Walk walk(ints(1));
  walk.toEnd();

  append(*walk.over, 2);

  EXPECT_FALSE(walk.cursor->atEnd());
  EXPECT_EQ(walk.as<int>().get(), 2);
}

TEST_F(TypedIterator, AfterTheColumnWasClearedItIsAtTheEnd) {
  Walk walk(ints(1, 2, 3));
  walk.cursor->goToEnd();

  walk.over->clear();

  EXPECT_TRUE(walk.cursor->atEnd());
  EXPECT_TRUE(walk.cursor->isNull());
  EXPECT_EQ(walk.cursor->pos(), 0U);
  EXPECT_FALSE(walk.cursor->previous());
}

TEST_F(TypedIterator, SortingByCompareGivesNullOneTwo) {
  Walk walk(ints(2, null, 1));
  std::vector<std::shared_ptr<moxIterator>> rows;
  for (unsigned int row = 0; row < 3; ++row) {
    rows.push_back(walk.to(row).cursor->clone());
  }

  std::sort(rows.begin(), rows.end(),
            [](auto const& left, auto const& right) { return left->compare(right) < 0; });

  EXPECT_EQ(rows[0]->pos(), 1U);
  EXPECT_EQ(rows[1]->pos(), 2U);
  EXPECT_EQ(rows[2]->pos(), 0U);
}

TEST_F(TypedIterator, NullsComeFirstAndAreEqual) {
  EXPECT_EQ(compare(ints(null), ints(null)), 0);
  EXPECT_EQ(compare(ints(null), ints(-2000000000)), -1);
  EXPECT_EQ(compare(ints(-2000000000), ints(null)), 1);
  EXPECT_EQ(compare(texts(null), texts("")), -1);
}

TEST_F(TypedIterator, ComparesIntegersWithTheirSign) {
  EXPECT_EQ(compare(ints(-1), ints(1)), -1);
  EXPECT_EQ(compare(ints(2147483647), ints(-2147483647)), 1);
  EXPECT_EQ(compare(ints(3), ints(3)), 0);
}

TEST_F(TypedIterator, ANaNEqualsEveryNumber) {
  EXPECT_EQ(compare(doubles(NAN), doubles(1.0)), 0);
  EXPECT_EQ(compare(doubles(1.0), doubles(NAN)), 0);
  EXPECT_EQ(compare(doubles(NAN), doubles(NAN)), 0);
  EXPECT_EQ(compare(doubles(null), doubles(NAN)), -1);
  EXPECT_EQ(compare(doubles(-0.0), doubles(0.0)), 0);
  EXPECT_EQ(compare(doubles(1.5), doubles(1.25)), 1);
}

TEST_F(TypedIterator, ComparesTextsByBytes) {
  EXPECT_EQ(compare(texts("a"), texts("b")), -1);
  EXPECT_EQ(compare(texts("B"), texts("a")), -1);
  EXPECT_EQ(compare(texts("a"), texts("a ")), -1);
  EXPECT_EQ(compare(texts("\xC3\xA1"), texts("z")), 1);
  EXPECT_EQ(compare(texts("the same long beginning, 1"), texts("the same long beginning, 0")), 1);
}

TEST_F(TypedIterator, TwoDatesWithinTheSameSecondAreEqual) {
  EXPECT_EQ(compare(dates("2024-03-05 10:20:30"), dates("2024-03-05 10:20:30")), 0);
  EXPECT_EQ(compare(dates("2024-03-05 10:20:30"), dates("2024-03-05 10:20:31")), -1);
  EXPECT_EQ(compare(dates(datetime_t()), dates("0001-01-01")), -1);
}

TEST_F(TypedIterator, TwoBlobsWithTheSameBytesAreNotEqual) {
  auto const one = blob("x");
  auto const other = blob("x");

  EXPECT_NE(compare(blobs(one), blobs(other)), 0);
  EXPECT_EQ(compare(blobs(one), blobs(other)), -compare(blobs(other), blobs(one)));
  EXPECT_EQ(compare(blobs(one), blobs(one)), 0);
}

TEST_F(TypedIterator, EqualsIsCompareGivingZero) {
  EXPECT_TRUE(Walk(ints(1)).cursor->equals(Walk(ints(1)).cursor));
  EXPECT_FALSE(Walk(ints(1)).cursor->equals(Walk(ints(2)).cursor));
}

TEST_F(TypedIterator, ComparingWithAnotherKindIsABadCast) {
  EXPECT_THROW(compare(ints(1), doubles(1)), std::bad_cast);
  EXPECT_THROW(compare(ints(null), texts(null)), std::bad_cast);
  EXPECT_THROW(Walk(ints(1)).cursor->equals(Walk(texts("1")).cursor), std::bad_cast);
  EXPECT_THROW(Walk(ints(1)).cursor->compare(nullptr), std::bad_cast);
}

TEST_F(TypedIterator, ComparesWithForeignCursorsOfTheSameKind) {
  auto const foreign = std::make_shared<ForeignTextColumn>(
      "f", std::vector<std::optional<std::string>>{"b", std::nullopt});
  auto const cursor = foreign->begin();

  EXPECT_EQ(Walk(texts("a")).cursor->compare(cursor), -1);
  EXPECT_EQ(Walk(texts("b")).cursor->compare(cursor), 0);
  EXPECT_EQ(cursor->compare(Walk(texts("a")).cursor), 1);

  cursor->next();
  EXPECT_EQ(Walk(texts("a")).cursor->compare(cursor), 1);
  EXPECT_EQ(Walk(texts(null)).cursor->compare(cursor), 0);
}

}  // namespace
