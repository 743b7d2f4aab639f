#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/documents/xml_names.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace mox::core {

/// Loops over the bytes of an XML text, which are most of what the scanner does. Where the
/// processor can, sixteen bytes go in a step; the plain versions give the same.
namespace xml_bytes {

/// By character: whether an attribute's value may read otherwise than it stands where it holds one.
inline constexpr std::array<bool, 256> kReadsOtherwise = [] {
  std::array<bool, 256> reads = {};
  for (char const c : {'<', '&', '\t', '\n', '\r'}) {
    reads[static_cast<unsigned char>(c)] = true;
  }
  return reads;
}();

/// No text may hold it.
constexpr bool isForbidden(char c) {
  return static_cast<unsigned char>(c) < 0x20 && !isXmlSpace(c);
}

namespace plain {

/// The offset of the first byte from `at` on that cannot continue a name, or the end.
inline std::size_t endOfName(std::string_view text, std::size_t at) {
  while (at < text.size() && continuesXmlName(text[at])) {
    ++at;
  }
  return at;
}

/// The offset of the quote from `at` on, or the end; `isAsWritten` becomes false when something on
/// the way reads otherwise than it stands.
inline std::size_t endOfValue(std::string_view text, std::size_t at, char quote,
                              bool& isAsWritten) {
  for (; at < text.size() && text[at] != quote; ++at) {
    isAsWritten = isAsWritten && !kReadsOtherwise[static_cast<unsigned char>(text[at])];
  }
  return at;
}

/// The offset from `at` on of the first byte that is forbidden or not ASCII, or the end.
inline std::size_t endOfAscii(std::string_view text, std::size_t at) {
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80 &&
         !isForbidden(text[at])) {
    ++at;
  }
  return at;
}

}  // namespace plain

#if defined(__SSE2__)

constexpr std::size_t kStep = sizeof(__m128i);

inline __m128i load(char const* bytes) {
  return _mm_loadu_si128(reinterpret_cast<__m128i const*>(bytes));
}

inline __m128i areAny(__m128i bytes, char c) {
  return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
}

/// Bytes from `first` up to `first + count`, as unsigned ones.
inline __m128i areIn(__m128i bytes, char first, char count) {
  __m128i const above = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
  return _mm_cmpeq_epi8(_mm_min_epu8(above, _mm_set1_epi8(count)), above);
}

inline unsigned bitsOf(__m128i mask) {
  return static_cast<unsigned>(_mm_movemask_epi8(mask));
}

inline std::size_t firstOf(unsigned bits) {
  return static_cast<std::size_t>(__builtin_ctz(bits));
}

inline std::size_t endOfName(std::string_view text, std::size_t at) {
  for (; at + kStep <= text.size(); at += kStep) {
    __m128i const bytes = load(text.data() + at);
    __m128i const letters = areIn(_mm_or_si128(bytes, _mm_set1_epi8(0x20)), 'a', 'z' - 'a');
    __m128i const digits = areIn(bytes, '0', ':' - '0');
    __m128i const others = _mm_or_si128(areIn(bytes, '-', '.' - '-'), areAny(bytes, '_'));
    __m128i const names = _mm_or_si128(_mm_or_si128(letters, digits), _mm_or_si128(others, bytes));
    unsigned const bits = ~bitsOf(names) & 0xFFFFU;  // beyond ASCII the byte's own top bit counts
    if (bits != 0) {
      return at + firstOf(bits);
    }
  }
  return plain::endOfName(text, at);
}

inline std::size_t endOfValue(std::string_view text, std::size_t at, char quote,
                              bool& isAsWritten) {
  for (; at + kStep <= text.size(); at += kStep) {
    __m128i const bytes = load(text.data() + at);
    unsigned const quotes = bitsOf(areAny(bytes, quote));
    unsigned const others = bitsOf(_mm_or_si128(
        _mm_or_si128(areAny(bytes, '<'), areAny(bytes, '&')), areIn(bytes, '\t', '\r' - '\t')));
    unsigned const inside = quotes != 0 ? (quotes & -quotes) - 1 : 0xFFFFU;
    isAsWritten = isAsWritten && (others & inside) == 0;
    if (quotes != 0) {
      return at + firstOf(quotes);
    }
  }
  return plain::endOfValue(text, at, quote, isAsWritten);
}

inline std::size_t endOfAscii(std::string_view text, std::size_t at) {
  for (; at + kStep <= text.size(); at += kStep) {
    __m128i const bytes = load(text.data() + at);
    __m128i const lineEnds = _mm_or_si128(areIn(bytes, '\t', '\n' - '\t'), areAny(bytes, '\r'));
    // As signed ones, bytes beyond ASCII are below the blank as well.
    __m128i const low = _mm_cmplt_epi8(bytes, _mm_set1_epi8(' '));
    unsigned const bits = bitsOf(_mm_andnot_si128(lineEnds, low));
    if (bits != 0) {
      return at + firstOf(bits);
    }
  }
  return plain::endOfAscii(text, at);
}

#else

using plain::endOfAscii;
using plain::endOfName;
using plain::endOfValue;

#endif

/// Whether two texts of one length are equal, by the words at their two ends: of a length between
/// one word and two.
template <class Word>
bool isSameAtEnds(std::string_view one, std::string_view other) {
  auto const word = [](char const* bytes) {
    Word value = 0;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
  };
  std::size_t const tail = one.size() - sizeof(Word);
  return word(one.data()) == word(other.data()) &&
         word(one.data() + tail) == word(other.data() + tail);
}

/// Whether two texts are equal. For names, which are short: without a call for most.
inline bool isSame(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) {
    return false;
  }
  if (one.size() >= 8 && one.size() <= 16) {
    return isSameAtEnds<std::uint64_t>(one, other);
  }
  if (one.size() >= 4 && one.size() < 8) {
    return isSameAtEnds<std::uint32_t>(one, other);
  }
  return one == other;
}

}  // namespace xml_bytes

}  // namespace mox::core
