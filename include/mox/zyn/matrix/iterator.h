#pragma once

#include <memory>
#include <string>

#include "mox/zyn/matrix/data_matrix_types.h"

class moxDataMatrixColumn;

/// A cursor over one column: a column and a row number. It does not own the column, which must
/// outlive it, and stays where it is when the column grows. Belongs to the column's thread. It is
/// never made by the registry, only by moxDataMatrixColumn::begin and clone.
///
/// At the end, one past the last row, a cursor reads as null and refuses to write.
class moxIterator {
 public:
  virtual ~moxIterator() = default;

  virtual std::string name() const = 0;

  /// Moves one row ahead; false when the cursor then stands at the end. At the end it stays, and
  /// gives false.
  virtual bool next() = 0;

  /// Moves one row back; false, without moving, at row 0.
  virtual bool previous() = 0;

  /// Moves to a row; false, without moving, for a row past the last.
  virtual bool goTo(unsigned int row) = 0;

  /// Moves to the last row, not past it; false for a column without rows.
  virtual bool goToEnd() = 0;

  /// Whether the row is null; true at the end.
  virtual bool isNull() const = 0;

  virtual moxDataMatrixTypes::Types getType() const = 0;

  /// The column, sharing its ownership. Throws std::bad_weak_ptr for a column that no shared_ptr
  /// holds.
  virtual std::shared_ptr<moxDataMatrixColumn> getParentColumn() const = 0;

  /// A new cursor on the same row of the same column.
  virtual std::shared_ptr<moxIterator> clone() const = 0;

  /// Whether compare gives 0.
  virtual bool equals(std::shared_ptr<moxIterator const> const& other) const = 0;

  /// Takes over the other cursor's value, or its null (which stores the column's null value too).
  /// Nothing happens for an empty pointer, a cursor over another kind of value, or at the end.
  virtual void set(std::shared_ptr<moxIterator const> const& other) = 0;

  /// Whether the cursor stands one past the last row.
  virtual bool atEnd() const = 0;

  /// The one ordering of cells: -1, 0 or 1. Nulls come first, and are equal among themselves.
  /// Integers by value; doubles by < and then >, so that a NaN equals everything; texts by bytes;
  /// dates by their second; blobs by the address of the object. Throws std::bad_cast for a cursor
  /// over another kind of value, or an empty pointer.
  virtual int compare(std::shared_ptr<moxIterator const> const& other) const = 0;

  /// The row number; the number of rows at the end.
  virtual unsigned int pos() const = 0;

  /// Rows from this one, included, to the last; 0 at the end.
  virtual unsigned int count() const = 0;

  /// Marks the row as null; the value under the mark stays as it was.
  virtual void setNull() = 0;
};

/// The typed part of a cursor. `T` is a value type of moxDataMatrixValue.
template <class T>
class moxIteratorBase : public moxIterator {
 public:
  using moxIterator::set;

  /// Overwrites the row's value and takes the null mark away; nothing happens at the end.
  virtual void set(T const& value) = 0;

  /// The row's value; the type's null value (0, 0.0, "", the empty date, an empty pointer) for a
  /// null and at the end.
  virtual T get() const = 0;
};
