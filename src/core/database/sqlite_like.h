#pragma once

#include <string_view>

namespace mox::core {

/// `text like pattern` as MariaDB's usual collation has it: "%" any characters, "_" one, `escape`
/// takes the next one as it is; letters of Latin script compare without their case and accents,
/// other characters by themselves. Both texts are UTF-8; a byte that is none counts as a character.
/// Time is at most the product of the lengths.
bool isLike(std::string_view text, std::string_view pattern, char32_t escape = U'\\');

}  // namespace mox::core
