#include "core/database/written_value.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace mox::core {
namespace {

// More than "-2.2250738585072014e-308".
constexpr std::size_t kNumeralLength = 40;

}  // namespace

void appendNumeral(std::string& sql, double value) {
  std::array<char, kNumeralLength> digits;
  auto const written = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                     std::chars_format::scientific);
  sql.append(digits.data(), written.ptr);
}

void appendHexadecimal(std::string& sql, std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  sql += "_utf8mb4 x'";
  for (char const character : text) {
    auto const byte = static_cast<unsigned char>(character);
    sql += kDigits[byte >> 4U];
    sql += kDigits[byte & 0xFU];
  }
  sql += '\'';
}

}  // namespace mox::core
