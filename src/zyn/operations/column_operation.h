#pragma once

#include <memory>
#include <optional>
#include <string>

#include "mox/zyn/expressions/expression_operation.h"
#include "mox/zyn/expressions/expression_providers.h"
#include "mox/zyn/matrix/data_matrix_row.h"
#include "mox/zyn/matrix/iterator.h"

/// The row that stands `offset` rows before `row`; empty where no row can be. The offset's decimal
/// places do not count.
std::optional<unsigned int> rowBefore(unsigned int row, double offset);

/// A column in an expression, called with a row offset.
class ColumnOperation final : public moxExpressionOperation {
 public:
  /// `cursor` tells the current row; it is not moved.
  explicit ColumnOperation(std::shared_ptr<moxIterator> cursor);

  moxIterator const& cursor() const { return *cursor_; }

  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return true; }
  bool exec(moxExpressionValueStack* stack) override;

 private:
  double valueBefore(double offset);

  std::shared_ptr<moxIterator> cursor_;
  std::shared_ptr<moxIterator> reader_;  // goes to the row asked for
  moxIteratorBase<int> const* ints_;     // the reader, where it reads ints
  moxIteratorBase<double> const* doubles_;
};

/// Knows the columns of a row as functions. Throws moxError "Coluna não encontrada " + name for any
/// other name.
class ColumnProvider final : public moxExpressionFunctionProvider {
 public:
  /// The row must outlive the provider.
  explicit ColumnProvider(moxDataMatrixRow& row) : row_(row) {}

  moxExpressionOperation* getFunction(std::string const& name) override;

 private:
  moxDataMatrixRow& row_;
};
