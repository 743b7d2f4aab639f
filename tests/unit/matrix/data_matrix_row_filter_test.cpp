#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/zyn/matrix/data_matrix_row.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Places = std::vector<unsigned int>;
using Keys = std::vector<std::shared_ptr<moxIterator>>;
using KeyValues = std::vector<std::shared_ptr<moxIterator const>>;

/// Cursors on the first row of a table of wanted values, which the table keeps alive.
struct Wanted {
  explicit Wanted(std::vector<NamedCells> const& columns) : table(matrix(columns)) {
    for (unsigned int place = 0; place < table->columnCount(); ++place) {
      values.push_back(table->columnAt(place)->begin());
    }
  }

  std::shared_ptr<moxDataMatrix> table;
  KeyValues values;
};

/// Counts how often its cursors are sent to a row's cell to compare it: what an index is built
/// with.
class CountingColumn final : public moxDataMatrixTypedColumn<int>,
                             public std::enable_shared_from_this<CountingColumn> {
 public:
  explicit CountingColumn(std::vector<int> cells) : cells_(std::move(cells)) {}

  std::string name() const override { return "testCountingColumn"; }
  void reserve(int) override {}
  void clear() override { cells_.clear(); }
  unsigned int numRows() const override { return static_cast<unsigned int>(cells_.size()); }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Int; }
  bool isNull(unsigned int row) const override { return row >= cells_.size(); }
  std::shared_ptr<moxIterator> begin() override { return std::make_shared<Cursor>(*this); }
  std::string getName() const override { return "k"; }
  void setName(std::string const&) override {}
  void appendNull() override {}
  void setFormatter(std::shared_ptr<moxGenericFormatter const>) override {}
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return {}; }
  void appendValue(int const& value) override { cells_.push_back(value); }
  int getValue(unsigned int row) const override { return isNull(row) ? 0 : cells_[row]; }

  int steps = 0;  // of all cursors together

 private:
  class Cursor final : public moxIteratorBase<int> {
   public:
    explicit Cursor(CountingColumn& column) : column_(column) {}
    using moxIteratorBase<int>::set;

    std::string name() const override { return "testCountingCursor"; }
    bool next() override {
      ++column_.steps;
      row_ += atEnd() ? 0 : 1;
      return !atEnd();
    }
    bool previous() override { return row_ != 0 && (--row_, true); }
    bool goTo(unsigned int row) override { return row < column_.numRows() && (row_ = row, true); }
    bool goToEnd() override { return goTo(column_.numRows() - 1); }
    bool isNull() const override { return atEnd(); }
    moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Int; }
    std::shared_ptr<moxDataMatrixColumn> getParentColumn() const override {
      return column_.shared_from_this();
    }
    std::shared_ptr<moxIterator> clone() const override { return std::make_shared<Cursor>(*this); }
    bool equals(std::shared_ptr<moxIterator const> const& other) const override {
      return compare(other) == 0;
    }
    void set(std::shared_ptr<moxIterator const> const&) override {}
    void set(int const&) override {}
    bool atEnd() const override { return row_ >= column_.numRows(); }
    int compare(std::shared_ptr<moxIterator const> const& other) const override {
      int const right = dynamic_cast<moxIteratorBase<int> const&>(*other).get();
      return get() < right ? -1 : static_cast<int>(get() > right);
    }
    unsigned int pos() const override { return row_; }
    unsigned int count() const override { return column_.numRows() - row_; }
    void setNull() override {}
    int get() const override { return column_.getValue(row_); }

   private:
    CountingColumn& column_;
    unsigned int row_ = 0;
  };

  std::vector<int> cells_;
};

class DataMatrixRowFilter : public testing::Test {
 protected:
  /// The rows that a filter visits, the current one first.
  static Places visited(moxDataMatrixRow& row, Keys const& keys, KeyValues const& values) {
    Places places;
    for (bool more = row.beginWithFilter(keys, values); more; more = row.next()) {
      places.push_back(row.getIterator(0)->pos());
    }
    return places;
  }

  TestHost host_;
};

