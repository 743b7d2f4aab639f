#pragma once

#include <algorithm>
#include <string_view>

namespace mox::core {

/// Characters of names. Beyond ASCII every character counts as a letter, as the parser has it.
inline bool startsXmlName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
         static_cast<unsigned char>(c) >= 0x80;
}

inline bool continuesXmlName(char c) {
  return startsXmlName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
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
