#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

/// A text in 16 bytes: up to twelve bytes stand in the reference itself, a longer text keeps its
/// first four there and the whole in an arena. Most comparisons end in the first eight bytes
/// without touching the arena. A reference does not own the arena's bytes.
class TextRef {
 public:
  static constexpr std::size_t kInlineBytes = 12;

  TextRef() = default;

  /// `bytes` must outlive the reference when the text is longer than kInlineBytes.
  TextRef(char const* bytes, std::uint32_t length)
      : length_(length), first_(firstBytes(bytes, length)), rest_(restOf(bytes, length)) {}

  std::uint32_t size() const { return length_; }
  bool isInline() const { return length_ <= kInlineBytes; }

  char const* data() const { return isInline() ? content() : std::bit_cast<char const*>(rest_); }

  /// Valid as long as this very reference, and the arena.
  std::string_view view() const { return {data(), length_}; }

  /// The first bytes as a number that orders like the bytes do, filled up with zeros: big end
  /// first.
  std::uint32_t prefix() const {
    if constexpr (std::endian::native == std::endian::little) {
      return __builtin_bswap32(first_);
    }
    return first_;
  }

  /// Eight bytes from `wordIndex` times eight on, likewise: with zeros past the end.
  std::uint64_t word(unsigned int wordIndex) const {
    std::uint64_t bytes = 0;
    std::size_t const start = std::size_t{wordIndex} * sizeof bytes;
    if (isInline()) {  // by fixed sizes: unused bytes are zero
      if (wordIndex == 0) {
        std::memcpy(&bytes, content(), sizeof bytes);
      } else if (wordIndex == 1) {
        std::memcpy(&bytes, content() + sizeof bytes, kInlineBytes - sizeof bytes);
      }
    } else if (length_ >= start + sizeof bytes) {
      std::memcpy(&bytes, data() + start, sizeof bytes);
    } else if (length_ > start) {
      std::memcpy(&bytes, data() + start, length_ - start);
    }
    if constexpr (std::endian::native == std::endian::little) {
      return __builtin_bswap64(bytes);
    }
    return bytes;
  }

  /// By bytes, as std::string::compare: negative, 0 or positive.
  static int compare(TextRef const& left, TextRef const& right) {
    std::uint32_t const leftPrefix = left.prefix();
    std::uint32_t const rightPrefix = right.prefix();
    if (leftPrefix != rightPrefix) {
      return leftPrefix < rightPrefix ? -1 : 1;
    }
    return compareWhole(left, right);
  }

  friend bool operator==(TextRef const& left, TextRef const& right) {
    if (left.length_ != right.length_ || left.first_ != right.first_) {
      return false;
    }
    return left.rest_ == right.rest_ ||
           (!left.isInline() && std::memcmp(left.data(), right.data(), left.length_) == 0);
  }

 private:
  static constexpr std::size_t kPrefixBytes = 4;

  template <class Word>
  static Word load(char const* bytes, std::size_t count = sizeof(Word)) {
    Word word = 0;
    std::memcpy(&word, bytes, count);
    return word;
  }

  static std::uint32_t firstBytes(char const* bytes, std::uint32_t length) {
    if (length >= kPrefixBytes) {
      return load<std::uint32_t>(bytes);
    }
    char padded[kPrefixBytes] = {};
    for (std::uint32_t i = 0; i < length; ++i) {
      padded[i] = bytes[i];
    }
    return load<std::uint32_t>(padded);
  }

  /// What stands behind the first bytes: the other bytes of a short text, or where a long one is.
  /// Bytes are loaded by fixed sizes, from the text's end, as copying a few bytes by their number
  /// takes a call.
  static std::uint64_t restOf(char const* bytes, std::uint32_t length) {
    if (length > kInlineBytes) {
      return std::bit_cast<std::uint64_t>(bytes);
    }
    if (length <= kPrefixBytes) {
      return 0;
    }
    if constexpr (std::endian::native == std::endian::little) {
      return length >= 8 ? load<std::uint64_t>(bytes + length - 8) >> (8 * (kInlineBytes - length))
                         : load<std::uint32_t>(bytes + length - 4) >> (8 * (8 - length));
    }
    return load<std::uint64_t>(bytes + kPrefixBytes, length - kPrefixBytes);
  }

  /// The bytes of a short text, which fill the two fields one after the other.
  char const* content() const { return reinterpret_cast<char const*>(this) + sizeof length_; }

  static int compareWhole(TextRef const& left, TextRef const& right) {
    int const order = std::memcmp(left.data(), right.data(), std::min(left.length_, right.length_));
    if (order != 0) {
      return order;
    }
    return left.length_ < right.length_ ? -1 : static_cast<int>(left.length_ > right.length_);
  }

  // Numbers rather than an array of bytes: those stay in registers while a reference is made and
  // handed on, where bytes would be written to memory and read back at once. Unused bytes are zero.
  std::uint32_t length_ = 0;
  std::uint32_t first_ = 0;  // the first bytes, as they stand in memory
  std::uint64_t rest_ = 0;   // as restOf
};

static_assert(sizeof(TextRef) == 16 && sizeof(char const*) == sizeof(std::uint64_t));
