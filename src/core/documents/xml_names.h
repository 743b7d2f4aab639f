#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace mox::core {

/// Characters of names. Beyond ASCII every character counts as a letter, as the parser has it.
constexpr bool startsXmlName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// By character: whether it may stand in a name behind the first one. Names are most of what a
/// document holds.
inline constexpr std::array<bool, 256> kContinuesXmlName = [] {
  std::array<bool, 256> continues = {};
  for (int byte = 0; byte < 256; ++byte) {
    char const c = static_cast<char>(byte);
    continues[static_cast<std::size_t>(byte)] =
        startsXmlName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  }
  return continues;
}();

inline bool continuesXmlName(char c) {
  return kContinuesXmlName[static_cast<unsigned char>(c)];
}

inline bool isXmlName(std::string_view text) {
  return !text.empty() && startsXmlName(text.front()) &&
         std::all_of(text.begin(), text.end(), continuesXmlName);
}

inline bool isXmlSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

inline bool isXmlSpace(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return isXmlSpace(c); });
}

}  // namespace mox::core
