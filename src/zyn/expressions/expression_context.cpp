#include "zyn/expressions/expression_context.h"

namespace moxExParser {

Context::Context() {
  providers_.operators.push_back(&commonOperators_);
  providers_.functions.push_back(&commonFunctions_);
}

void Context::addDataProvider(moxExpressionVariableProvider* provider) {
  if (provider != nullptr) {
    providers_.variables.push_back(provider);
  }
}

void Context::addFunctionProvider(moxExpressionFunctionProvider* provider) {
  if (provider != nullptr) {
    providers_.functions.push_back(provider);
  }
}

bool Context::parse(std::string const& text) {
  output_.clear();
  error_.clear();
  error_ = ShuntingYard(text, providers_, output_).run();
  return error_.empty();
}

double Context::exec(bool* ok) {
  Stack stack;
  for (OwnedOperation const& operation : output_) {
    if (!operation->exec(&stack)) {
      break;
    }
  }
  double value = 0.0;
  bool const isThere = stack.pop(&value);
  if (ok != nullptr) {
    *ok = isThere;
  }
  return value;
}

std::vector<moxExpressionVariableProvider*> Context::getDataProvider() const {
  return providers_.variables;
}

std::vector<moxExpressionFunctionProvider*> Context::getFunctionProvider() const {
  return providers_.functions;
}

}  // namespace moxExParser
