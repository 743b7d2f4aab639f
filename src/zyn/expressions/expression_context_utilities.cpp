#include "zyn/expressions/expression_context_utilities.h"

#include <unordered_set>

#include "zyn/expressions/tokenizer.h"

namespace moxExParser {

namespace {

template <class Use>
void forEachToken(std::string const& text, Use use) {
  Tokenizer tokenizer(text);
  for (Token token = tokenizer.next(); !token.text.empty(); token = tokenizer.next()) {
    use(token);
  }
}

bool isSeparator(Token const& token) {
  return Tokenizer::isSeparator(token.text.front());
}

}  // namespace

void ExpressionContextUtilities::tokenize(std::string const& text,
                                          std::vector<std::pair<bool, std::string>>& tokens,
                                          bool skipSeparators) const {
  forEachToken(text, [&](Token const& token) {
    if (!skipSeparators || !isSeparator(token)) {
      tokens.emplace_back(token.isNumber, token.text);
    }
  });
}

void ExpressionContextUtilities::getVariablesFunctionsName(std::string const& text,
                                                           std::vector<std::string>& names) const {
  std::unordered_set<std::string> known(names.begin(), names.end());
  forEachToken(text, [&](Token const& token) {
    if (token.isNumber || isSeparator(token)) {
      return;
    }
    if (auto const [found, isNew] = known.emplace(token.text); isNew) {
      names.push_back(*found);
    }
  });
}

}  // namespace moxExParser
