#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "compare/growing_array.h"

namespace bench {

/// A text as the floors hold it: up to twelve bytes in place, a longer one as four bytes and a
/// pointer to the whole.
struct FloorText {
  static constexpr std::size_t kInPlace = 12;

  std::uint32_t length = 0;
  char content[kInPlace] = {};

  std::string_view view() const {
    if (length <= kInPlace) {
      return {content, length};
    }
    char const* bytes = nullptr;
    std::memcpy(&bytes, content + 4, sizeof bytes);
    return {bytes, length};
  }
};

/// One bit a row, set for a null.
class FloorNulls {
 public:
  explicit FloorNulls(std::size_t capacity) : words_(capacity / 64 + 1) {}

  /// The memory is zero when it comes.
  void push(bool null) {
    words_[size_ / 64] |= std::uint64_t{null} << (size_ % 64);
    ++size_;
  }
  bool test(std::size_t row) const { return (words_[row / 64] >> (row % 64) & 1U) != 0; }
  void setWord(std::size_t index, std::uint64_t word) { words_[index] = word; }
  void setSize(std::size_t rows) { size_ = rows; }

  /// Bits past the last row are 0.
  std::uint64_t const* words() const { return words_.data(); }

 private:
  GrowingArray<std::uint64_t> words_;
  std::size_t size_ = 0;
};

/// The six columns by hand: plain arrays, null bits where the shape has nulls.
struct FloorTable {
  explicit FloorTable(std::size_t capacity)
      : number(capacity),
        rating(capacity),
        amount(capacity),
        day(capacity),
        code(capacity),
        description(capacity),
        ratingNulls(capacity),
        amountNulls(capacity),
        bytes(std::make_shared<GrowingArray<char>>(capacity * kLongestText)) {}

  static constexpr std::size_t kLongestText = 64;

  /// Appends to one of the text columns. The reference is made where it stays: one that is made
  /// elsewhere and copied would have the processor wait for its pieces. `length` is at least 8.
  void pushText(GrowingArray<FloorText>& column, char const* text, std::size_t length) {
    FloorText& kept = column[column.size()];
    column.setSize(column.size() + 1);
    kept.length = static_cast<std::uint32_t>(length);
    if (length <= FloorText::kInPlace) {
      std::memcpy(kept.content, text, 8);
      std::memcpy(kept.content + length - 4, text + length - 4, 4);
      return;
    }
    char* const place = bytes->data() + bytes->size();
    std::memcpy(place, text, length);
    bytes->setSize(bytes->size() + length);
    std::memcpy(kept.content, place, 4);
    std::memcpy(kept.content + 4, &place, sizeof place);
  }

  std::size_t rows() const { return number.size(); }

  GrowingArray<std::int32_t> number;
  GrowingArray<std::int32_t> rating;  // a tenth null
  GrowingArray<double> amount;        // a twentieth null
  GrowingArray<std::int64_t> day;     // seconds since 1970
  GrowingArray<FloorText> code;
  GrowingArray<FloorText> description;
  FloorNulls ratingNulls;
  FloorNulls amountNulls;
  std::shared_ptr<GrowingArray<char>> bytes;  // of long texts; a sorted table shares its source's
};

}  // namespace bench
