#include "zyn/datasources/statement_tokens.h"

#include <algorithm>

namespace {

constexpr std::string_view kOpening = "{{";
constexpr std::string_view kClosing = "}}";

}  // namespace

TokenizedStatement parseTokens(std::string_view text) {
  TokenizedStatement statement;
  statement.query.reserve(text.size());
  for (;;) {
    auto const opening = text.find(kOpening);
    statement.query += text.substr(0, opening);
    if (opening == std::string_view::npos) {
      return statement;
    }
    text.remove_prefix(opening + kOpening.size());
    auto const closing = std::min(text.find(kClosing), text.size());
    statement.query += '?';
    statement.tokens.emplace_back(text.substr(0, closing));
    text.remove_prefix(std::min(closing + kClosing.size(), text.size()));
  }
}

std::string tokenColumn(std::string_view token) {
  std::string column;
  column.reserve(kOpening.size() + token.size() + kClosing.size());
  return column.append(kOpening).append(token).append(kClosing);
}

bool holdsToken(std::string_view column) {
  return column.find(kOpening) != std::string_view::npos;
}
