#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mox::cli {

/// One character of a text, or a run of bytes that is none.
struct Utf8Character {
  char32_t codePoint;  // U+FFFD when not valid
  std::size_t length;  // bytes taken, at least 1
  bool valid;
};

/// What replaces bytes that are no UTF-8, and characters that must not be shown.
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// The character at a byte position. Precondition: `at` < bytes.size(). Overlong forms, surrogates
/// and numbers past U+10FFFF are not valid.
Utf8Character decodeUtf8(std::string_view bytes, std::size_t at);

/// Appends a character. Precondition: a code point that UTF-8 can write.
void appendUtf8(std::string& text, char32_t codePoint);

}  // namespace mox::cli
