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
  TextRef(char const* bytes, std::uint32_t length) : length_(length) {
    if (length <= kInlineBytes) {
      if (length != 0) {
        std::memcpy(content_, bytes, length);
      }
      return;
    }
    std::memcpy(content_, bytes, kPrefixBytes);
    std::memcpy(content_ + kPrefixBytes, &bytes, sizeof bytes);
  }

  std::uint32_t size() const { return length_; }
  bool isInline() const { return length_ <= kInlineBytes; }

  char const* data() const {
    if (isInline()) {
      return content_;
    }
    char const* bytes = nullptr;
    std::memcpy(&bytes, content_ + kPrefixBytes, sizeof bytes);
    return bytes;
  }

  /// Valid as long as this very reference, and the arena.
  std::string_view view() const { return {data(), length_}; }

  /// The first bytes as a number that orders like the bytes do, filled up with zeros: big end
  /// first.
  std::uint32_t prefix() const {
    std::uint32_t word = 0;
    std::memcpy(&word, content_, sizeof word);
    return toBigEnd(word);
  }

  /// Eight bytes from `wordIndex` times eight on, likewise: with zeros past the end.
  std::uint64_t word(unsigned int wordIndex) const {
    std::uint64_t bytes = 0;
    std::size_t const start = std::size_t{wordIndex} * sizeof bytes;
    if (isInline() && wordIndex == 0) {
      std::memcpy(&bytes, content_, sizeof bytes);
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
    std::uint64_t leftHead = 0;
    std::uint64_t rightHead = 0;
    std::memcpy(&leftHead, &left, sizeof leftHead);
    std::memcpy(&rightHead, &right, sizeof rightHead);
    return leftHead == rightHead && equalBehindHead(left, right);
  }

 private:
  static constexpr std::size_t kPrefixBytes = 4;

  static std::uint32_t toBigEnd(std::uint32_t word) {
    if constexpr (std::endian::native == std::endian::little) {
      return __builtin_bswap32(word);
    }
    return word;
  }

  static int compareWhole(TextRef const& left, TextRef const& right) {
    int const order = std::memcmp(left.data(), right.data(), std::min(left.length_, right.length_));
    if (order != 0) {
      return order;
    }
    return left.length_ < right.length_ ? -1 : static_cast<int>(left.length_ > right.length_);
  }

  /// Length and prefix are known to be equal.
  static bool equalBehindHead(TextRef const& left, TextRef const& right) {
    if (left.isInline()) {
      return std::memcmp(left.content_, right.content_, kInlineBytes) == 0;
    }
    return std::memcmp(left.data(), right.data(), left.length_) == 0;
  }

  std::uint32_t length_ = 0;
  char content_[kInlineBytes] = {};  // unused bytes are zero
};

static_assert(sizeof(TextRef) == 16);
