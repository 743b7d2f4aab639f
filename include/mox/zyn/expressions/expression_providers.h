#pragma once

#include <string>

class moxExpressionOperation;

/// Makes the operations for names that stand in an expression. A provider is owned by whoever gave
/// it to a context and must outlive the context. What it returns belongs to the caller, a new one
/// each time; null for a name that it does not know. It may throw a moxError, which leaves
/// moxExpressionContext::parse.
class moxExpressionVariableProvider {
 public:
  virtual ~moxExpressionVariableProvider() = default;

  virtual moxExpressionOperation* getVariable(std::string const& name) = 0;
};

class moxExpressionFunctionProvider {
 public:
  virtual ~moxExpressionFunctionProvider() = default;

  virtual moxExpressionOperation* getFunction(std::string const& name) = 0;
};

class moxExpressionOperatorProvider {
 public:
  virtual ~moxExpressionOperatorProvider() = default;

  virtual moxExpressionOperation* getOperator(std::string const& name) = 0;
};
