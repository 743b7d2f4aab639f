#include "core/database/mark_places.h"

#include "core/database/sql_tokens.h"

namespace mox::core {
namespace {

bool isMark(SqlTokens const& tokens, int index) {
  return tokens.isKind(index, SqlTokenKind::kMark);
}

/// The token behind the marks and commas that begin at `first`.
int behindMarks(SqlTokens const& tokens, int first) {
  int index = first;
  while (isMark(tokens, index) && tokens.isPunctuation(index + 1, ',')) {
    index += 2;
  }
  return isMark(tokens, index) ? index + 1 : index;
}

bool expectsValue(SqlTokens const& tokens, int bracket) {
  int const before = bracket - 1;
  return tokens.isWord(before, "in") || tokens.isWord(before, "values") ||
         tokens.isPunctuation(before, ',');
}

/// The number of marks in the run whose bracket opens at a token; 0 when none does.
std::size_t runLength(SqlTokens const& tokens, int bracket) {
  if (!tokens.isPunctuation(bracket, '(') || !isMark(tokens, bracket + 1)) {
    return 0;
  }
  int const end = behindMarks(tokens, bracket + 1);
  auto const count = static_cast<std::size_t>((end - bracket) / 2);
  bool const whole = isMark(tokens, end - 1) && tokens.isPunctuation(end, ')');
  return whole && (count > 1 || expectsValue(tokens, bracket)) ? count : 0;
}

}  // namespace

MarkPlaces findMarks(std::string_view statement) {
  SqlTokens const tokens(statement);
  MarkPlaces found;
  for (int i = 0; i < tokens.count(); ++i) {
    if (isMark(tokens, i)) {
      found.places.push_back(tokens.at(i).begin);
    } else if (auto const count = runLength(tokens, i); count > 0) {
      int const last = i + 2 * static_cast<int>(count) - 1;
      found.runs.push_back(
          {found.places.size(), count, tokens.isWord(i - 1, "in"), tokens.at(last).end});
    }
  }
  return found;
}

}  // namespace mox::core
