#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mox/zyn/expressions/expression_operation.h"
#include "mox/zyn/expressions/expression_providers.h"
#include "zyn/expressions/tokenizer.h"

namespace moxExParser {

using OwnedOperation = std::unique_ptr<moxExpressionOperation>;

/// Who is asked for names, in order.
struct Providers {
  std::vector<moxExpressionVariableProvider*> variables;
  std::vector<moxExpressionFunctionProvider*> functions;
  std::vector<moxExpressionOperatorProvider*> operators;
};

/// Brings the operations of an expression into the order in which they run, values before what is
/// done with them. One pass and one list of waiting operations, whatever the depth of parentheses.
class ShuntingYard {
 public:
  /// Appends to `output`. All three must outlive the object.
  ShuntingYard(std::string_view text, Providers const& providers,
               std::vector<OwnedOperation>& output)
      : tokens_(text), providers_(providers), output_(output) {}

  /// An empty text, or the reason why the text is no expression; what was understood before stands
  /// in the output.
  std::string run();

 private:
  std::string take(Token const& token);
  std::string takeName(std::string const& name);
  std::string closeParameter();
  std::string closeParenthesis();
  std::string finish();
  std::string takeFunction(OwnedOperation function);
  void takeOperator(OwnedOperation made);

  bool popToParenthesis();
  void popToOutput();

  Tokenizer tokens_;
  Providers const& providers_;
  std::vector<OwnedOperation>& output_;
  std::vector<OwnedOperation> waiting_;       // an empty pointer is an open parenthesis
  moxExpressionOperation* called_ = nullptr;  // the function that takes the next variable name
};

}  // namespace moxExParser
