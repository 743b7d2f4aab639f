#pragma once

#include "mox/zyn/expressions/expression_value_stack.h"
#include "zyn/expressions/builtin_operation.h"

namespace moxExParser {

/// A number in an expression.
class ConstantValue final : public BuiltinOperation {
 public:
  explicit ConstantValue(double value) : value_(value) {}

  double value() const { return value_; }

  Opcode opcode() const override { return Opcode::kConstant; }
  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return false; }

  bool exec(moxExpressionValueStack* stack) override {
    stack->push(value_);
    return true;
  }

 private:
  double value_;
};

}  // namespace moxExParser
