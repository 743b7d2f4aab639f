#include "zyn/expressions/common_operators.h"

#include <cmath>

#include "mox/zyn/expressions/expression_context.h"
#include "mox/zyn/expressions/expression_value_stack.h"
#include "zyn/expressions/arithmetic.h"
#include "zyn/expressions/builtin_operation.h"

namespace moxExParser {

namespace {

constexpr int kSums = 5;
constexpr int kProducts = 8;
constexpr int kPowers = 9;

template <Opcode kOpcode, int kPrecedence, bool kLeftAssociative, class Compute>
class BinaryOperator final : public BuiltinOperation {
 public:
  Opcode opcode() const override { return kOpcode; }
  bool leftAssociative() const override { return kLeftAssociative; }
  int precedence() const override { return kPrecedence; }
  bool isOperator() const override { return true; }
  bool isFunction() const override { return false; }

  /// With one value too few the stack is left as it was, so that "-1", a minus sign without a left
  /// value, is 1.
  bool exec(moxExpressionValueStack* stack) override {
    double left = 0;
    double right = 0;
    if (!stack->pop(&right)) {
      return false;
    }
    if (!stack->pop(&left)) {
      stack->push(right);
      return false;
    }
    stack->push(Compute{}(left, right));
    return true;
  }
};

struct Sum {
  double operator()(double left, double right) const { return left + right; }
};
struct Difference {
  double operator()(double left, double right) const { return left - right; }
};
struct Product {
  double operator()(double left, double right) const { return left * right; }
};
struct Quotient {
  double operator()(double left, double right) const {
    if (right == 0.0) {
      failDivisionByZero();
    }
    return left / right;
  }
};
struct Rest {
  double operator()(double left, double right) const { return std::fmod(left, right); }
};
struct Power {
  double operator()(double left, double right) const { return std::pow(left, right); }
};

using Add = BinaryOperator<Opcode::kAdd, kSums, true, Sum>;
using Subtract = BinaryOperator<Opcode::kSubtract, kSums, true, Difference>;
using Multiply = BinaryOperator<Opcode::kMultiply, kProducts, true, Product>;
using Divide = BinaryOperator<Opcode::kDivide, kProducts, true, Quotient>;
using Reminder = BinaryOperator<Opcode::kReminder, kProducts, true, Rest>;
using Exp = BinaryOperator<Opcode::kExp, kPowers, false, Power>;

}  // namespace

void failDivisionByZero(std::initializer_list<std::string> details) {
  throw moxDefaultErrorImpl<moxExpressionContext::DivByZero>("Divisão por zero.", details);
}

moxExpressionOperation* CommonOperators::getOperator(std::string const& name) {
  switch (name.empty() ? '\0' : name.front()) {
    case '+':
      return new Add();
    case '-':
      return new Subtract();
    case '*':
      return new Multiply();
    case '/':
      return new Divide();
    case '%':
      return new Reminder();
    case '^':
      return new Exp();
    default:
      return nullptr;
  }
}

}  // namespace moxExParser
