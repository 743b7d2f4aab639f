#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_expression_processor.h"
#include "zyn/operations/computed_column.h"

/// Runs the expressions over blocks of rows where all columns they read are the module's own, and
/// row by row otherwise.
class DataMatrixExpressionProcessor final : public virtual moxDataMatrixExpressionProcessor {
 public:
  std::string name() const override { return "moxDataMatrixExpressionProcessor"; }
  void processDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix) override;
  void addColumn(std::string const& columnName, std::string const& expression,
                 moxColumnExpression::Tipo tipo, int decimals,
                 moxColumnExpression::Op operation) override;
  void setConvertZeroToNull(bool convertZeroToNull) override;

 private:
  std::vector<ComputedColumnDefinition> definitions_;
  bool convertZeroToNull_ = false;
};
