#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/iterator.h"

/// A moving view over the columns of a matrix: cursors that go in step. With a filter it visits
/// only the rows that carry one combination of key values. Registered as "moxDataMatrixRow";
/// belongs to one thread. The row keeps the columns of its cursors alive.
///
/// After a next() that gave false the cursors may stand on different rows; goTo and goToEnd bring
/// them together.
class moxDataMatrixRow : public virtual moxPluginBase {
 public:
  /// Adds a cursor at the end; one that the row already has stays where it is.
  virtual void addIterator(std::shared_ptr<moxIterator> iterator) = 0;

  /// The cursors in order.
  virtual std::vector<std::shared_ptr<moxIterator>> getIterators() = 0;
  virtual std::vector<std::shared_ptr<moxIterator const>> getIterators() const = 0;

  /// The cursor at a place, empty past the last.
  virtual std::shared_ptr<moxIterator> getIterator(unsigned int index) = 0;
  virtual std::shared_ptr<moxIterator const> getIterator(unsigned int index) const = 0;

  virtual unsigned int totalIterators() const = 0;

  /// Takes a cursor out; nothing happens when it is not there.
  virtual void removeIterator(std::shared_ptr<moxIterator> iterator) = 0;
  virtual void removeIteratorAt(unsigned int index) = 0;

  /// Moves all cursors on, in order, stopping at the first that gives false; false then, true
  /// otherwise and for a row without cursors. With a filter: to the group's next row; false,
  /// without moving, when there is none.
  virtual bool next() = 0;

  /// The same backwards.
  virtual bool previous() = 0;

  /// Moves all cursors to a row, stopping at the first that refuses; false then.
  virtual bool goTo(unsigned int row) = 0;

  /// Ends the filter and moves all cursors to their last row, stopping at the first that refuses;
  /// false then.
  virtual bool goToEnd() = 0;

  /// The first cursor whose column has that name; empty when none has.
  virtual std::shared_ptr<moxIterator> findIterator(std::string const& columnName) = 0;
  virtual std::shared_ptr<moxIterator const> findIterator(std::string const& columnName) const = 0;

  /// Whether any cursor is at its end (no cursor: false). With a filter: no group was found, or it
  /// is used up.
  virtual bool atEnd() const = 0;

  /// A row with cursors of its own on the same places and the same filter, which shares the index
  /// and so costs little. Empty for a row without cursors.
  virtual std::shared_ptr<moxDataMatrixRow> clone() const = 0;

  /// Filters by key: visits, in ascending order, the rows whose values under `keys` equal those
  /// under `values`, and moves to the first. A null is a key value like any other. `keys` are
  /// cursors over this row's matrix and are added to the row; `values` are usually cursors of
  /// another matrix, standing on the values wanted; when there are fewer of them than keys, the
  /// first keys decide. The index over the keys is built once and kept for as long as the same key
  /// cursors come in the same order; it does not notice cells that change.
  ///
  /// False when no row has the values, when an element of `values` is empty (then no group is in
  /// force), and for empty `keys` (which end the filter). Throws std::bad_cast when a value is of
  /// another kind than its key.
  virtual bool beginWithFilter(std::vector<std::shared_ptr<moxIterator>> const& keys,
                               std::vector<std::shared_ptr<moxIterator const>> const& values) = 0;

  /// Ends the filter; the cursors stay where they are.
  virtual void clearFilter() = 0;

  /// Rows left, the current one included: the smallest count() of the cursors, 0 without cursors;
  /// with a filter, those left in the group.
  virtual unsigned int count() const = 0;
};
