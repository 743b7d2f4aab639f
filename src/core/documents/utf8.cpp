#include "core/documents/utf8.h"

#include <cstdint>
#include <cstring>

namespace mox::core {

namespace {

/// What may follow a first byte: how many bytes in all, and the range of the second one.
struct Sequence {
  std::size_t length = 0;  // 0: no first byte
  unsigned char lowest = 0x80;
  unsigned char highest = 0xBF;
};

Sequence sequenceOf(unsigned char first) {
  if (first < 0x80) {
    return {1};
  }
  if (first >= 0xC2 && first <= 0xDF) {
    return {2};
  }
  if (first >= 0xE0 && first <= 0xEF) {
    return {3, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF)};
  }
  if (first >= 0xF0 && first <= 0xF4) {
    return {4, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
  }
  return {};
}

/// Documents are nearly all ASCII: eight bytes are passed at once.
std::size_t skipAscii(std::string_view text, std::size_t offset) {
  for (; offset + sizeof(std::uint64_t) <= text.size(); offset += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + offset, sizeof(word));
    if ((word & 0x8080808080808080U) != 0) {
      break;
    }
  }
  return offset;
}

}  // namespace

std::size_t utf8Length(std::string_view text) {
  Sequence const sequence = sequenceOf(static_cast<unsigned char>(text[0]));
  if (sequence.length < 2 || text.size() < sequence.length) {
    return sequence.length < 2 ? sequence.length : 0;
  }
  auto const second = static_cast<unsigned char>(text[1]);
  if (second < sequence.lowest || second > sequence.highest) {
    return 0;
  }
  for (std::size_t i = 2; i < sequence.length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      return 0;
    }
  }
  return sequence.length;
}

std::size_t findInvalidUtf8(std::string_view text) {
  std::size_t offset = skipAscii(text, 0);
  while (offset < text.size()) {
    std::size_t const length = utf8Length(text.substr(offset));
    if (length == 0) {
      return offset;
    }
    offset += length;
    if (length == 1) {
      offset = skipAscii(text, offset);
    }
  }
  return std::string_view::npos;
}

void appendUtf8(std::string& text, char32_t character) {
  auto const tail = [&](int shift) {
    text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    tail(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace mox::core
