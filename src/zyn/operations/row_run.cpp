#include "zyn/operations/row_run.h"

#include "mox/zyn/expressions/expression_context.h"
#include "zyn/expressions/arithmetic.h"

namespace {

template <class T>
void setUnlessZero(moxIterator& cursor, T value, bool zeroIsNull, T kept) {
  if (value != 0 || !zeroIsNull) {
    dynamic_cast<moxIteratorBase<T>&>(cursor).set(kept);
  }
}

void store(ComputedColumn& column, double value) {
  CellRules const& rules = column.cells.rules();
  if (rules.isInt()) {
    int const whole = moxExParser::toInt(value);
    setUnlessZero(*column.cursor, whole, rules.zeroIsNull(), whole);
  } else {
    setUnlessZero(*column.cursor, value, rules.zeroIsNull(), rules.withDecimals(value));
  }
}

double evaluated(ComputedColumn& column) {
  bool ok = false;
  double value = 0.0;
  try {
    value = column.isParsed ? column.context->exec(&ok) : 0.0;
  } catch (moxExpressionContext::DivByZero const&) {
    column.failDivision();
  }
  if (!ok) {
    column.fail();
  }
  return value;
}

}  // namespace

void runRowByRow(ComputedColumns& columns) {
  for (ComputedColumn& column : columns.all()) {
    column.cells.fillTo(columns.rows());
  }
  do {
    for (ComputedColumn& column : columns.all()) {
      store(column, evaluated(column));
    }
  } while (columns.row()->next());
}
