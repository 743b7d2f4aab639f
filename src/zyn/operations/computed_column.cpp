#include "zyn/operations/computed_column.h"

#include <utility>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/expressions/arithmetic.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/operation_errors.h"

namespace {

std::shared_ptr<moxDataMatrixColumn> newColumn(ComputedColumnDefinition const& definition) {
  bool const isInt = definition.tipo == moxColumnExpression::kInteiro;
  auto column = makeColumn(isInt ? moxDataMatrixTypes::Int : moxDataMatrixTypes::Double);
  column->setName(definition.columnName);
  return column;
}

std::string columnDetail(ComputedColumnDefinition const& definition) {
  return "Coluna: " + definition.columnName;
}

std::string expressionDetail(ComputedColumnDefinition const& definition) {
  return "Expressão: " + definition.expression;
}

}  // namespace

void ComputedColumn::fail() const {
  auto const reason = context->getError();
  auto const message =
      "Erro ao processar expressão para coluna '" + definition->columnName + "': " + reason;
  auto const where = columnDetail(*definition);
  auto const expression = expressionDetail(*definition);
  if (reason.empty()) {
    throw moxDefaultErrorImpl<moxError>(message,
                                        {where, expression, "the expression has no value"});
  }
  throw moxDefaultErrorImpl<moxError>(message, {where, expression});
}

void ComputedColumn::failDivision() const {
  moxExParser::failDivisionByZero({columnDetail(*definition), expressionDetail(*definition)});
}

ComputedColumns::ComputedColumns(moxDataMatrix& matrix, bool convertZeroToNull)
    : matrix_(matrix),
      convertZeroToNull_(convertZeroToNull),
      rows_(matrix.rowCount()),
      row_(rows_ == 0 ? nullptr : matrix.begin()) {
  if (row_) {
    provider_ = std::make_unique<ColumnProvider>(*row_);
  }
}

ComputedColumns::~ComputedColumns() {
  for (ComputedColumn& column : columns_) {
    column.cells.fillTo(rows_);
  }
}

void ComputedColumns::add(ComputedColumnDefinition const& definition) {
  auto column = newColumn(definition);
  column->reserve(static_cast<int>(rows_));
  CellRules const rules(definition.tipo, definition.decimals, definition.operation,
                        convertZeroToNull_);
  ComputedCells const cells(*column, rules);
  columns_.push_back({&definition, column, cells, {}, {}, false});
  matrix_.addColumn(column);
  if (row_) {
    parse(columns_.back());
  }
}

void ComputedColumns::parse(ComputedColumn& column) {
  column.cursor = column.column->begin();
  row_->addIterator(column.cursor);
  column.context = moxApp->get<moxExpressionContext>("moxExpressionContext");
  column.context->addFunctionProvider(provider_.get());
  try {
    column.isParsed = column.context->parse(column.definition->expression);
  } catch (moxError const& error) {
    throw moxDefaultErrorImpl<moxError>(
        error.errorMessage(), {columnDetail(*column.definition),
                               expressionDetail(*column.definition), columnsThere(matrix_)});
  }
}
