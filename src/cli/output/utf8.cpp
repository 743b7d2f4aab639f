#include "cli/output/utf8.h"

namespace mox::cli {

namespace {

/// What the first byte of a character says of the rest.
struct Lead {
  std::size_t length;  // 0 for a byte that starts no character
  unsigned char secondMin;
  unsigned char secondMax;
  unsigned char bits;  // of the code point, in the first byte
};

/// The bounds of the second byte keep overlong forms, surrogates and too large numbers out.
Lead leadOf(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) {
    return {2, 0x80, 0xBF, static_cast<unsigned char>(first & 0x1F)};
  }
  if (first >= 0xE0 && first <= 0xEF) {
    return {3, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF),
            static_cast<unsigned char>(first & 0x0F)};
  }
  if (first >= 0xF0 && first <= 0xF4) {
    return {4, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF),
            static_cast<unsigned char>(first & 0x07)};
  }
  return {0, 0, 0, 0};
}

constexpr char32_t kReplacementCharacter = 0xFFFD;

}  // namespace

Utf8Character decodeUtf8(std::string_view bytes, std::size_t at) {
  auto const byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (byteAt(at) < 0x80) {
    return {byteAt(at), 1, true};
  }
  Lead const lead = leadOf(byteAt(at));
  if (lead.length == 0) {
    return {kReplacementCharacter, 1, false};
  }
  char32_t codePoint = lead.bits;
  for (std::size_t i = 1; i < lead.length; ++i) {
    unsigned char const min = i == 1 ? lead.secondMin : 0x80;
    unsigned char const max = i == 1 ? lead.secondMax : 0xBF;
    if (at + i >= bytes.size() || byteAt(at + i) < min || byteAt(at + i) > max) {
      return {kReplacementCharacter, i, false};
    }
    codePoint = codePoint << 6 | (byteAt(at + i) & 0x3FU);
  }
  return {codePoint, lead.length, true};
}

void appendUtf8(std::string& text, char32_t codePoint) {
  auto const tail = [&](int shift) {
    return static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
  };
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    text += {static_cast<char>(0xC0 | codePoint >> 6), tail(0)};
  } else if (codePoint < 0x10000) {
    text += {static_cast<char>(0xE0 | codePoint >> 12), tail(6), tail(0)};
  } else {
    text += {static_cast<char>(0xF0 | codePoint >> 18), tail(12), tail(6), tail(0)};
  }
}

}  // namespace mox::cli
