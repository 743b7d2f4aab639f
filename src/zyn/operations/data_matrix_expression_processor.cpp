#include "zyn/operations/data_matrix_expression_processor.h"

#include "mox/core/error.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/operations/block_run.h"
#include "zyn/operations/row_run.h"

void DataMatrixExpressionProcessor::addColumn(std::string const& columnName,
                                              std::string const& expression,
                                              moxColumnExpression::Tipo tipo, int decimals,
                                              moxColumnExpression::Op operation) {
  definitions_.push_back({columnName, expression, tipo, decimals, operation});
}

void DataMatrixExpressionProcessor::setConvertZeroToNull(bool convertZeroToNull) {
  convertZeroToNull_ = convertZeroToNull;
}

void DataMatrixExpressionProcessor::processDataMatrix(
    std::shared_ptr<moxDataMatrix> const& matrix) {
  if (!matrix) {
    throw moxDefaultErrorImpl<moxError>("Fonte de dados não localizada.");
  }
  ComputedColumns columns(*matrix, convertZeroToNull_);
  for (auto const& definition : definitions_) {
    columns.add(definition);
  }
  if (columns.row() != nullptr && !runOverBlocks(columns)) {
    runRowByRow(columns);
  }
}
