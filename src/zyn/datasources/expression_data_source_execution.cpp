#include "zyn/datasources/expression_data_source_execution.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_expression_processor.h"

namespace {

void addColumns(moxExpressionDataSource const& definition,
                moxDataMatrixExpressionProcessor& processor) {
  for (auto const& expression : definition.expressions().get()) {
    if (expression) {
      auto const [decimals, operation] = expression->getDecimalPrecision();
      processor.addColumn(expression->columnName(), expression->getExpression(), expression->tipo(),
                          decimals, operation);
    }
  }
}

}  // namespace

bool ExpressionDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const processor =
      moxApp->get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
  addColumns(definition(), *processor);
  auto const matrix = input(*context, definition().getSource());
  processor->setConvertZeroToNull(definition().getConvertZeroToNull());
  processor->processDataMatrix(matrix);
  context->registerDataMatrix(resultName(targetName), matrix);
  return true;
}
