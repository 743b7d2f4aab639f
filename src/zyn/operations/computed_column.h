#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/column_expression.h"
#include "mox/zyn/expressions/expression_context.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/matrix/data_matrix_row.h"
#include "zyn/operations/column_operation.h"
#include "zyn/operations/computed_cells.h"

/// What a user says of a computed column.
struct ComputedColumnDefinition {
  std::string columnName;
  std::string expression;
  moxColumnExpression::Tipo tipo;
  int decimals;
  moxColumnExpression::Op operation;
};

/// A column in the matrix with the expression that fills it.
struct ComputedColumn {
  ComputedColumnDefinition const* definition;
  std::shared_ptr<moxDataMatrixColumn> column;
  ComputedCells cells;
  std::shared_ptr<moxIterator> cursor;  // empty for a matrix without rows; so is the next
  std::shared_ptr<moxExpressionContext> context;
  bool isParsed = false;

  /// Throws moxError: the column has no value.
  [[noreturn]] void fail() const;

  /// Throws moxExpressionContext::DivByZero, which tells the column and its expression.
  [[noreturn]] void failDivision() const;
};

/// The computed columns of one run. However it ends, they have as many rows as the matrix had: the
/// destructor adds the nulls that are missing.
class ComputedColumns {
 public:
  /// The matrix must outlive the object.
  ComputedColumns(moxDataMatrix& matrix, bool convertZeroToNull);
  ~ComputedColumns();

  ComputedColumns(ComputedColumns const&) = delete;
  ComputedColumns& operator=(ComputedColumns const&) = delete;

  /// Adds a column without cells to the matrix and parses its expression, which may use the columns
  /// before it. The definition must outlive the object. Throws moxError for an expression that
  /// names a column that is not there.
  void add(ComputedColumnDefinition const& definition);

  std::vector<ComputedColumn>& all() { return columns_; }

  unsigned int rows() const { return rows_; }

  /// The row on which all expressions are evaluated; null for a matrix without rows.
  moxDataMatrixRow* row() const { return row_.get(); }

 private:
  void parse(ComputedColumn& column);

  moxDataMatrix& matrix_;
  bool convertZeroToNull_;
  unsigned int rows_;
  std::shared_ptr<moxDataMatrixRow> row_;
  std::unique_ptr<ColumnProvider> provider_;
  std::vector<ComputedColumn> columns_;
};
