#include "zyn/operations/column_operation.h"

#include <cmath>
#include <utility>

#include "mox/core/error.h"
#include "mox/zyn/expressions/expression_value_stack.h"

std::optional<unsigned int> rowBefore(unsigned int row, double offset) {
  constexpr double kRowsThatCanBe = 4294967296.0;  // 2^32
  double const target = row - std::trunc(offset);
  if (target >= 0 && target < kRowsThatCanBe) {
    return static_cast<unsigned int>(target);
  }
  return {};
}

ColumnOperation::ColumnOperation(std::shared_ptr<moxIterator> cursor)
    : cursor_(std::move(cursor)),
      reader_(cursor_->clone()),
      ints_(dynamic_cast<moxIteratorBase<int> const*>(reader_.get())),
      doubles_(dynamic_cast<moxIteratorBase<double> const*>(reader_.get())) {}

bool ColumnOperation::exec(moxExpressionValueStack* stack) {
  double offset = 0;
  if (!stack->pop(&offset)) {
    return false;
  }
  stack->push(valueBefore(offset));
  return true;
}

double ColumnOperation::valueBefore(double offset) {
  auto const row = rowBefore(cursor_->pos(), offset);
  if (!row || !reader_->goTo(*row)) {
    return 0.0;
  }
  if (ints_ != nullptr) {
    return ints_->get();
  }
  return doubles_ != nullptr ? doubles_->get() : 0.0;
}

moxExpressionOperation* ColumnProvider::getFunction(std::string const& name) {
  auto cursor = row_.findIterator(name);
  if (!cursor) {
    throw moxDefaultErrorImpl<moxError>("Coluna não encontrada " + name);
  }
  return new ColumnOperation(std::move(cursor));
}
