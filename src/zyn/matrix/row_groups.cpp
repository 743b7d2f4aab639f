#include "zyn/matrix/row_groups.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <set>
#include <string>

#include "zyn/matrix/data_matrix_columns.h"

namespace {

using Index = DataMatrixRow::Index;

template <class T>
moxDataMatrixColumn const* columnUnder(moxIterator const& cursor) {
  auto const* const own = dynamic_cast<moxTypedIterator<T> const*>(&cursor);
  return own == nullptr ? nullptr : &own->column();
}

/// The column under one of the module's own cursors; null for a cursor of foreign make, whatever
/// column it walks over.
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

/// Empty when one is of foreign make, or when a cursor comes twice and so takes two steps a row.
KeyGrouper::Columns ownColumnsUnder(Index::Keys const& keys) {
  if (std::set<std::shared_ptr<moxIterator>>(keys.begin(), keys.end()).size() != keys.size()) {
    return {};
  }
  KeyGrouper::Columns columns;
  for (auto const& key : keys) {
    columns.push_back(ownColumnUnder(*key));
  }
  bool const foreign = std::find(columns.begin(), columns.end(), nullptr) != columns.end();
  return foreign ? KeyGrouper::Columns() : columns;
}

std::uint32_t shortest(KeyGrouper::Columns const& columns) {
  std::uint32_t rows = std::numeric_limits<std::uint32_t>::max();
  for (auto const* const column : columns) {
    rows = std::min(rows, column->numRows());
  }
  return rows;
}

template <class Cursors>
Index::KeyValues clonesOf(Cursors const& cursors) {
  Index::KeyValues clones;
  clones.reserve(cursors.size());
  for (auto const& cursor : cursors) {
    clones.push_back(cursor->clone());
  }
  return clones;
}

Index::RowMatch matchOn(unsigned int row, Index::Keys const& probes) {
  Index::KeyValues cursors;
  cursors.reserve(probes.size());
  for (auto const& probe : probes) {
    auto const cursor = probe->clone();
    cursor->goTo(row);
    cursors.push_back(cursor);
  }
  return Index::RowMatch(std::move(cursors));
}

bool nextOfAll(Index::Keys const& keys) {
  return std::all_of(keys.begin(), keys.end(), [](auto const& key) { return key->next(); });
}

}  // namespace

std::shared_ptr<RowGroups const> RowGroups::over(Index::Keys const& keys) {
  auto const columns = ownColumnsUnder(keys);
  std::shared_ptr<RowGroups> const made(new RowGroups);
  if (columns.empty() || !made->grouper_.group(columns, shortest(columns))) {
    return {};
  }
  made->arrange(made->grouper_.takeGroups());
  for (auto const& key : keys) {
    made->probes_.push_back(key->clone());
  }
  return made;
}

void RowGroups::arrange(KeyGroups const& groups) {
  starts_.resize(groups.firstRow.size() + 1);
  rows_.resize(groups.groupOfRow.size());
  for (std::uint32_t const group : groups.groupOfRow) {
    ++starts_[group + 1];
  }
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  std::vector<std::uint32_t> next(starts_.begin(), starts_.end() - 1);
  for (std::uint32_t row = 0; row < rows_.size(); ++row) {
    rows_[next[groups.groupOfRow[row]]++] = row;
  }
}

std::shared_ptr<Index::Groups const> RowGroups::asTree() const {
  auto const tree = std::make_shared<Index::Groups>();
  for (std::uint32_t group = 0; group + 1 < starts_.size(); ++group) {
    auto const rows = rowsOf(group);
    tree->emplace(matchOn(rows.front(), probes_),
                  std::vector<unsigned int>(rows.begin(), rows.end()));
  }
  return tree;
}

std::shared_ptr<Index::Groups const> treeRowByRow(Index::Keys const& keys) {
  auto const tree = std::make_shared<Index::Groups>();
  Index::KeyValues const current(keys.begin(), keys.end());
  do {
    auto group = tree->find(current);
    if (group == tree->end()) {
      group = tree->emplace(Index::RowMatch(clonesOf(keys)), std::vector<unsigned int>()).first;
    }
    group->second.push_back(keys.front()->pos());
  } while (nextOfAll(keys));
  return tree;
}
