#include "zyn/matrix/data_matrix_row_index.h"

#include <algorithm>

#include "mox/zyn/matrix/iterator.h"
#include "zyn/matrix/row_groups.h"

namespace {

using Index = DataMatrixRow::Index;

bool goToAll(Index::Keys const& keys, unsigned int row) {
  return std::all_of(keys.begin(), keys.end(), [row](auto const& key) { return key->goTo(row); });
}

/// Moves the keys to where a walk over `rows` rows would have left them: the first key that has no
/// further row ends the walk, at its end, before the later ones took their step.
void goBehind(Index::Keys const& keys, std::uint32_t rows) {
  goToAll(keys, rows - 1);
  std::all_of(keys.begin(), keys.end(), [](auto const& key) { return key->next(); });
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
  for (auto const& key : keys) {
    columns_.push_back(columnToKeep(*key));
  }
  if (!goToAll(keys, 0)) {
    groups_ = std::make_shared<Groups>();
  } else if (hashed_ = RowGroups::over(keys); hashed_) {
    goBehind(keys, hashed_->rowCount());
  } else {
    groups_ = treeRowByRow(keys);
  }
}

std::span<unsigned int const> DataMatrixRow::Index::rowsWith(KeyValues const& values) {
  std::uint32_t const group = hashed_ ? hashed_->find(values) : KeyGrouper::kCannotTell;
  if (group < KeyGrouper::kCannotTell) {
    return hashed_->rowsOf(group);
  }
  return group == KeyGrouper::kNoGroup ? std::span<unsigned int const>() : rowsInTree(values);
}

std::span<unsigned int const> DataMatrixRow::Index::rowsInTree(KeyValues const& values) {
  if (!groups_) {
    groups_ = hashed_->asTree();
  }
  auto const group = groups_->find(values);
  return group == groups_->end() ? std::span<unsigned int const>() : group->second;
}

bool DataMatrixRow::Index::begin(KeyValues const& values) {
  leaveGroup();
  group_ = rowsWith(values);
  return !atEnd() && owner_->goTo(group_[place_]);
}

bool DataMatrixRow::Index::next() {
  if (atEnd()) {
    return false;
  }
  ++place_;
  return !atEnd() && owner_->goTo(group_[place_]);
}

bool DataMatrixRow::Index::previous() {
  if (place_ == 0) {
    return false;
  }
  --place_;
  return owner_->goTo(group_[place_]);
}

bool DataMatrixRow::Index::atEnd() const {
  return place_ == group_.size();
}

unsigned int DataMatrixRow::Index::count() const {
  return static_cast<unsigned int>(group_.size() - place_);
}

void DataMatrixRow::Index::leaveGroup() {
  group_ = {};
  place_ = 0;
}

std::unique_ptr<DataMatrixRow::Index> DataMatrixRow::Index::copy(DataMatrixRow& owner) const {
  auto other = std::make_unique<Index>(*this);
  other->owner_ = &owner;
  return other;
}
