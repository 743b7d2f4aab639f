#pragma once

#include <string>
#include <string_view>

namespace mox::core {

/// Appends the number so that every reader of decimal numerals gives it back exactly and takes it
/// for a floating one: "1.5e+00". It must be finite.
void appendNumeral(std::string& sql, double value);

/// Appends a MariaDB text made of the hexadecimal digits of its bytes, which no value can break out
/// of: "_utf8mb4 x'C3A9'". The text must be UTF-8.
void appendHexadecimal(std::string& sql, std::string_view text);

}  // namespace mox::core
