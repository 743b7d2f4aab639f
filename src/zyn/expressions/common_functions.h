#pragma once

#include <string>

#include "mox/zyn/expressions/expression_providers.h"

namespace moxExParser {

/// The functions of the language: floor, round, ceil, abs.
class CommonFunctions final : public moxExpressionFunctionProvider {
 public:
  moxExpressionOperation* getFunction(std::string const& name) override;
};

}  // namespace moxExParser
