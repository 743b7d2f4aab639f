#pragma once

#include <string>

#include "mox/zyn/expressions/expression_providers.h"

namespace moxExParser {

/// The six operators of the language, known by their first character.
class CommonOperators final : public moxExpressionOperatorProvider {
 public:
  moxExpressionOperation* getOperator(std::string const& name) override;
};

}  // namespace moxExParser
