#include "mox/zyn/matrix/data_matrix_row.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <vector>

#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "zyn/matrix/data_matrix_columns.h"

using namespace mox_test;

namespace {

using Places = std::vector<unsigned int>;

class DataMatrixRow : public testing::Test {
 protected:
  std::shared_ptr<moxDataMatrixRow> newRow() {
    return host_.get<moxDataMatrixRow>("moxDataMatrixRow");
  }

  static Places placesOf(moxDataMatrixRow const& row) {
    Places places;
    for (auto const& cursor : row.getIterators()) {
      places.push_back(cursor->pos());
    }
    return places;
  }

  TestHost host_;
};

TEST_F(DataMatrixRow, ANewOneHasNoCursors) {
  auto const row = newRow();

  EXPECT_EQ(row->name(), "moxDataMatrixRow");
  EXPECT_EQ(row->totalIterators(), 0U);
  EXPECT_EQ(row->getIterator(0), nullptr);
  EXPECT_EQ(row->clone(), nullptr);
}

TEST_F(DataMatrixRow, WithoutCursorsEveryMoveSucceedsAndNothingIsTheEnd) {
  auto const row = newRow();

  EXPECT_TRUE(row->next());
  EXPECT_TRUE(row->previous());
  EXPECT_TRUE(row->goTo(5));
  EXPECT_TRUE(row->goToEnd());
  EXPECT_FALSE(row->atEnd());
  EXPECT_EQ(row->count(), 0U);
}

TEST_F(DataMatrixRow, ACursorEntersOnce) {
  auto const table = matrix({{"a", ints(1)}});
  auto const row = newRow();
  auto const cursor = table->columnAt(0)->begin();

  row->addIterator(cursor);
  row->addIterator(cursor);
  row->addIterator(nullptr);
  EXPECT_EQ(row->totalIterators(), 1U);

  row->addIterator(table->columnAt(0)->begin());
  EXPECT_EQ(row->totalIterators(), 2U);
}

TEST_F(DataMatrixRow, HandsItsCursorsOut) {
  auto const row = matrix({{"a", ints(1)}, {"b", ints(2)}})->begin();
  moxDataMatrixRow const& reader = *row;

  EXPECT_EQ(row->getIterators().size(), 2U);
  EXPECT_EQ(reader.getIterators()[1], row->getIterator(1));
  EXPECT_EQ(reader.getIterator(1), row->getIterator(1));
  EXPECT_EQ(row->getIterator(2), nullptr);
  EXPECT_EQ(reader.getIterator(UINT_MAX), nullptr);
}

TEST_F(DataMatrixRow, RemovesCursors) {
  auto const row = matrix({{"a", ints(1)}, {"b", ints(2)}, {"c", ints(3)}})->begin();
  auto const b = row->getIterator(1);

  row->removeIterator(b);
  EXPECT_EQ(row->totalIterators(), 2U);
  row->removeIterator(b);
  row->removeIterator(nullptr);
  row->removeIteratorAt(2);
  EXPECT_EQ(row->totalIterators(), 2U);

  row->removeIteratorAt(0);
  EXPECT_EQ(row->getIterator(0)->getParentColumn()->getName(), "c");
  EXPECT_EQ(row->findIterator("a"), nullptr);
}

TEST_F(DataMatrixRow, FindsTheFirstCursorByTheNameOfItsColumn) {
  auto const table = matrix({{"a", ints(1)}, {"b", ints(2)}, {"b", ints(3)}});
  auto const row = table->begin();
  moxDataMatrixRow const& reader = *row;

  EXPECT_EQ(row->findIterator("b"), row->getIterator(1));
  EXPECT_EQ(reader.findIterator("b"), row->getIterator(1));
  EXPECT_EQ(row->findIterator("B"), nullptr);
  EXPECT_EQ(reader.findIterator(""), nullptr);

  table->columnAt(0)->setName("b");
  EXPECT_EQ(row->findIterator("b"), row->getIterator(0));
}

TEST_F(DataMatrixRow, WalksAllRowsInStep) {
  auto const row = matrix({{"a", ints(1, 2, 3)}, {"b", texts("x", "y", "z")}})->begin();

  EXPECT_TRUE(row->next());
  EXPECT_EQ(placesOf(*row), Places({1, 1}));
  EXPECT_TRUE(row->previous());
  EXPECT_EQ(placesOf(*row), Places({0, 0}));
  EXPECT_FALSE(row->previous());

  EXPECT_TRUE(row->next());
  EXPECT_TRUE(row->next());
  EXPECT_FALSE(row->atEnd());
  EXPECT_FALSE(row->next());
  EXPECT_TRUE(row->atEnd());
}

TEST_F(DataMatrixRow, ANextThatFailsLeavesTheLaterCursors) {
  auto const row = matrix({{"a", ints(1, 2)}, {"b", ints(1, 2)}, {"c", ints(1, 2)}})->begin();
  row->goToEnd();

  EXPECT_FALSE(row->next());

  EXPECT_EQ(placesOf(*row), Places({2, 1, 1}));
  EXPECT_TRUE(row->goTo(0));
  EXPECT_EQ(placesOf(*row), Places({0, 0, 0}));
}

TEST_F(DataMatrixRow, EndsWithItsShortestColumn) {
  auto const row = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1)}})->begin();

  EXPECT_FALSE(row->next());

  EXPECT_EQ(placesOf(*row), Places({1, 1}));
  EXPECT_TRUE(row->atEnd());
}

