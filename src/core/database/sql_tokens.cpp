#include "core/database/sql_tokens.h"

#include <algorithm>

namespace mox::core {
namespace {

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool startsName(char c) {
  return (lower(c) >= 'a' && lower(c) <= 'z') || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool continuesName(char c) {
  return startsName(c) || isDigit(c);
}

class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}

  std::vector<SqlToken> run() {
    std::vector<SqlToken> tokens;
    for (skipFiller(); place_ < text_.size(); skipFiller()) {
      tokens.push_back(next());
    }
    return tokens;
  }

  bool hasServerComment() const { return hasServerComment_; }

 private:
  char look(std::size_t ahead = 0) const {
    return place_ + ahead < text_.size() ? text_[place_ + ahead] : '\0';
  }

  bool startsLineComment() const {
    if (look() == '#') {
      return true;
    }
    bool const last = place_ + 2 >= text_.size();
    return look() == '-' && look(1) == '-' && (last || static_cast<unsigned char>(look(2)) <= ' ');
  }

  void skipFiller() {
    while (place_ < text_.size()) {
      if (isBlank(look())) {
        ++place_;
      } else if (startsLineComment()) {
        place_ = std::min(text_.find('\n', place_), text_.size());
      } else if (look() == '/' && look(1) == '*') {
        skipComment();
      } else {
        return;
      }
    }
  }

  void skipComment() {
    hasServerComment_ = hasServerComment_ || look(2) == '!' || (look(2) == 'M' && look(3) == '!');
    std::size_t const close = text_.find("*/", place_ + 2);
    place_ = close == std::string_view::npos ? text_.size() : close + 2;
  }

  SqlToken next() {
    SqlToken token;
    token.begin = place_;
    token.kind = consume(token);
    token.end = place_;
    return token;
  }

  SqlTokenKind consume(SqlToken& token) {
    char const c = look();
    token.depth = depth_;
    if (c == '\'' || c == '"' || c == '`') {
      return consumeQuoted(token, c);
    }
    if (startsName(c)) {
      return consumeWord();
    }
    if (isDigit(c) || (c == '.' && isDigit(look(1)) && !endsName())) {
      return consumeNumber();
    }
    return consumeCharacter(token, c);
  }

  // Whether the dot stands behind a name or a bracket ("t.1"): then no number begins with it.
  bool endsName() const {
    return place_ > 0 && (continuesName(text_[place_ - 1]) || text_[place_ - 1] == '`');
  }

  SqlTokenKind consumeQuoted(SqlToken& token, char quote) {
    bool const escapes = quote != '`';
    for (++place_; place_ < text_.size(); ++place_) {
      bool const escape = escapes && look() == '\\';
      if (escape || (look() == quote && look(1) == quote)) {
        ++place_;
      } else if (look() == quote) {
        ++place_;
        return quotedKind(quote);
      }
    }
    place_ = text_.size();
    token.closed = false;
    return quotedKind(quote);
  }

  static SqlTokenKind quotedKind(char quote) {
    if (quote == '\'') {
      return SqlTokenKind::kString;
    }
    return quote == '"' ? SqlTokenKind::kDoubleQuoted : SqlTokenKind::kBackquoted;
  }

  SqlTokenKind consumeWord() {
    while (place_ < text_.size() && continuesName(look())) {
      ++place_;
    }
    return SqlTokenKind::kWord;
  }

  SqlTokenKind consumeNumber() {
    while (continuesName(look()) || look() == '.') {
      bool const exponent =
          lower(look()) == 'e' && (look(1) == '+' || look(1) == '-') && isDigit(look(2));
      place_ += exponent ? 3 : 1;
    }
    return SqlTokenKind::kNumber;
  }

  SqlTokenKind consumeCharacter(SqlToken& token, char c) {
    ++place_;
    if (c == '(') {
      ++depth_;
    } else if (c == ')' && depth_ > 0) {
      token.depth = --depth_;
    }
    return c == '?' ? SqlTokenKind::kMark : SqlTokenKind::kPunctuation;
  }

  std::string_view text_;
  std::size_t place_ = 0;
  int depth_ = 0;
  bool hasServerComment_ = false;
};

}  // namespace

SqlTokens::SqlTokens(std::string_view text) : text_(text) {
  Lexer lexer(text);
  tokens_ = lexer.run();
  hasServerComment_ = lexer.hasServerComment();
}

std::string_view SqlTokens::textAt(int index) const {
  return has(index) ? text_.substr(at(index).begin, at(index).end - at(index).begin)
                    : std::string_view();
}

bool SqlTokens::isWord(int index, std::string_view lowerCaseWord) const {
  return isKind(index, SqlTokenKind::kWord) && equalIgnoringCase(textAt(index), lowerCaseWord);
}

bool SqlTokens::isPunctuation(int index, char character) const {
  return isKind(index, SqlTokenKind::kPunctuation) && text_[at(index).begin] == character;
}

bool SqlTokens::isName(int index) const {
  return isKind(index, SqlTokenKind::kWord) || isKind(index, SqlTokenKind::kBackquoted) ||
         isKind(index, SqlTokenKind::kDoubleQuoted);
}

std::string SqlTokens::nameAt(int index) const {
  std::string_view const whole = textAt(index);
  if (!has(index) || at(index).kind == SqlTokenKind::kWord || whole.size() < 2) {
    return std::string(whole);
  }
  char const quote = whole.front();
  std::string name;
  std::string_view const inner = whole.substr(1, whole.size() - (at(index).closed ? 2 : 1));
  for (std::size_t i = 0; i < inner.size(); ++i) {
    name += inner[i];
    i += inner[i] == quote ? 1 : 0;
  }
  return name;
}

int SqlTokens::behindBracket(int open, int end) const {
  int const depth = at(open).depth;
  for (int i = open + 1; i < end; ++i) {
    if (isPunctuation(i, ')') && at(i).depth == depth) {
      return i + 1;
    }
  }
  return end;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

}  // namespace mox::core
