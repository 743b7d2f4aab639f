#include "zyn/expressions/common_functions.h"

#include <cmath>

#include "mox/zyn/expressions/expression_value_stack.h"
#include "zyn/expressions/arithmetic.h"
#include "zyn/expressions/builtin_operation.h"

namespace moxExParser {

namespace {

template <Opcode kOpcode>
class Function : public BuiltinOperation {
 public:
  Opcode opcode() const override { return kOpcode; }
  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return true; }
};

/// A function of a value and a number of decimal places. A value that is missing fails, and what
/// was taken by then is gone.
template <Opcode kOpcode, double (*compute)(double value, double scale)>
class PlacesFunction final : public Function<kOpcode> {
 public:
  bool exec(moxExpressionValueStack* stack) override {
    double value = 0;
    double places = 0;
    if (!stack->pop(&places) || !stack->pop(&value)) {
      return false;
    }
    stack->push(compute(value, scaleFor(places)));
    return true;
  }
};

class Abs final : public Function<Opcode::kAbs> {
 public:
  bool exec(moxExpressionValueStack* stack) override {
    double value = 0;
    if (!stack->pop(&value)) {
      return false;
    }
    stack->push(std::fabs(value));
    return true;
  }
};

using Floor = PlacesFunction<Opcode::kFloor, floorAt>;
using Round = PlacesFunction<Opcode::kRound, roundAt>;
using Ceil = PlacesFunction<Opcode::kCeil, ceilAt>;

}  // namespace

moxExpressionOperation* CommonFunctions::getFunction(std::string const& name) {
  if (name == "floor") {
    return new Floor();
  }
  if (name == "round") {
    return new Round();
  }
  if (name == "ceil") {
    return new Ceil();
  }
  return name == "abs" ? new Abs() : nullptr;
}

}  // namespace moxExParser