TEST_F(DataMatrixRow, PastTheEndItsCursorsReadAsNull) {
  auto const row = matrix({{"a", ints(1)}})->begin();

  EXPECT_FALSE(row->next());

  EXPECT_TRUE(row->getIterator(0)->isNull());
  EXPECT_FALSE(row->next());
  EXPECT_TRUE(row->atEnd());
}

TEST_F(DataMatrixRow, GoToStopsAtTheFirstThatRefuses) {
  auto const row = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1)}, {"c", ints(1, 2, 3)}})->begin();

  EXPECT_FALSE(row->goTo(2));

  EXPECT_EQ(placesOf(*row), Places({2, 0, 0}));
}

TEST_F(DataMatrixRow, GoToEndStandsOnTheLastRow) {
  auto const row = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1, 2, 3)}})->begin();

  EXPECT_TRUE(row->goToEnd());

  EXPECT_EQ(placesOf(*row), Places({2, 2}));
  EXPECT_FALSE(row->atEnd());
}

TEST_F(DataMatrixRow, CountIsTheSmallestOfItsCursors) {
  auto const row = matrix({{"a", ints(1, 2, 3, 4)}, {"b", ints(1, 2, 3)}})->begin();

  EXPECT_EQ(row->count(), 3U);
  row->next();
  EXPECT_EQ(row->count(), 2U);
}

TEST_F(DataMatrixRow, ACloneMovesAlone) {
  auto const row = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1, 2, 3)}})->begin();
  row->next();

  auto const clone = row->clone();
  EXPECT_EQ(placesOf(*clone), Places({1, 1}));
  EXPECT_NE(clone->getIterator(0), row->getIterator(0));

  clone->next();
  EXPECT_EQ(placesOf(*row), Places({1, 1}));
  EXPECT_EQ(placesOf(*clone), Places({2, 2}));
}

TEST_F(DataMatrixRow, KeepsColumnsAliveThatTheMatrixDropped) {
  auto const table = matrix({{"a", ints(1, 2)}, {"b", texts("a text that is longer", "y")}});
  auto const row = table->begin();

  table->orderColumnsByName({"a"});

  auto const cursor = std::dynamic_pointer_cast<moxIteratorBase<std::string>>(row->getIterator(1));
  EXPECT_EQ(cursor->get(), "a text that is longer");
  EXPECT_TRUE(row->next());
  EXPECT_EQ(row->findIterator("b"), row->getIterator(1));
}

TEST_F(DataMatrixRow, KeepsColumnsAliveThatLiveNowhereElse) {
  auto const row = newRow();
  row->addIterator(column("a", ints(7))->begin());

  auto const clone = row->clone();
  row->removeIteratorAt(0);

  EXPECT_EQ(std::dynamic_pointer_cast<moxIteratorBase<int>>(clone->getIterator(0))->get(), 7);
}

TEST_F(DataMatrixRow, TakesACursorOverAColumnThatNobodyShares) {
  moxDataMatrixIntColumn_internal loose;
  loose.appendValue(1);
  auto const row = newRow();

  row->addIterator(loose.begin());

  EXPECT_EQ(row->count(), 1U);
  EXPECT_FALSE(row->next());
  EXPECT_THROW(row->findIterator("a"), std::bad_weak_ptr);
}

TEST_F(DataMatrixRow, MovesForeignCursorsWithItsOwn) {
  auto const table = matrix({{"a", ints(1, 2)}});
  table->addColumn(
      std::make_shared<ForeignIntColumn>("f", std::vector<std::optional<int>>{3, std::nullopt}));
  auto const row = table->begin();

  EXPECT_TRUE(row->next());

  EXPECT_TRUE(row->findIterator("f")->isNull());
  EXPECT_FALSE(row->next());
}

}  // namespace
