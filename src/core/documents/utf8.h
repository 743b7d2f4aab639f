#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mox::core {

/// Offset of the first byte that does not belong to a well-formed UTF-8 character (RFC 3629: no
/// overlong form, no surrogate, nothing beyond U+10FFFF); npos when there is none.
std::size_t findInvalidUtf8(std::string_view text);

/// Length of the character at the start of a text that is not empty, 0 when it is not well-formed.
std::size_t utf8Length(std::string_view text);

/// Appends the character in UTF-8. A surrogate is written like any other number, so that
/// findInvalidUtf8 will find it.
void appendUtf8(std::string& text, char32_t character);

}  // namespace mox::core
