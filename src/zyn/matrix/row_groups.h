#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "zyn/matrix/data_matrix_row_index.h"
#include "zyn/matrix/key_groups.h"

/// The rows of each key combination over the module's own columns: found by hashing, stored side by
/// side. Never changes once it is made, and does not notice cells that do.
class RowGroups {
 public:
  using Index = DataMatrixRow::Index;

  /// Groups the rows under the keys, which must not stand behind them. Empty when hashing cannot do
  /// it: a key is of foreign make, comes twice, or meets a NaN.
  static std::shared_ptr<RowGroups const> over(Index::Keys const& keys);

  /// The group with these values: its number, KeyGrouper::kNoGroup, or kCannotTell.
  std::uint32_t find(Index::KeyValues const& values) const { return grouper_.find(values); }

  std::span<unsigned int const> rowsOf(std::uint32_t group) const {
    return {rows_.data() + starts_[group], starts_[group + 1] - starts_[group]};
  }

  /// How many rows every key column has.
  std::uint32_t rowCount() const { return static_cast<std::uint32_t>(rows_.size()); }

  /// The same groups as a tree, entered in the order in which they first appear: then it has the
  /// very shape of one that took the rows one by one, which decides what a NaN finds.
  std::shared_ptr<Index::Groups const> asTree() const;

 private:
  RowGroups() = default;

  /// Puts the rows of a group side by side, in ascending order.
  void arrange(KeyGroups const& groups);

  KeyGrouper grouper_;
  Index::Keys probes_;                 // cursors of our own over the key columns, never moved
  std::vector<std::uint32_t> starts_;  // where each group's rows begin, and the end of the last
  std::vector<unsigned int> rows_;
};

/// The groups as a tree that took the rows one by one, for keys of any make. The key cursors walk
/// from row 0, where they must stand, to the end.
std::shared_ptr<DataMatrixRow::Index::Groups const> treeRowByRow(
    DataMatrixRow::Index::Keys const& keys);
