#include "zyn/datasources/condition_scan.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

using Clause = StatementShape::Clause;

constexpr std::size_t kLongestWord = 9;  // of those that are looked for

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool continuesName(char c) {
  return (lower(c) >= 'a' && lower(c) <= 'z') || isDigit(c) || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool isQuote(char c) {
  return c == '\'' || c == '"' || c == '`';
}

class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  StatementShape run() {
    while (place_ < text_.size()) {
      step();
    }
    shape_.balanced = shape_.balanced && depth_ == 0;
    return shape_;
  }

 private:
  char look(std::size_t ahead = 0) const {
    return place_ + ahead < text_.size() ? text_[place_ + ahead] : '\0';
  }

  bool startsWith(std::string_view start) const {
    return text_.substr(place_, start.size()) == start;
  }

  void goTo(std::size_t found, std::size_t length) {
    place_ = found == std::string_view::npos ? text_.size() : found + length;
  }

  bool isTopLevel() const { return depth_ <= 0 && cases_ == 0; }

  void step() {
    char const c = look();
    if (isDigit(c)) {
      skipNumber();
    } else if (continuesName(c)) {
      takeWord();
    } else if (isQuote(c)) {
      skipQuoted(c);
    } else if (startsWith("{{")) {
      skipToken();
    } else if (c == '#' || startsWith("--")) {
      takeLineComment();
    } else if (startsWith("/*")) {
      takeComment();
    } else {
      takeCharacter(c);
    }
  }

  void skipNumber() {
    while (isDigit(look()) || look() == '.') {
      ++place_;
    }
    numberEnd_ = place_;
  }

  // A word behind a table's point is a column's name; in "1.or" the point belongs to the number.
  bool standsBehindTable() const {
    return place_ > 0 && text_[place_ - 1] == '.' && place_ != numberEnd_;
  }

  void takeWord() {
    bool const isName = standsBehindTable();
    auto const begin = place_;
    while (continuesName(look())) {
      ++place_;
    }
    auto const word = text_.substr(begin, place_ - begin);
    if (isName || word.size() > kLongestWord) {
      return;
    }
    std::array<char, kLongestWord> buffer{};
    std::transform(word.begin(), word.end(), buffer.begin(), lower);
    meet({buffer.data(), word.size()});
  }

  void skipToken() { goTo(text_.find("}}", place_ + 2), 2); }

  void skipQuoted(char quote) {
    for (++place_; place_ < text_.size(); ++place_) {
      if (startsWith("{{")) {
        skipToken();
        --place_;
      } else if (look() == '\\' && quote != '`') {
        ++place_;
      } else if (look() == quote) {  // a doubled one opens the next quoted text at once
        ++place_;
        return;
      }
    }
    place_ = text_.size();
    shape_.openEnd = true;
  }

  // "--" without a blank behind it is a comment to some databases only: its words count, and yet
  // nothing may be appended to its line.
  void takeLineComment() {
    auto const end = text_.find('\n', place_);
    shape_.openEnd = shape_.openEnd || end == std::string_view::npos;
    bool const isComment = look() == '#' || static_cast<unsigned char>(look(2)) <= ' ';
    if (isComment) {
      goTo(end, 1);
    } else {
      place_ += 2;
    }
  }

  // What stands in "/*! */" and "/*M! */" is run by the server.
  void takeComment() {
    auto const end = text_.find("*/", place_ + 2);
    shape_.openEnd = shape_.openEnd || end == std::string_view::npos;
    if (look(2) == '!' || (look(2) == 'M' && look(3) == '!')) {
      place_ += 2;
    } else {
      goTo(end, 2);
    }
  }

  void takeCharacter(char c) {
    if (c == '(') {
      ++depth_;
    } else if (c == ')') {
      --depth_;
      shape_.balanced = shape_.balanced && depth_ >= 0;
    } else if (isTopLevel() && c == ';') {
      shape_.severalStatements = true;
      shape_.setOperation = false;
    } else if (isTopLevel() && c == '|' && look(1) == '|') {
      meetWeakOperator();
      ++place_;
    }
    ++place_;
  }

  void meet(std::string_view word) {
    if (word == "case") {
      ++cases_;
    } else if (word == "end") {
      cases_ = std::max(cases_ - 1, 0);
    } else if (isTopLevel()) {
      meetAtTop(word);
    }
  }

  void meetAtTop(std::string_view word) {
    if (word == "or" || word == "xor") {
      meetWeakOperator();
    } else if (word == "union" || word == "intersect" || word == "except") {
      shape_.setOperation = true;
      shape_.setOperationAtFirst = shape_.setOperationAtFirst || !shape_.severalStatements;
    } else if (word == "left" || word == "right" || word == "full") {
      shape_.outerJoin = shape_.outerJoin || look() != '(';  // with a bracket it is a function
    } else if (word == "where" || word == "having") {
      enter(Clause::kWhere);
    } else if (word == "on") {
      enter(Clause::kOn);
    } else if (word == "group" || word == "order" || word == "limit") {
      enter(Clause::kOther);
    }
  }

  void enter(Clause clause) {
    shape_.lastClause = clause;
    shape_.weakOperatorInLastClause = false;
  }

  void meetWeakOperator() {
    shape_.weakOperator = true;
    shape_.weakOperatorInLastClause = true;
    shape_.weakOperatorInCondition =
        shape_.weakOperatorInCondition || shape_.lastClause == Clause::kWhere;
  }

  std::string_view text_;
  std::size_t place_ = 0;
  std::size_t numberEnd_ = 0;  // behind the last number
  int depth_ = 0;              // below 0 behind a closing parenthesis that nothing opened
  int cases_ = 0;              // "case" without its "end" yet
  StatementShape shape_;
};

}  // namespace

StatementShape shapeOf(std::string_view text) {
  return Scanner(text).run();
}
