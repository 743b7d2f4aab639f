#pragma once

#include <string>
#include <vector>

#include "mox/zyn/expressions/expression_context.h"
#include "mox/zyn/expressions/expression_value_stack.h"
#include "zyn/expressions/common_functions.h"
#include "zyn/expressions/common_operators.h"
#include "zyn/expressions/shunting_yard.h"

namespace moxExParser {

class Context final : public virtual moxExpressionContext {
 public:
  class Stack;

  Context();

  // The providers of the context itself are asked by address.
  Context(Context const&) = delete;
  Context& operator=(Context const&) = delete;

  std::string name() const override { return "moxExpressionContext"; }
  void addDataProvider(moxExpressionVariableProvider* provider) override;
  void addFunctionProvider(moxExpressionFunctionProvider* provider) override;
  bool parse(std::string const& text) override;
  std::string getError() const override { return error_; }
  double exec(bool* ok) override;
  std::vector<moxExpressionVariableProvider*> getDataProvider() const override;
  std::vector<moxExpressionFunctionProvider*> getFunctionProvider() const override;

  /// The operations in the order in which exec runs them; they live until the next parse.
  std::vector<OwnedOperation> const& operations() const { return output_; }

 private:
  std::string error_;
  CommonOperators commonOperators_;
  CommonFunctions commonFunctions_;
  Providers providers_;
  std::vector<OwnedOperation> output_;
};

/// The values of one evaluation.
class Context::Stack final : public virtual moxExpressionValueStack {
 public:
  std::string name() const override { return "moxExpressionValueStack"; }
  void push(double value) override { values_.push_back(value); }

  bool pop(double* value) override {
    if (values_.empty()) {
      return false;
    }
    *value = values_.back();
    values_.pop_back();
    return true;
  }

 private:
  std::vector<double> values_;
};

}  // namespace moxExParser