TEST_F(DataMatrixRowFilter, VisitsTheRowsOfAKeyInOrderAndThenIsAtItsEnd) {
  auto const table = matrix({{"k", texts("A", "B", "A")}, {"v", ints(10, 20, 30)}});
  auto const row = table->begin();
  Keys const keys = {row->findIterator("k")};
  Wanted const a({{"k", texts("A")}});

  ASSERT_TRUE(row->beginWithFilter(keys, a.values));
  EXPECT_EQ(row->getIterator(1)->pos(), 0U);
  EXPECT_EQ(row->count(), 2U);

  EXPECT_TRUE(row->next());
  EXPECT_EQ(row->getIterator(1)->pos(), 2U);
  EXPECT_EQ(row->count(), 1U);
  EXPECT_FALSE(row->atEnd());

  EXPECT_FALSE(row->next());
  EXPECT_TRUE(row->atEnd());
  EXPECT_EQ(row->count(), 0U);
  EXPECT_EQ(row->getIterator(1)->pos(), 2U);  // the cursors stay on the group's last row
}

TEST_F(DataMatrixRowFilter, DoesNotMoveBeyondTheEndOfTheGroup) {
  auto const table = matrix({{"k", texts("A", "B", "A")}});
  auto const row = table->begin();
  Wanted const a({{"k", texts("A")}});
  row->beginWithFilter({row->getIterator(0)}, a.values);
  row->next();
  row->next();

  EXPECT_FALSE(row->next());
  EXPECT_FALSE(row->next());

  EXPECT_TRUE(row->previous());
  EXPECT_EQ(row->getIterator(0)->pos(), 2U);
  EXPECT_TRUE(row->previous());
  EXPECT_EQ(row->getIterator(0)->pos(), 0U);
  EXPECT_FALSE(row->previous());
  EXPECT_EQ(row->getIterator(0)->pos(), 0U);
}

TEST_F(DataMatrixRowFilter, AValueThatDoesNotOccurLeavesNoGroup) {
  auto const table = matrix({{"k", texts("A", "B", "A")}});
  auto const row = table->begin();
  Wanted const c({{"k", texts("C")}});

  EXPECT_FALSE(row->beginWithFilter({row->getIterator(0)}, c.values));

  EXPECT_TRUE(row->atEnd());
  EXPECT_FALSE(row->next());
  EXPECT_FALSE(row->previous());
  EXPECT_EQ(row->count(), 0U);
}

TEST_F(DataMatrixRowFilter, OnANullKeyFindsTheNullRows) {
  auto const table = matrix({{"k", texts("A", null, "", null)}});
  auto const row = table->begin();
  Wanted const nothing({{"k", texts(null)}});
  Wanted const empty({{"k", texts("")}});

  EXPECT_EQ(visited(*row, {row->getIterator(0)}, nothing.values), Places({1, 3}));
  EXPECT_EQ(visited(*row, {row->getIterator(0)}, empty.values), Places({2}));
}

TEST_F(DataMatrixRowFilter, AValueCursorAtItsEndFindsTheNullRows) {
  auto const table = matrix({{"k", ints(1, null)}});
  auto const row = table->begin();
  Wanted const noRows({{"k", ints()}});

  EXPECT_EQ(visited(*row, {row->getIterator(0)}, noRows.values), Places({1}));
}

TEST_F(DataMatrixRowFilter, AnEmptyPointerAmongTheValuesIsFalseAndEndsTheGroup) {
  auto const table = matrix({{"k", texts("A", "B")}, {"l", ints(1, 2)}});
  auto const row = table->begin();
  Keys const keys = row->getIterators();
  Wanted const found({{"k", texts("A")}, {"l", ints(1)}});
  ASSERT_TRUE(row->beginWithFilter(keys, found.values));

  EXPECT_FALSE(row->beginWithFilter(keys, {found.values[0], nullptr}));

  EXPECT_TRUE(row->atEnd());
  EXPECT_FALSE(row->next());
  EXPECT_TRUE(row->beginWithFilter(keys, found.values));
}

TEST_F(DataMatrixRowFilter, SameKeysKeepTheIndexAndOtherKeysBuildANewOne) {
  auto const counting = std::make_shared<CountingColumn>(std::vector<int>{1, 2, 1});
  auto const row = host_.get<moxDataMatrixRow>("moxDataMatrixRow");
  Keys const keys = {counting->begin()};
  Wanted const one({{"k", ints(1)}});
  Wanted const two({{"k", ints(2)}});

  row->beginWithFilter(keys, one.values);
  int const built = counting->steps;
  EXPECT_EQ(built, 3);

  EXPECT_EQ(visited(*row, keys, two.values), Places({1}));
  EXPECT_EQ(counting->steps, built);

  row->beginWithFilter({counting->begin()}, one.values);
  EXPECT_EQ(counting->steps, 2 * built);
}

