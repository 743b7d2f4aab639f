#include "zyn/matrix/data_matrix_row_index.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <optional>
#include <set>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/key_groups.h"

namespace {

using Index = DataMatrixRow::Index;

/// The groups, and the columns that their keys' cursors stand in: the row may let go of a key's
/// cursor, and with it of the column, while the index is still in use.
struct KeptGroups {
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns;
  Index::Groups groups;
};

template <class Cursors>
std::shared_ptr<KeptGroups> noGroupsYet(Cursors const& cursors) {
  auto const kept = std::make_shared<KeptGroups>();
  for (auto const& cursor : cursors) {
    kept->columns.push_back(columnToKeep(*cursor));
  }
  return kept;
}

Index::KeyValues cloneAll(Index::Keys const& keys) {
  Index::KeyValues clones;
  clones.reserve(keys.size());
  for (auto const& key : keys) {
    clones.push_back(key->clone());
  }
  return clones;
}

bool goToAll(Index::Keys const& keys, unsigned int row) {
  return std::all_of(keys.begin(), keys.end(), [row](auto const& key) { return key->goTo(row); });
}

bool nextOfAll(Index::Keys const& keys) {
  return std::all_of(keys.begin(), keys.end(), [](auto const& key) { return key->next(); });
}

/// Row by row through the cursors, which stand on row 0.
void growRowByRow(Index::Keys const& keys, Index::Groups& groups) {
  Index::KeyValues const current(keys.begin(), keys.end());
  do {
    auto group = groups.find(current);
    if (group == groups.end()) {
      group = groups.emplace(Index::RowMatch(cloneAll(keys)), std::vector<unsigned int>()).first;
    }
    group->second.push_back(keys.front()->pos());
  } while (nextOfAll(keys));
}

/// The column under one of the module's own cursors; null for a cursor of foreign make, whatever
/// column it walks over.
template <class T>
moxDataMatrixColumn const* columnUnder(moxIterator const& cursor) {
  auto const* const own = dynamic_cast<moxTypedIterator<T> const*>(&cursor);
  return own != nullptr ? &own->column() : nullptr;
}

moxDataMatrixColumn const* ownColumnUnder(moxIterator const& cursor) {
  switch (cursor.getType()) {
    case moxDataMatrixTypes::Int:
      return columnUnder<int>(cursor);
    case moxDataMatrixTypes::Double:
      return columnUnder<double>(cursor);
    case moxDataMatrixTypes::Text:
      return columnUnder<std::string>(cursor);
    case moxDataMatrixTypes::Date:
      return columnUnder<datetime_t>(cursor);
    case moxDataMatrixTypes::Blob:
      return columnUnder<std::shared_ptr<moxReadBlob>>(cursor);
  }
  return nullptr;
}

/// The columns of the keys; empty when one is of foreign make, or when a cursor comes twice and so
/// would take two steps a row.
std::vector<moxDataMatrixColumn const*> ownColumnsUnder(Index::Keys const& keys) {
  if (std::set<std::shared_ptr<moxIterator>>(keys.begin(), keys.end()).size() != keys.size()) {
    return {};
  }
  std::vector<moxDataMatrixColumn const*> columns;
  for (auto const& key : keys) {
    columns.push_back(ownColumnUnder(*key));
  }
  bool const foreign = std::find(columns.begin(), columns.end(), nullptr) != columns.end();
  return foreign ? std::vector<moxDataMatrixColumn const*>() : columns;
}

std::uint32_t shortest(std::vector<moxDataMatrixColumn const*> const& columns) {
  std::uint32_t rows = std::numeric_limits<std::uint32_t>::max();
  for (auto const* const column : columns) {
    rows = std::min(rows, column->numRows());
  }
  return rows;
}

/// All rows, those of a group side by side and ascending, and where each group's rows begin.
struct RowsByGroup {
  explicit RowsByGroup(KeyGroups const& groups)
      : starts(groups.firstRow.size() + 1), rows(groups.groupOfRow.size()) {
    for (std::uint32_t const group : groups.groupOfRow) {
      ++starts[group + 1];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<std::uint32_t> next(starts.begin(), starts.end() - 1);
    for (std::uint32_t row = 0; row < rows.size(); ++row) {
      rows[next[groups.groupOfRow[row]]++] = row;
    }
  }

  std::vector<unsigned int> of(std::uint32_t group) const {
    return {rows.begin() + starts[group], rows.begin() + starts[group + 1]};
  }

  std::vector<std::uint32_t> starts;
  std::vector<unsigned int> rows;
};

/// Moves the keys to where a walk over `rows` rows would have left them: the first key that has no
/// further row ends the walk, at its end, before the later ones took their step.
void goBehind(Index::Keys const& keys, std::uint32_t rows) {
  goToAll(keys, rows - 1);
  nextOfAll(keys);
}

/// The same groups out of the columns' storage: rows are told apart by hashing, and each group goes
/// into the tree behind all others, so that no row pays for a walk down the tree.
bool growInKeyOrder(Index::Keys const& keys, Index::Groups& groups) {
  auto const columns = ownColumnsUnder(keys);
  auto const found = columns.empty() ? std::nullopt : groupByKeys(columns, shortest(columns));
  if (!found) {
    return false;
  }
  RowsByGroup const rows(*found);
  for (std::uint32_t const group : groupsInKeyOrder(columns, *found)) {
    goToAll(keys, found->firstRow[group]);
    groups.emplace_hint(groups.end(), Index::RowMatch(cloneAll(keys)), rows.of(group));
  }
  goBehind(keys, shortest(columns));
  return true;
}

bool isNaN(moxIterator const& cursor) {
  if (cursor.getType() != moxDataMatrixTypes::Double || cursor.isNull()) {
    return false;
  }
  auto const* const number = dynamic_cast<moxIteratorBase<double> const*>(&cursor);
  return number != nullptr && std::isnan(number->get());
}

bool hasNaN(Index::KeyValues const& values) {
  return std::any_of(values.begin(), values.end(), [](auto const& value) { return isNaN(*value); });
}

}  // namespace

int DataMatrixRow::Index::RowMatch::compare(KeyValues const& left, KeyValues const& right) {
  std::size_t const shared = std::min(left.size(), right.size());
  for (std::size_t key = 0; key < shared; ++key) {
    if (int const order = left[key]->compare(right[key]); order != 0) {
      return order;
    }
  }
  return 0;
}

DataMatrixRow::Index::Index(Keys const& keys, DataMatrixRow& owner) : owner_(&owner) {
  auto const kept = noGroupsYet(keys);
  if (goToAll(keys, 0)) {
    grownInKeyOrder_ = growInKeyOrder(keys, kept->groups);
    if (!grownInKeyOrder_) {
      growRowByRow(keys, kept->groups);
    }
  }
  groups_ = {kept, &kept->groups};
  leaveGroup();
}

void DataMatrixRow::Index::growInOrderOfRows() {
  std::vector<Groups::const_iterator> order;
  for (auto group = groups_->cbegin(); group != groups_->cend(); ++group) {
    order.push_back(group);
  }
  std::sort(order.begin(), order.end(), [](auto const& left, auto const& right) {
    return left->second.front() < right->second.front();
  });
  auto const kept = noGroupsYet(groups_->begin()->first.cursors());
  for (auto const& group : order) {
    kept->groups.insert(*group);
  }
  groups_ = {kept, &kept->groups};
  grownInKeyOrder_ = false;
}

bool DataMatrixRow::Index::begin(KeyValues const& values) {
  if (grownInKeyOrder_ && hasNaN(values)) {
    // A NaN equals every number, so what it finds depends on the shape of the tree; only the shape
    // that comes of entering row by row is the same whatever made the index.
    growInOrderOfRows();
  }
  group_ = groups_->end();
  group_ = groups_->find(values);
  if (group_ == groups_->end()) {
    return false;
  }
  place_ = group_->second.begin();
  return owner_->goTo(*place_);
}

bool DataMatrixRow::Index::next() {
  if (atEnd()) {
    return false;
  }
  ++place_;
  return !atEnd() && owner_->goTo(*place_);
}

bool DataMatrixRow::Index::previous() {
  if (group_ == groups_->end() || place_ == group_->second.begin()) {
    return false;
  }
  --place_;
  return owner_->goTo(*place_);
}

bool DataMatrixRow::Index::atEnd() const {
  return group_ == groups_->end() || place_ == group_->second.end();
}

unsigned int DataMatrixRow::Index::count() const {
  return group_ == groups_->end() ? 0 : static_cast<unsigned int>(group_->second.end() - place_);
}

void DataMatrixRow::Index::leaveGroup() {
  group_ = groups_->end();
}

std::unique_ptr<DataMatrixRow::Index> DataMatrixRow::Index::copy(DataMatrixRow& owner) const {
  auto other = std::make_unique<Index>(*this);
  other->owner_ = &owner;
  return other;
}
