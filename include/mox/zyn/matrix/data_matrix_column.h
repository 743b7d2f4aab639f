#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/data_matrix_types.h"
#include "mox/zyn/matrix/iterator.h"

class moxGenericFormatter;

/// One growing column: values of one kind with a null flag beside each. A column takes no lock: it
/// may be read by many threads only while none writes. Rows are never taken out of the middle.
class moxDataMatrixColumn : public virtual moxPluginBase {
 public:
  /// Makes room for `rows` rows; the number of rows stays. Throws std::length_error for a number
  /// that is negative or that no column can have.
  virtual void reserve(int rows) = 0;

  /// Takes all rows away and keeps the room.
  virtual void clear() = 0;

  virtual unsigned int numRows() const = 0;

  virtual moxDataMatrixTypes::Types getType() const = 0;

  /// Whether the row is null; true for a row at or past the end.
  virtual bool isNull(unsigned int row) const = 0;

  /// A new cursor on row 0, which for a column without rows is the end.
  virtual std::shared_ptr<moxIterator> begin() = 0;

  /// The name under which a matrix finds the column; empty in a new one.
  virtual std::string getName() const = 0;
  virtual void setName(std::string const& name) = 0;

  /// Adds a row that is null.
  virtual void appendNull() = 0;

  /// How the column likes to be shown; held, never applied here. Empty in a new one.
  virtual void setFormatter(std::shared_ptr<moxGenericFormatter const> formatter) = 0;
  virtual std::shared_ptr<moxGenericFormatter const> getFormatter() const = 0;
};

/// The typed part of a column. `T` is a value type of moxDataMatrixValue.
template <class T>
class moxDataMatrixTypedColumn : public virtual moxDataMatrixColumn {
 public:
  /// Adds a row.
  virtual void appendValue(T const& value) = 0;

  /// The row's value; the type's null value (0, 0.0, "", the empty date, an empty pointer) for a
  /// null and for a row past the end.
  virtual T getValue(unsigned int row) const = 0;
};

/// Registered as "moxDataMatrixIntColumn"; likewise the four below.
class moxDataMatrixIntColumn : public virtual moxDataMatrixTypedColumn<int> {};
class moxDataMatrixDoubleColumn : public virtual moxDataMatrixTypedColumn<double> {};
class moxDataMatrixTextColumn : public virtual moxDataMatrixTypedColumn<std::string> {};
class moxDataMatrixDateColumn : public virtual moxDataMatrixTypedColumn<datetime_t> {};
class moxDataMatrixBlobColumn
    : public virtual moxDataMatrixTypedColumn<std::shared_ptr<moxReadBlob>> {};
