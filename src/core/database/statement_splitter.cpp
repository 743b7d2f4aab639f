#include "core/database/statement_splitter.h"

#include <algorithm>
#include <array>

#include "core/database/database_error.h"
#include "core/database/sql_tokens.h"

namespace mox::core {
namespace {

constexpr std::array<std::string_view, 9> kReadingWords = {
    "select", "values", "table", "show", "explain", "describe", "desc", "call", "pragma"};
constexpr std::array<std::string_view, 4> kChangingWords = {"insert", "replace", "update",
                                                            "delete"};

template <std::size_t N>
bool isOneOf(SqlTokens const& tokens, int index, std::array<std::string_view, N> const& words) {
  return std::any_of(words.begin(), words.end(),
                     [&](auto word) { return tokens.isWord(index, word); });
}

int firstWord(SqlTokens const& tokens) {
  int index = 0;
  while (tokens.isPunctuation(index, '(')) {
    ++index;
  }
  return index;
}

// The verb behind the named subqueries of "with": they stand in brackets, the verb does not.
int verbBehindWith(SqlTokens const& tokens, int with) {
  for (int i = with + 1; i < tokens.count(); ++i) {
    bool const outside = tokens.at(i).depth == tokens.at(with).depth;
    if (outside && (isOneOf(tokens, i, kReadingWords) || isOneOf(tokens, i, kChangingWords))) {
      return i;
    }
  }
  return with;
}

bool returnsRows(SqlTokens const& tokens) {
  int verb = firstWord(tokens);
  if (tokens.isWord(verb, "with")) {
    verb = verbBehindWith(tokens, verb);
  }
  if (!isOneOf(tokens, verb, kChangingWords)) {
    return isOneOf(tokens, verb, kReadingWords) || tokens.isWord(verb, "with");
  }
  for (int i = verb; i < tokens.count(); ++i) {
    if (tokens.at(i).depth == 0 && tokens.isWord(i, "returning")) {
      return true;
    }
  }
  return false;
}

void refuseServerComments(SqlTokens const& tokens) {
  if (tokens.hasServerComment()) {
    throw DatabaseError(
        "A comment that begins with \"/*!\" or \"/*M!\" is run by some servers only; write what it "
        "holds into the statement itself",
        "", std::string(tokens.text()));
  }
}

std::vector<std::string> pieces(SqlTokens const& tokens) {
  std::string_view const text = tokens.text();
  std::vector<std::string> result;
  int first = 0;
  for (int i = 0; i <= tokens.count(); ++i) {
    if (i < tokens.count() && !tokens.isPunctuation(i, ';')) {
      continue;
    }
    if (i > first) {
      std::size_t const begin = tokens.at(first).begin;
      result.emplace_back(text.substr(begin, tokens.at(i - 1).end - begin));
    }
    first = i + 1;
  }
  return result;
}

void refuseMarks(std::vector<std::string> const& statements) {
  for (std::string const& statement : statements) {
    if (countMarks(statement) > 0) {
      throw DatabaseError("Only the main statement of a script may have marks for values", "",
                          statement);
    }
  }
}

}  // namespace

StatementScript splitScript(std::string_view text) {
  SqlTokens const tokens(text);
  refuseServerComments(tokens);
  std::vector<std::string> all = pieces(tokens);
  StatementScript script;
  if (all.empty()) {
    return script;
  }
  auto main =
      std::find_if(all.begin(), all.end(), [](std::string const& piece) { return hasRows(piece); });
  if (main == all.end()) {
    --main;
  }
  script.before.assign(std::make_move_iterator(all.begin()), std::make_move_iterator(main));
  script.main = std::move(*main);
  script.after.assign(std::make_move_iterator(main + 1), std::make_move_iterator(all.end()));
  refuseMarks(script.before);
  refuseMarks(script.after);
  return script;
}

int countMarks(std::string_view statement) {
  SqlTokens const tokens(statement);
  int marks = 0;
  for (int i = 0; i < tokens.count(); ++i) {
    marks += tokens.isKind(i, SqlTokenKind::kMark) ? 1 : 0;
  }
  return marks;
}

bool hasRows(std::string_view statement) {
  return returnsRows(SqlTokens(statement));
}

}  // namespace mox::core
