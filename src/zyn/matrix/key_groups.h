#pragma once

#include <cstdint>
#include <optional>
#include <vector>

class moxDataMatrixColumn;

/// Rows told apart by their key: which rows carry the same combination of values. Groups are
/// numbered from 0 in the order in which they first appear.
struct KeyGroups {
  std::vector<std::uint32_t> groupOfRow;
  std::vector<std::uint32_t> firstRow;  // of each group
};

/// Groups the first `rows` rows by `keys`, cells being the same where moxIterator::compare gives 0:
/// null is a value like any other, and -0.0 is 0.0. No value when that cannot be done by hashing: a
/// key column is of foreign make, or holds a NaN, which compares equal to everything. `keys` holds
/// a column at least, and none has fewer rows.
std::optional<KeyGroups> groupByKeys(std::vector<moxDataMatrixColumn const*> const& keys,
                                     std::uint32_t rows);

/// The groups' numbers in the order of their keys, nulls first. `groups` comes from the same keys.
std::vector<std::uint32_t> groupsInKeyOrder(std::vector<moxDataMatrixColumn const*> const& keys,
                                            KeyGroups const& groups);
