#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/matrix/data_matrix_row.h"

/// A table in memory: a list of columns, and nothing else. Registered as "moxDataMatrix"; every
/// `get` gives a new one. It may be read by many threads only while none writes to it or its
/// columns.
class moxDataMatrix : public virtual moxPluginBase {
 public:
  /// Adds a column at the end. One that the matrix already holds stays where it is; names may
  /// repeat. An empty pointer is ignored.
  virtual void addColumn(std::shared_ptr<moxDataMatrixColumn> column) = 0;

  /// The column at a place, empty past the last.
  virtual std::shared_ptr<moxDataMatrixColumn> columnAt(unsigned int index) = 0;
  virtual std::shared_ptr<moxDataMatrixColumn const> columnAt(unsigned int index) const = 0;

  /// The first column of that name, compared byte by byte; empty when none has it.
  virtual std::shared_ptr<moxDataMatrixColumn> columnByName(std::string const& columnName) = 0;
  virtual std::shared_ptr<moxDataMatrixColumn const> columnByName(
      std::string const& columnName) const = 0;

  virtual unsigned int columnCount() const = 0;

  /// Takes the rows out of every column; the columns stay.
  virtual void clearData() = 0;

  /// Rows of the shortest column, for only rows that stand in every column count; 0 without
  /// columns.
  virtual unsigned int rowCount() const = 0;

  /// Makes room in every column; more than INT_MAX counts as INT_MAX.
  virtual void reserve(unsigned int rows) = 0;

  /// A row on the first row, with a cursor a column in the columns' order. Empty, not a row at the
  /// end, when there are no columns or no rows.
  virtual std::shared_ptr<moxDataMatrixRow> begin() const = 0;

  /// Adds a null to every column. Always true.
  virtual bool appendNullRow() = 0;

  /// Takes that very column out; nothing happens when it is not there.
  virtual void dropColumn(std::shared_ptr<moxDataMatrixColumn const> column) = 0;

  /// Keeps only the columns named, in the order of the names; names without a column are passed
  /// over.
  virtual void orderColumnsByName(std::vector<std::string> const& columnNames) = 0;

  /// The place of the first column of that name, -1 when none has it.
  virtual int getColumnIndexByName(std::string const& columnName) const = 0;
};
