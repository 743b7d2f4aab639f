#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "zyn/matrix/column_copy.h"
#include "zyn/matrix/key_groups.h"
#include "zyn/operations/packed_grouping.h"

/// The groups of the first `rows` rows, by keys that are columns of the module's own with that many
/// rows at least. Each row stays in the group of the row before it when the keys agree with those
/// of the group's first row; else it goes to the first such group; else it begins a new one.
/// Without keys all rows are one group.
///
/// Only a NaN, which agrees with every number, makes a difference between staying and the first
/// group. Without one the rows are hashed; with one each different key looks through the groups
/// once.
KeyGroups groupRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows);

/// The same, with the groups handed to `taker`. Gives their first rows.
std::vector<std::uint32_t> groupRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows,
                                     GroupTaker& taker);

/// Keeps the group of each row, and hands the groups on.
class GroupKeeper final : public GroupTaker {
 public:
  explicit GroupKeeper(GroupTaker& next) : next_(next) {}

  void take(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups,
            std::uint32_t groupCount) override {
    groupOfRow_.insert(groupOfRow_.end(), groups, groups + count);
    next_.take(from, count, groups, groupCount);
  }
  void restart() override {
    groupOfRow_.clear();
    next_.restart();
  }

  std::vector<std::uint32_t> takeRows() { return std::move(groupOfRow_); }

 private:
  GroupTaker& next_;
  std::vector<std::uint32_t> groupOfRow_;
};
