#include "zyn/matrix/data_matrix_row_index.h"

#include <algorithm>

#include "mox/zyn/matrix/data_matrix_column.h"

namespace {

using Index = DataMatrixRow::Index;

/// The groups, and the columns that their keys' cursors stand in: the row may let go of a key's cursor, and with
/// it of the column, while the index is still in use.
struct KeptGroups {
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns;
  Index::Groups groups;
};

Index::KeyValues cloneAll(Index::Keys const& keys) {
  Index::KeyValues clones;
  clones.reserve(keys.size());
  for (auto const& key : keys) {
    clones.push_back(key->clone());
  }
  return clones;
}

bool goToFirstRow(Index::Keys const& keys) {
  return std::all_of(keys.begin(), keys.end(), [](auto const& key) { return key->goTo(0); });
}

bool goToNextRow(Index::Keys const& keys) {
  return std::all_of(keys.begin(), keys.end(), [](auto const& key) { return key->next(); });
}

/// Row by row through the cursors: for columns of foreign make, and for what only a tree can answer (see below).
void insertRows(Index::Keys const& keys, Index::Groups& groups) {
  Index::KeyValues const current(keys.begin(), keys.end());
  do {
    auto group = groups.find(current);
    if (group == groups.end()) {
      group = groups.emplace(Index::RowMatch(cloneAll(keys)), std::vector<unsigned int>()).first;
    }
    group->second.push_back(keys.front()->pos());
  } while (goToNextRow(keys));
}

std::shared_ptr<Index::Groups> makeGroups(Index::Keys const& keys) {
  auto const kept = std::make_shared<KeptGroups>();
  for (auto const& key : keys) {
    kept->columns.push_back(columnToKeep(*key));
  }
  if (goToFirstRow(keys)) {
    insertRows(keys, kept->groups);
  }
  return {kept, &kept->groups};
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

DataMatrixRow::Index::Index(Keys const& keys, DataMatrixRow& owner) : owner_(&owner) { useGroups(makeGroups(keys)); }

void DataMatrixRow::Index::useGroups(std::shared_ptr<Groups> groups) {
  groups_ = std::move(groups);
  leaveGroup();
}

bool DataMatrixRow::Index::begin(KeyValues const& values) {
  leaveGroup();
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

bool DataMatrixRow::Index::atEnd() const { return group_ == groups_->end() || place_ == group_->second.end(); }

unsigned int DataMatrixRow::Index::count() const {
  return group_ == groups_->end() ? 0 : static_cast<unsigned int>(group_->second.end() - place_);
}

void DataMatrixRow::Index::leaveGroup() { group_ = groups_->end(); }

std::unique_ptr<DataMatrixRow::Index> DataMatrixRow::Index::copy(DataMatrixRow& owner) const {
  auto other = std::make_unique<Index>(*this);
  other->owner_ = &owner;
  return other;
}
