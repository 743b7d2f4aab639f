#include "core/database/sqlite_like.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace mox::core {
namespace {

constexpr char32_t kFirstFolded = 0xC0;
constexpr char32_t kInvalidByte =
    0x110000;  // added to a byte that is no UTF-8: beyond every character

// The weights of U+00C0 to U+017F in the collation utf8mb4_general_ci, read from a server with
// weight_string().
constexpr std::array<std::uint16_t, 0x180 - kFirstFolded> kFolded = {
    'A',  'A',   'A',   'A',   'A',   'A',   0xC6,  'C',   'E',   'E',  'E',   'E',   'I',   'I',
    'I',  'I',   0xD0,  'N',   'O',   'O',   'O',   'O',   'O',   0xD7, 0xD8,  'U',   'U',   'U',
    'U',  'Y',   0xDE,  'S',   'A',   'A',   'A',   'A',   'A',   'A',  0xC6,  'C',   'E',   'E',
    'E',  'E',   'I',   'I',   'I',   'I',   0xD0,  'N',   'O',   'O',  'O',   'O',   'O',   0xF7,
    0xD8, 'U',   'U',   'U',   'U',   'Y',   0xDE,  'Y',   'A',   'A',  'A',   'A',   'A',   'A',
    'C',  'C',   'C',   'C',   'C',   'C',   'C',   'C',   'D',   'D',  0x110, 0x110, 'E',   'E',
    'E',  'E',   'E',   'E',   'E',   'E',   'E',   'E',   'G',   'G',  'G',   'G',   'G',   'G',
    'G',  'G',   'H',   'H',   0x126, 0x126, 'I',   'I',   'I',   'I',  'I',   'I',   'I',   'I',
    'I',  'I',   0x132, 0x132, 'J',   'J',   'K',   'K',   0x138, 'L',  'L',   'L',   'L',   'L',
    'L',  0x13F, 0x13F, 0x141, 0x141, 'N',   'N',   'N',   'N',   'N',  'N',   0x149, 0x14A, 0x14A,
    'O',  'O',   'O',   'O',   'O',   'O',   0x152, 0x152, 'R',   'R',  'R',   'R',   'R',   'R',
    'S',  'S',   'S',   'S',   'S',   'S',   'S',   'S',   'T',   'T',  'T',   'T',   0x166, 0x166,
    'U',  'U',   'U',   'U',   'U',   'U',   'U',   'U',   'U',   'U',  'U',   'U',   'W',   'W',
    'Y',  'Y',   'Y',   'Z',   'Z',   'Z',   'Z',   'Z',   'Z',   'S',
};

char32_t folded(char32_t c) {
  if (c < 0x80) {
    return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c;
  }
  return c >= kFirstFolded && c < 0x180 ? kFolded[c - kFirstFolded] : c;
}

// Walks a text character by character. Trivial to copy: a remembered place is a copy.
class Reader {
 public:
  explicit Reader(std::string_view text) : place_(text.data()), end_(text.data() + text.size()) {}

  bool atEnd() const { return place_ == end_; }

  char32_t next() {
    unsigned char const first = byte(0);
    if (first < 0x80) {
      ++place_;
      return first;
    }
    return nextLong(first);
  }

 private:
  unsigned char byte(std::ptrdiff_t ahead) const {
    return static_cast<unsigned char>(place_[ahead]);
  }

  char32_t nextLong(unsigned char first) {
    int const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
    if (length == 1 || end_ - place_ < length) {
      ++place_;
      return kInvalidByte + first;
    }
    char32_t value = first & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
      if ((byte(i) & 0xC0) != 0x80) {
        ++place_;
        return kInvalidByte + first;
      }
      value = (value << 6) | (byte(i) & 0x3Fu);
    }
    place_ += length;
    return value;
  }

  char const* place_;
  char const* end_;
};

enum class Step { kMatched, kMismatch, kAnyRun };

// One piece of the pattern against the text, which is not at its end.
Step matchOne(Reader& pattern, Reader& text, char32_t escape) {
  char32_t wanted = pattern.next();
  if (wanted == escape && !pattern.atEnd()) {
    wanted = pattern.next();
  } else if (wanted == U'%') {
    return Step::kAnyRun;
  } else if (wanted == U'_') {
    text.next();
    return Step::kMatched;
  }
  return folded(wanted) == folded(text.next()) ? Step::kMatched : Step::kMismatch;
}

bool isOnlyAnyRuns(Reader pattern) {
  while (!pattern.atEnd()) {
    if (pattern.next() != U'%') {
      return false;
    }
  }
  return true;
}

}  // namespace

// Only the last "%" is ever tried anew: an earlier one has nothing to gain from a longer run.
bool isLike(std::string_view textBytes, std::string_view patternBytes, char32_t escape) {
  Reader text(textBytes);
  Reader pattern(patternBytes);
  Reader retryText = text;
  Reader retryPattern = pattern;
  bool canRetry = false;
  while (!text.atEnd()) {
    Step const step = pattern.atEnd() ? Step::kMismatch : matchOne(pattern, text, escape);
    if (step == Step::kAnyRun) {
      canRetry = true;
      retryPattern = pattern;
      retryText = text;
    } else if (step == Step::kMismatch) {
      if (!canRetry) {
        return false;
      }
      retryText.next();
      text = retryText;
      pattern = retryPattern;
    }
  }
  return isOnlyAnyRuns(pattern);
}

}  // namespace mox::core
