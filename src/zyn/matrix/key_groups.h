#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "zyn/matrix/word_table.h"

class moxDataMatrixColumn;
class moxIterator;

/// Rows told apart by their key: which rows carry the same combination of values. Groups are
/// numbered from 0 in the order in which they first appear.
struct KeyGroups {
  std::vector<std::uint32_t> groupOfRow;
  std::vector<std::uint32_t> firstRow;  // of each group
};

/// Groups rows by hashing their keys, and then finds the group of a key that stands somewhere else.
/// Cells are the same where moxIterator::compare gives 0: null is a value like any other, and -0.0
/// is 0.0. It refers to the key columns, which must outlive it; cells that change after grouping
/// are not noticed.
class KeyGrouper {
 public:
  using Columns = std::vector<moxDataMatrixColumn const*>;
  using Values = std::vector<std::shared_ptr<moxIterator const>>;

  /// No row has the values.
  static constexpr std::uint32_t kNoGroup = WordTable::kAbsent;
  /// Hashing cannot answer: fewer values than keys, a value of another kind, or a NaN.
  static constexpr std::uint32_t kCannotTell = kNoGroup - 1;

  KeyGrouper();
  ~KeyGrouper();
  KeyGrouper(KeyGrouper const&) = delete;
  KeyGrouper& operator=(KeyGrouper const&) = delete;

  /// Groups the first `rows` rows; called once. False when hashing cannot do it: a key column is of
  /// foreign make, or holds a NaN, which compares equal to everything. `keys` holds a column at
  /// least, and none has fewer rows.
  bool group(Columns const& keys, std::uint32_t rows);

  KeyGroups const& groups() const { return groups_; }

  /// Hands the groups over; find() needs them no longer.
  KeyGroups takeGroups() { return std::move(groups_); }

  /// The number of the group whose key stands under the cursors, one for each key; further ones are
  /// not looked at. None is an empty pointer.
  std::uint32_t find(Values const& values) const;

  /// What is known of one key; public for those that implement it.
  class KeyTable;

 private:
  bool groupBy(KeyTable& table, std::uint32_t rows);

  /// Splits the groups so far by those of a further key.
  void refine(std::vector<std::uint32_t> const& further);

  std::vector<std::unique_ptr<KeyTable>> tables_;  // one a key
  std::vector<WordTable> pairs_;  // group so far and further key's group, for the second key on
  KeyGroups groups_;
};