TEST_F(DataMatrixRowFilter, AKeptIndexDoesNotNoticeRowsThatCame) {
  auto const table = matrix({{"k", ints(1, 2)}});
  auto const row = table->begin();
  Keys const keys = {row->getIterator(0)};
  Wanted const two({{"k", ints(2)}});
  visited(*row, keys, two.values);

  append(*table->columnAt(0), 2);
  EXPECT_EQ(visited(*row, keys, two.values), Places({1}));

  row->clearFilter();
  EXPECT_EQ(visited(*row, keys, two.values), Places({1, 2}));
}

TEST_F(DataMatrixRowFilter, GoToEndEndsTheFilter) {
  auto const table = matrix({{"k", texts("A", "B", "A", "B")}});
  auto const row = table->begin();
  Wanted const a({{"k", texts("A")}});
  row->beginWithFilter({row->getIterator(0)}, a.values);

  EXPECT_TRUE(row->goToEnd());

  EXPECT_EQ(row->getIterator(0)->pos(), 3U);
  EXPECT_TRUE(row->previous());
  EXPECT_EQ(row->getIterator(0)->pos(), 2U);
  EXPECT_EQ(row->count(), 2U);
}

TEST_F(DataMatrixRowFilter, ClearFilterLeavesTheCursorsWhereTheyAre) {
  auto const table = matrix({{"k", texts("A", "B", "A", "B")}});
  auto const row = table->begin();
  Wanted const b({{"k", texts("B")}});
  row->beginWithFilter({row->getIterator(0)}, b.values);

  row->clearFilter();

  EXPECT_EQ(row->getIterator(0)->pos(), 1U);
  EXPECT_TRUE(row->next());
  EXPECT_EQ(row->getIterator(0)->pos(), 2U);
}

TEST_F(DataMatrixRowFilter, WithoutKeysItEndsTheFilterAndIsFalse) {
  auto const table = matrix({{"k", texts("A", "B", "A")}});
  auto const row = table->begin();
  Wanted const a({{"k", texts("A")}});
  row->beginWithFilter({row->getIterator(0)}, a.values);

  EXPECT_FALSE(row->beginWithFilter({}, a.values));

  EXPECT_TRUE(row->next());
  EXPECT_EQ(row->getIterator(0)->pos(), 1U);
}

TEST_F(DataMatrixRowFilter, AnEmptyPointerAmongTheKeysIsRefused) {
  auto const row = matrix({{"k", ints(1)}})->begin();

  EXPECT_THROW(row->beginWithFilter({nullptr}, {}), std::invalid_argument);
}

TEST_F(DataMatrixRowFilter, OverAMatrixWithoutRowsFindsNothing) {
  auto const table = matrix({{"k", ints()}});
  auto const row = host_.get<moxDataMatrixRow>("moxDataMatrixRow");
  Wanted const nothing({{"k", ints(null)}});

  EXPECT_FALSE(row->beginWithFilter({table->columnAt(0)->begin()}, nothing.values));
  EXPECT_TRUE(row->atEnd());
}

TEST_F(DataMatrixRowFilter, AddsKeyCursorsThatTheRowLacks) {
  auto const table = matrix({{"k", ints(1, 2)}});
  auto const row = table->begin();
  Keys const keys = {table->columnAt(0)->begin()};
  Wanted const two({{"k", ints(2)}});

  row->beginWithFilter(keys, two.values);
  EXPECT_EQ(row->totalIterators(), 2U);
  EXPECT_EQ(keys[0]->pos(), 1U);

  row->beginWithFilter(keys, two.values);
  EXPECT_EQ(row->totalIterators(), 2U);
}

TEST_F(DataMatrixRowFilter, SeveralKeysFilterTogether) {
  auto const table = matrix({{"a", ints(1, 1, 2, 1)}, {"b", texts("x", "y", "x", "x")}});
  auto const row = table->begin();
  Wanted const wanted({{"a", ints(1)}, {"b", texts("x")}});

  EXPECT_EQ(visited(*row, row->getIterators(), wanted.values), Places({0, 3}));
}

TEST_F(DataMatrixRowFilter, FewerValuesThanKeysFindTheFirstCombinationThatBeginsSo) {
  auto const table = matrix({{"a", ints(1, 2, 1, 1)}, {"b", texts("y", "x", "x", "x")}});
  auto const row = table->begin();
  Wanted const wanted({{"a", ints(1)}});

  EXPECT_EQ(visited(*row, row->getIterators(), wanted.values), Places({2, 3}));
  EXPECT_EQ(visited(*row, row->getIterators(), {}), Places({2, 3}));
}

