#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_row.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

// The filter of a row against two plain versions of it: a scan over all rows that asks compare, and
// a tree that takes the rows one by one, which alone says what a NaN finds.
namespace {

using Places = std::vector<unsigned int>;
using Cursors = std::vector<std::shared_ptr<moxIterator const>>;
using Keys = std::vector<std::shared_ptr<moxIterator>>;
using Type = moxDataMatrixTypes::Types;

constexpr int kCodes = 6;  // cells of each kind, the null included
constexpr int kCodesWithNaN = 7;

/// Cells are generated as small numbers, which RapidCheck knows how to show and to shrink.
Cell cellOf(Type type, int code) {
  static std::shared_ptr<moxReadBlob> const kBlobs[] = {blob("a"), blob("a"), blob("b"),
                                                        blob(""),  blob("c"), nullptr};
  constexpr double kDoubles[] = {-1.5, -0.0, 0.0, 2.5, HUGE_VAL, NAN};
  static std::string const kTexts[] = {"",
                                       "a",
                                       std::string("a\0", 2),
                                       "a text that is longer than twelve",
                                       "a text that is longer than thirteen",
                                       "\xff"};
  if (code == 0) {
    return null;
  }
  switch (type) {
    case Type::Int:
      return code == 6 ? std::numeric_limits<int>::min() : code - 3;
    case Type::Double:
      return kDoubles[code - 1];
    case Type::Text:
      return kTexts[code - 1];
    case Type::Date:
      return code == 6 ? datetime_t() : datetime_t(code, 1, 2024);
    case Type::Blob:
      return kBlobs[code - 1];
  }
  return null;
}

struct KeyColumn {
  Type type;
  std::vector<int> codes;
};

void showValue(KeyColumn const& column, std::ostream& out) {
  out << "type " << column.type << ' ' << testing::PrintToString(column.codes);
}

struct Table {
  std::vector<KeyColumn> keys;
  std::vector<std::vector<int>> lookUps;  // codes, a list of values each
};

std::vector<int> codes(int count, int limit) {
  return *rc::gen::container<std::vector<int>>(static_cast<std::size_t>(count),
                                               rc::gen::inRange(0, limit));
}

/// Columns may have some rows more than the others, and look-ups fewer or more values than keys.
Table anyTable(int limit) {
  Table table;
  int const keyCount = *rc::gen::inRange(1, 4);
  int const rows = *rc::gen::inRange(0, 40);
  for (int key = 0; key < keyCount; ++key) {
    auto const type = static_cast<Type>(*rc::gen::inRange(0, 5));
    table.keys.push_back({type, codes(rows + *rc::gen::inRange(0, 3), limit)});
  }
  for (int i = 0; i < 8; ++i) {
    table.lookUps.push_back(codes(*rc::gen::inRange(0, keyCount + 2), limit));
  }
  RC_LOG() << rc::toString(table.keys) << " look-ups " << rc::toString(table.lookUps) << '\n';
  return table;
}

Cells cellsOf(Type type, std::vector<int> const& codes) {
  Cells cells{type, {}};
  for (int const code : codes) {
    cells.values.push_back(cellOf(type, code));
  }
  return cells;
}

template <Type kType>
std::shared_ptr<moxDataMatrixColumn> foreignColumn(Cells const& cells) {
  auto made = std::make_shared<ForeignColumn<kType>>(
      "f", std::vector<std::optional<typename moxDataMatrixValue<kType>::Type>>());
  for (Cell const& cell : cells.values) {
    append(*made, cell);
  }
  return made;
}

std::shared_ptr<moxDataMatrixColumn> foreignLike(Cells const& cells) {
  switch (cells.type) {
    case Type::Int:
      return foreignColumn<Type::Int>(cells);
    case Type::Double:
      return foreignColumn<Type::Double>(cells);
    case Type::Text:
      return foreignColumn<Type::Text>(cells);
    case Type::Date:
      return foreignColumn<Type::Date>(cells);
    case Type::Blob:
      return foreignColumn<Type::Blob>(cells);
  }
  return {};
}

/// Key cursors over columns that live as long as this.
struct KeyCursors {
  KeyCursors(Table const& table, bool foreign) {
    for (auto const& key : table.keys) {
      Cells const cells = cellsOf(key.type, key.codes);
      columns.push_back(foreign ? foreignLike(cells) : column("k", cells));
      cursors.push_back(columns.back()->begin());
    }
  }

  Places positions() const {
    Places places;
    for (auto const& cursor : cursors) {
      places.push_back(cursor->pos());
    }
    return places;
  }

  Cursors at(unsigned int row) const {
    Cursors copies;
    for (auto const& cursor : cursors) {
      auto const copy = cursor->clone();
      copy->goTo(row);
      copies.push_back(copy);
    }
    return copies;
  }

