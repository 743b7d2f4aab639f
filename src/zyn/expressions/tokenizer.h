#pragma once

#include <cstddef>
#include <string_view>

namespace moxExParser {

struct Token {
  bool isNumber = false;
  std::string_view text;  // a part of the tokenizer's text; empty only past the last token
};

/// Walks over the tokens of a text, which must outlive it. Tokens are handed out one by one: a list
/// of them would take many times the text's memory.
class Tokenizer {
 public:
  explicit Tokenizer(std::string_view text) : text_(text) {}

  /// The next token; an empty text past the last one.
  Token next();

  /// Whether the next token is that separator; it stays the next one.
  bool isNext(char separator);

  static bool isSeparator(char character);

 private:
  void skipSpace();
  std::size_t endOfNumber() const;
  std::size_t endOfName() const;

  std::string_view text_;
  std::size_t place_ = 0;
};

}  // namespace moxExParser
