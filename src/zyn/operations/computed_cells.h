#pragma once

#include <cstddef>
#include <memory>

#include "mox/zyn/datasources/column_expression.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "zyn/matrix/column_storage.h"

/// How a value becomes a cell of a computed column.
class CellRules {
 public:
  /// Any number of decimals, negative for all.
  CellRules(moxColumnExpression::Tipo tipo, int decimals, moxColumnExpression::Op operation,
            bool zeroIsNull);

  bool isInt() const { return isInt_; }
  bool zeroIsNull() const { return zeroIsNull_; }
  bool keepsAllDecimals() const { return scale_ == 0; }

  /// The double with as many decimals as wanted.
  double withDecimals(double value) const;

 private:
  bool isInt_;
  bool cuts_;
  bool zeroIsNull_;
  double scale_;  // 10 to the power of the decimals; 0 for all of them
};

/// The cells of a computed column while they are made: appended in order of rows, as a whole block
/// at a time. The column must be one of the module's own, empty, with room for its rows.
class ComputedCells {
 public:
  ComputedCells(moxDataMatrixColumn& column, CellRules const& rules);

  CellRules const& rules() const { return rules_; }

  /// The storage, of which one is there.
  ColumnStorage<int>* ints() const { return ints_; }
  ColumnStorage<double>* doubles() const { return doubles_; }

  std::size_t size() const;

  /// Makes cells of values. `values` must not lie in the column itself.
  void append(double const* values, std::size_t count);

  /// Makes nulls of the cells from a row on.
  void forgetFrom(std::size_t row);

  /// Adds nulls until there are so many rows.
  void fillTo(std::size_t rows);

 private:
  void appendDoubles(double const* values, std::size_t count);
  void appendInts(double const* values, std::size_t count);

  CellRules rules_;
  ColumnStorage<int>* ints_;
  ColumnStorage<double>* doubles_;
};