  unsigned int rows() const {
    unsigned int shortest = std::numeric_limits<unsigned int>::max();
    for (auto const& column : columns) {
      shortest = std::min(shortest, column->numRows());
    }
    return shortest;
  }

  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns;
  Keys cursors;
};

/// Values of a look-up; those past the keys are of the last key's kind.
struct LookUp {
  LookUp(Table const& table, std::vector<int> const& codes) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
      Type const type = table.keys[std::min(i, table.keys.size() - 1)].type;
      columns.push_back(column("v", cellsOf(type, {codes[i]})));
      cursors.push_back(columns.back()->begin());
    }
  }

  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns;
  Cursors cursors;
};

int compareKeys(Cursors const& left, Cursors const& right) {
  for (std::size_t key = 0; key < std::min(left.size(), right.size()); ++key) {
    if (int const order = left[key]->compare(right[key]); order != 0) {
      return order;
    }
  }
  return 0;
}

Places visited(moxDataMatrixRow& row, KeyCursors const& keys, Cursors const& values) {
  Places places;
  for (bool more = row.beginWithFilter(keys.cursors, values); more; more = row.next()) {
    places.push_back(keys.cursors.front()->pos());
  }
  return places;
}

/// Rows whose keys begin with the values; of several combinations that do, those of the least.
Places scanned(KeyCursors const& keys, Cursors const& values) {
  std::optional<unsigned int> least;
  for (unsigned int row = 0; row < keys.rows(); ++row) {
    if (compareKeys(keys.at(row), values) == 0 &&
        (!least || compareKeys(keys.at(row), keys.at(*least)) < 0)) {
      least = row;
    }
  }
  Places places;
  for (unsigned int row = 0; least && row < keys.rows(); ++row) {
    if (compareKeys(keys.at(row), keys.at(*least)) == 0) {
      places.push_back(row);
    }
  }
  return places;
}

struct ByKey {
  bool operator()(Cursors const& left, Cursors const& right) const {
    return compareKeys(left, right) < 0;
  }
};
using Tree = std::map<Cursors, Places, ByKey>;

Tree treeOf(KeyCursors const& keys) {
  Tree tree;
  for (unsigned int row = 0; row < keys.rows(); ++row) {
    tree[keys.at(row)].push_back(row);
  }
  return tree;
}

Places foundIn(Tree const& tree, Cursors const& values) {
  auto const found = tree.find(values);
  return found == tree.end() ? Places() : found->second;
}

class DataMatrixRowIndexProperty : public testing::Test {
 protected:
  std::shared_ptr<moxDataMatrixRow> newRow() {
    return host_.get<moxDataMatrixRow>("moxDataMatrixRow");
  }

  TestHost host_;
};

RC_GTEST_FIXTURE_PROP(DataMatrixRowIndexProperty, FindsWhatAScanFinds, ()) {
  Table const table = anyTable(kCodes);
  KeyCursors const keys(table, false);
  auto const row = newRow();

  for (auto const& codes : table.lookUps) {
    LookUp const lookUp(table, codes);
    RC_ASSERT(visited(*row, keys, lookUp.cursors) == scanned(keys, lookUp.cursors));
  }
}

RC_GTEST_FIXTURE_PROP(DataMatrixRowIndexProperty, FindsWhatATreeGrownRowByRowFinds, ()) {
  Table const table = anyTable(kCodesWithNaN);
  KeyCursors const keys(table, false);
  Tree const tree = treeOf(keys);
  auto const row = newRow();

  for (auto const& codes : table.lookUps) {
    LookUp const lookUp(table, codes);
    RC_ASSERT(visited(*row, keys, lookUp.cursors) == foundIn(tree, lookUp.cursors));
  }
}

RC_GTEST_FIXTURE_PROP(DataMatrixRowIndexProperty, OwnAndForeignColumnsGiveTheSame, ()) {
  Table const table = anyTable(kCodesWithNaN);
  KeyCursors const own(table, false);
  KeyCursors const foreign(table, true);
  auto const ownRow = newRow();
  auto const foreignRow = newRow();

  for (auto const& codes : table.lookUps) {
    LookUp const lookUp(table, codes);
    RC_ASSERT(visited(*ownRow, own, lookUp.cursors) ==
              visited(*foreignRow, foreign, lookUp.cursors));
    RC_ASSERT(own.positions() == foreign.positions());
  }
}

/// Without NaN among the keys, but with it among the values: there the tree's shape decides.
RC_GTEST_FIXTURE_PROP(DataMatrixRowIndexProperty, ANaNAmongTheValuesFindsWhatTheTreeSays, ()) {
  Table table = anyTable(kCodes);
  KeyCursors const keys(table, false);
  Tree const tree = treeOf(keys);
  auto const row = newRow();

  for (auto& codes : table.lookUps) {
    codes.assign(table.keys.size(), kCodesWithNaN - 1);
    codes.back() = *rc::gen::inRange(0, kCodesWithNaN);
    LookUp const lookUp(table, codes);
    RC_ASSERT(visited(*row, keys, lookUp.cursors) == foundIn(tree, lookUp.cursors));
  }
}

}  // namespace
