#pragma once

#include <string>

class moxExpressionValueStack;

/// One element of an expression: an operator, a function, or a value. Made by a provider, owned by
/// the context that asked for it, and used by the context's thread.
class moxExpressionOperation {
 public:
  virtual ~moxExpressionOperation() = default;

  /// For an operator: whether equal precedences are worked out from the left.
  virtual bool leftAssociative() const = 0;

  /// How tightly an operator binds; the higher, the tighter.
  virtual int precedence() const = 0;

  virtual bool isOperator() const = 0;

  /// Whether the operation is called: its name is followed by parameters in parentheses.
  virtual bool isFunction() const = 0;

  /// Takes its values off the stack, the last one first, and pushes its result. False when it could
  /// not: the evaluation then stops. May throw a moxError, which leaves the evaluation.
  virtual bool exec(moxExpressionValueStack* stack) = 0;

  /// A name among a function's parameters that is no function and no operator: the first one goes
  /// to the function instead of being looked for among the variables.
  virtual void setParameter(std::string const& /*parameter*/) {}
};
