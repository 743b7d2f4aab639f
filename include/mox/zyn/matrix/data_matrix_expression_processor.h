#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"
#include "mox/zyn/datasources/column_expression.h"

class moxDataMatrix;

/// Adds computed columns to a matrix. In their expressions (see moxExpressionContext) a column is a
/// function of a row offset: `valor(0)` is its value in the current row, `valor(1)` in the row
/// before, `valor(0-1)` in the next. A null counts as 0, and so does a row that does not exist, a
/// row of a computed column that is not computed yet, and a column of texts, dates or blobs. A
/// column may use those added before it, and its own earlier rows.
///
/// Registered as "moxDataMatrixExpressionProcessor", a new one on every call; used by one thread.
class moxDataMatrixExpressionProcessor : public virtual moxPluginBase {
 public:
  /// Computes all columns, row by row and in the order in which they were added, and leaves them in
  /// the matrix, behind its own. A matrix without rows gets them empty, and no expression is looked
  /// at. May be called again, and adds new columns each time.
  ///
  /// Throws moxError, with the columns made so far in the matrix and nulls where nothing was
  /// computed: "Fonte de dados não localizada." for an empty pointer; "Coluna não encontrada " +
  /// name for a column that is not there; "Erro ao processar expressão para coluna '" + column name
  /// + "': " + reason for an expression that is none or has no value; and
  /// moxExpressionContext::DivByZero.
  virtual void processDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix) = 0;

  /// Adds a column. A value becomes an int by dropping its decimal places; NaN becomes 0, and what
  /// does not fit becomes the nearest int. A double keeps `decimals` places, or all of them for a
  /// negative number.
  virtual void addColumn(std::string const& columnName, std::string const& expression,
                         moxColumnExpression::Tipo tipo, int decimals,
                         moxColumnExpression::Op operation) = 0;

  /// Whether a value of 0 (before decimal places are cut, after the conversion to an int) leaves a
  /// null. False in a new one.
  virtual void setConvertZeroToNull(bool convertZeroToNull) = 0;
};
