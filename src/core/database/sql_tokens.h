#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mox::core {

/// What a token is. Blanks and comments (`-- `, `#`, `/* */`) are no tokens.
enum class SqlTokenKind {
  kWord,  // keyword or plain name
  kNumber,
  kString,        // '...'
  kDoubleQuoted,  // "..."
  kBackquoted,    // `...`
  kMark,          // ?
  kPunctuation    // one character
};

/// A piece of a statement text, by its place in the text.
struct SqlToken {
  SqlTokenKind kind = SqlTokenKind::kPunctuation;
  std::size_t begin = 0;
  std::size_t end = 0;
  int depth = 0;       // round brackets open around it; a bracket itself counts as outside
  bool closed = true;  // false for a quoted token that the text's end cuts off
};

/// A statement text taken apart as MariaDB reads it: quotes are doubled or escaped by a backslash
/// inside '...' and "...", only doubled inside `...`; "--" opens a comment only before a blank.
/// Never throws on any text: what is left open ends with the text. The text must outlive the
/// object.
class SqlTokens {
 public:
  explicit SqlTokens(std::string_view text);

  std::string_view text() const { return text_; }
  int count() const { return static_cast<int>(tokens_.size()); }
  SqlToken const& at(int index) const { return tokens_[static_cast<std::size_t>(index)]; }

  /// Whether the text ends inside a quote.
  bool isCutOff() const { return !tokens_.empty() && !tokens_.back().closed; }

  /// Whether a comment begins with "/*!" or "/*M!": a server runs what it holds, or skips it,
  /// according to its version. Here it counts as a comment.
  bool hasServerComment() const { return hasServerComment_; }

  /// The token's characters; empty for an index outside.
  std::string_view textAt(int index) const;

  /// Whether the token at an index is this word, given in lower case, or this character. False
  /// outside.
  bool isWord(int index, std::string_view lowerCaseWord) const;
  bool isPunctuation(int index, char character) const;
  bool isKind(int index, SqlTokenKind kind) const { return has(index) && at(index).kind == kind; }

  /// Whether the token can stand for a name: a word or a quoted one, "..." included.
  bool isName(int index) const;

  /// The token as a name or text, without its quotes and doublings; backslashes stay.
  std::string nameAt(int index) const;

  /// The index behind the bracket that closes the one at `open`, at most `end`.
  int behindBracket(int open, int end) const;

 private:
  bool has(int index) const { return index >= 0 && index < count(); }

  std::string_view text_;
  std::vector<SqlToken> tokens_;
  bool hasServerComment_ = false;
};

/// ASCII letters only: the case of names beyond is the database's business.
bool equalIgnoringCase(std::string_view left, std::string_view right);
std::string lowerCase(std::string_view text);

}  // namespace mox::core
