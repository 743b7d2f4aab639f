#include "zyn/expressions/tokenizer.h"

namespace moxExParser {

namespace {

constexpr std::string_view kSeparators = "()+-*/%,^";
constexpr std::string_view kSpaces = " \t\n\v\f\r";  // those of the "C" locale
constexpr std::string_view kNumberCharacters = "0123456789.";

bool contains(std::string_view characters, char character) {
  return characters.find(character) != std::string_view::npos;
}

}  // namespace

bool Tokenizer::isSeparator(char character) {
  return contains(kSeparators, character);
}

void Tokenizer::skipSpace() {
  while (place_ < text_.size() && contains(kSpaces, text_[place_])) {
    ++place_;
  }
}

std::size_t Tokenizer::endOfNumber() const {
  std::size_t end = place_;
  while (end < text_.size() && contains(kNumberCharacters, text_[end])) {
    ++end;
  }
  return end;
}

std::size_t Tokenizer::endOfName() const {
  std::size_t end = place_;
  while (end < text_.size() && !contains(kSpaces, text_[end]) && !isSeparator(text_[end])) {
    ++end;
  }
  return end;
}

Token Tokenizer::next() {
  skipSpace();
  if (place_ == text_.size()) {
    return {};
  }
  std::size_t const start = place_;
  bool const isNumber = contains(kNumberCharacters, text_[start]);
  if (isSeparator(text_[start])) {
    place_ = start + 1;
  } else {
    place_ = isNumber ? endOfNumber() : endOfName();
  }
  return {isNumber, text_.substr(start, place_ - start)};
}

bool Tokenizer::isNext(char separator) {
  skipSpace();
  return place_ < text_.size() && text_[place_] == separator;
}

}  // namespace moxExParser
