#include <algorithm>
#include <string>

#include "core/database/sql_tokens.h"
#include "core/database/sqlite_rewriter.h"
#include "fuzz/promise.h"
#include "fuzz/targets.h"

namespace mox::fuzz {

namespace {

/// The characters of a text that SQLite reads as code: quotes end where they are not doubled,
/// comments begin with two minus signs wherever they stand.
std::string codeOfSqlite(std::string_view text) {
  std::string code;
  std::size_t i = 0;
  auto const skipTo = [&](std::string_view end, std::size_t from) {
    std::size_t const found = text.find(end, from);
    i = found == std::string_view::npos ? text.size() : found + end.size();
  };
  while (i < text.size()) {
    char const c = text[i];
    if (c == '\'' || c == '"' || c == '`') {
      skipTo(std::string_view(&text[i], 1), i + 1);
    } else if (text.substr(i, 2) == "--") {
      skipTo("\n", i);
    } else if (text.substr(i, 2) == "/*") {
      skipTo("*/", i + 2);
    } else {
      code += c;
      ++i;
    }
  }
  return code;
}

std::string codeOfMariadb(std::string_view text) {
  mox::core::SqlTokens const tokens(text);
  std::string code;
  for (int i = 0; i < tokens.count(); ++i) {
    char const first = tokens.textAt(i).front();
    if (first != '\'' && first != '"' && first != '`') {
      code += tokens.textAt(i);
    }
  }
  return code;
}

auto countOf(std::string const& code, char character) {
  return std::count(code.begin(), code.end(), character);
}

}  // namespace

void rewriteStatement(std::string_view bytes) {
  mox::core::SqliteText rewritten;
  if (!accepted([&] { rewritten = mox::core::rewriteForSqlite(bytes); })) {
    return;
  }
  std::string const before = codeOfMariadb(bytes);
  std::string const after = codeOfSqlite(rewritten.statement);
  for (char const character : {'?', ';', '='}) {
    require(countOf(before, character) == countOf(after, character),
            "what is code for one database is code for the other, and no more");
  }
  require(rewritten.ahead.size() <= 1, "at most one statement runs ahead");
  for (std::string const& statement : rewritten.ahead) {
    require(countOf(codeOfSqlite(statement), ';') == 0, "and it is a single one");
  }
}

}  // namespace mox::fuzz