TEST_F(DataMatrixRowFilter, MoreValuesThanKeysAreNotLookedAt) {
  auto const table = matrix({{"a", ints(1, 2)}});
  auto const row = table->begin();
  Wanted const wanted({{"a", ints(2)}, {"b", texts("x")}});

  EXPECT_EQ(visited(*row, row->getIterators(), wanted.values), Places({1}));
}

TEST_F(DataMatrixRowFilter, AValueOfAnotherKindIsABadCast) {
  auto const row = matrix({{"a", ints(1, 2)}})->begin();
  Wanted const wanted({{"a", doubles(1)}});

  EXPECT_THROW(row->beginWithFilter(row->getIterators(), wanted.values), std::bad_cast);
  EXPECT_TRUE(row->atEnd());
}

TEST_F(DataMatrixRowFilter, ACloneGoesOnAloneFromTheSamePlace) {
  auto const table = matrix({{"v", ints(1, 2, 3, 4)}, {"k", texts("A", "B", "A", "A")}});
  auto const row = table->begin();
  Wanted const a({{"k", texts("A")}});
  row->beginWithFilter({row->findIterator("k")}, a.values);
  row->next();

  auto const clone = row->clone();

  EXPECT_EQ(clone->count(), 2U);
  EXPECT_TRUE(clone->next());
  EXPECT_EQ(clone->getIterator(0)->pos(), 3U);
  EXPECT_EQ(row->getIterator(0)->pos(), 2U);
  EXPECT_EQ(row->count(), 2U);
  row->clearFilter();
  EXPECT_FALSE(clone->next());
}

TEST_F(DataMatrixRowFilter, ACloneKeepsTheIndexForItsOwnKeysInTheirOrder) {
  auto const first = std::make_shared<CountingColumn>(std::vector<int>{1, 2});
  auto const second = std::make_shared<CountingColumn>(std::vector<int>{3, 4});
  auto const row = host_.get<moxDataMatrixRow>("moxDataMatrixRow");
  row->addIterator(first->begin());
  row->addIterator(second->begin());
  Wanted const wanted({{"b", ints(4)}, {"a", ints(2)}});
  row->beginWithFilter({row->getIterator(1), row->getIterator(0)}, wanted.values);
  int const built = first->steps;

  auto const clone = row->clone();
  EXPECT_TRUE(
      clone->beginWithFilter({clone->getIterator(1), clone->getIterator(0)}, wanted.values));

  EXPECT_EQ(clone->getIterator(0)->pos(), 1U);
  EXPECT_EQ(first->steps, built);
}

TEST_F(DataMatrixRowFilter, TheIndexOutlivesAKeyThatTheRowLetGo) {
  auto const row = host_.get<moxDataMatrixRow>("moxDataMatrixRow");
  auto const values = column("v", ints(1, 2, 3));
  row->addIterator(values->begin());
  Wanted const a({{"k", texts("a text that is longer than twelve")}});
  {
    auto const key = column("k", texts("B", "a text that is longer than twelve", "B"));
    row->beginWithFilter({key->begin()}, a.values);
    row->removeIteratorAt(1);
  }

  auto const clone = row->clone();

  EXPECT_EQ(clone->getIterator(0)->pos(), 1U);
  EXPECT_EQ(clone->count(), 1U);
  EXPECT_FALSE(clone->next());
}

TEST_F(DataMatrixRowFilter, AKeyGivenTwiceTakesTwoStepsARow) {
  auto const table = matrix({{"k", ints(1, 1, 1, 1)}});
  auto const row = table->begin();
  auto const key = row->getIterator(0);
  Wanted const one({{"k", ints(1)}, {"k", ints(1)}});

  EXPECT_EQ(visited(*row, {key, key}, one.values), Places({0, 2}));
}

TEST_F(DataMatrixRowFilter, FiltersOverForeignColumnsBesideOwnOnes) {
  auto const table = matrix({{"a", ints(1, 2, 1)}});
  table->addColumn(std::make_shared<ForeignTextColumn>(
      "f", std::vector<std::optional<std::string>>{"x", std::nullopt, std::nullopt}));
  auto const row = table->begin();
  Wanted const wanted({{"a", ints(1)}, {"f", texts(null)}});

  EXPECT_EQ(visited(*row, row->getIterators(), wanted.values), Places({2}));
}

}  // namespace
