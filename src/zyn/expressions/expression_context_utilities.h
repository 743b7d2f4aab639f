#pragma once

#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/expressions/expression_context_utilities.h"

namespace moxExParser {

class ExpressionContextUtilities final : public virtual moxExpressionContextUtilities {
 public:
  std::string name() const override { return "moxExpressionContextUtilities"; }
  void tokenize(std::string const& text, std::vector<std::pair<bool, std::string>>& tokens,
                bool skipSeparators) const override;
  void getVariablesFunctionsName(std::string const& text,
                                 std::vector<std::string>& names) const override;
};

}  // namespace moxExParser
