#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "zyn/matrix/data_matrix_row.h"

/// Which rows carry which combination of key values, and the place that the owning row has reached
/// among those of one combination. Belongs to one row; the groups behind it may be shared by the
/// row's clones, which only read them.
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

  /// As DataMatrixRow, with a filter.
  bool next();
  bool previous();
  bool atEnd() const;
  unsigned int count() const;

  /// From now on there is no current group.
  void leaveGroup();

  /// An index on the same place for another row, over the same groups.
  std::unique_ptr<Index> copy(DataMatrixRow& owner) const;

 private:
  void growInOrderOfRows();

  std::shared_ptr<Groups> groups_;
  Groups::iterator group_;                           // groups_->end() without a current group
  std::vector<unsigned int>::const_iterator place_;  // in the current group's rows; valid with one
  bool grownInKeyOrder_ = false;  // not row by row, which gives the tree another shape
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

  KeyValues const& cursors() const { return cursors_; }

 private:
  static int compare(KeyValues const& left, KeyValues const& right);

  KeyValues cursors_;
};
