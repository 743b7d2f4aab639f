#pragma once

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "zyn/matrix/data_matrix_row.h"

class RowGroups;

/// Which rows carry which combination of key values, and the place that the owning row has reached
/// among those of one combination. Belongs to one row; the groups behind it are shared with the
/// row's clones and never change.
///
/// What a combination finds is told by a tree of them, ordered by moxIterator::compare. Over the
/// module's own columns the tree is not even grown until somebody asks what hashing cannot answer:
/// fewer values than keys, or a NaN.
class DataMatrixRow::Index {
 public:
  using Keys = std::vector<std::shared_ptr<moxIterator>>;
  using KeyValues = std::vector<std::shared_ptr<moxIterator const>>;

  class RowMatch;
  using Groups = std::map<RowMatch, std::vector<unsigned int>, std::less<void>>;

  /// Reads all rows under `keys`, which move: afterwards the first of the shortest key columns has
  /// its cursor at the end. `keys` holds a cursor at least, and no empty pointer.
  Index(Keys const& keys, DataMatrixRow& owner);

  /// Looks a combination up and moves the owner to its first row; false, without a group, when it
  /// is not there.
  bool begin(KeyValues const& values);

  /// As DataMatrixRow with a filter; without a group there is nothing to move over.
  bool next();
  bool previous();
  bool atEnd() const;
  unsigned int count() const;

  /// From now on there is no current group.
  void leaveGroup();

  /// An index on the same place for another row, over the same groups.
  std::unique_ptr<Index> copy(DataMatrixRow& owner) const;

 private:
  std::span<unsigned int const> rowsWith(KeyValues const& values);
  std::span<unsigned int const> rowsInTree(KeyValues const& values);

  // The row may let go of a key's cursor, and with it of the column, while the index is in use.
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns_;

  std::shared_ptr<RowGroups const> hashed_;  // null where only the tree can answer
  std::shared_ptr<Groups const> groups_;     // null until hashing cannot answer

  std::span<unsigned int const> group_;  // the current group's rows; empty without one
  std::size_t place_ = 0;                // in the group; its size at the end
  DataMatrixRow* owner_;
};

/// One combination of key values: cursors on the row where it was first seen, so that the values
/// stand in the data and nowhere else. Ordered by moxIterator::compare, key by key; where either
/// list runs out, the two count as equal, and so a search with fewer values finds the first
/// combination that begins with them.
class DataMatrixRow::Index::RowMatch {
 public:
  explicit RowMatch(KeyValues cursors) : cursors_(std::move(cursors)) {}

  friend bool operator<(RowMatch const& left, RowMatch const& right) {
    return compare(left.cursors_, right.cursors_) < 0;
  }
  friend bool operator<(RowMatch const& left, KeyValues const& right) {
    return compare(left.cursors_, right) < 0;
  }
  friend bool operator<(KeyValues const& left, RowMatch const& right) {
    return compare(left, right.cursors_) < 0;
  }

 private:
  static int compare(KeyValues const& left, KeyValues const& right);

  KeyValues cursors_;
};
