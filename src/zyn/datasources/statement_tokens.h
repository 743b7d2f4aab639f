#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A statement's text with a mark `?` in the place of each token, and the tokens' names in order.
struct TokenizedStatement {
  std::string query;
  std::vector<std::string> tokens;  // without their braces; one that stands twice is there twice
};

/// Takes a text with tokens `{{name}}` apart. An opening that nothing closes takes the rest of the
/// text as a token. Quotes and comments mean nothing here.
TokenizedStatement parseTokens(std::string_view text);

/// The token as filters and specifications name it.
std::string tokenColumn(std::string_view token);

/// Whether a filter's column is, or holds, a token.
bool holdsToken(std::string_view column);
