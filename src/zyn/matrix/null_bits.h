#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// One bit a row, set where the row is null. Reading past the end is the caller's fault; columns
/// check.
///
/// It also knows whether some null may cover a value other than the default: where none does, a
/// loop that takes nulls for 0 reads the cells as they are.
class NullBits {
 public:
  static constexpr std::size_t kBitsPerWord = 64;

  void reserve(std::size_t rows) { words_.reserve(wordsFor(rows)); }

  void clear() {
    words_.clear();
    size_ = 0;
    mayCoverValues_ = false;
  }

  /// Adds a row; under a null the default stands.
  void push(bool null) {
    std::size_t const bit = size_ % kBitsPerWord;
    if (bit == 0) {
      words_.push_back(0);
    }
    words_.back() |= std::uint64_t{null} << bit;
    ++size_;
  }

  /// Adds rows that are not null.
  void pushValid(std::size_t rows) {
    size_ += rows;
    words_.resize(wordsFor(size_), 0);
  }

  /// Adds rows that are null, each over the default.
  void pushNulls(std::size_t rows) {
    while (rows != 0 && size_ % kBitsPerWord != 0) {
      push(true);
      --rows;
    }
    words_.resize(words_.size() + rows / kBitsPerWord, ~std::uint64_t{0});
    size_ += rows / kBitsPerWord * kBitsPerWord;
    for (rows %= kBitsPerWord; rows != 0; --rows) {
      push(true);
    }
  }

  /// Adds the first `rows` rows of `other`, a whole word at a time.
  void append(NullBits const& other, std::size_t rows) {
    std::size_t const shift = size_ % kBitsPerWord;
    std::size_t const last = size_ / kBitsPerWord;
    words_.resize(wordsFor(size_ + rows), 0);
    for (std::size_t word = 0; word * kBitsPerWord < rows; ++word) {
      std::uint64_t const bits = other.words_[word] & maskBelow(rows - word * kBitsPerWord);
      words_[last + word] |= bits << shift;
      if (shift != 0 && last + word + 1 < words_.size()) {
        words_[last + word + 1] |= bits >> (kBitsPerWord - shift);
      }
    }
    size_ += rows;
    mayCoverValues_ |= other.mayCoverValues_;
  }

  /// Replaces all rows; `isNull(row)` tells each, and is asked in ascending order. Under a null the
  /// default stands.
  template <class IsNull>
  void assign(std::size_t rows, IsNull isNull) {
    words_.assign(wordsFor(rows), 0);
    for (std::size_t row = 0; row < rows; ++row) {
      words_[row / kBitsPerWord] |= std::uint64_t{isNull(row)} << (row % kBitsPerWord);
    }
    size_ = rows;
    mayCoverValues_ = false;
  }

  bool test(std::size_t row) const {
    return (words_[row / kBitsPerWord] >> (row % kBitsPerWord)) & 1U;
  }

  /// A row becomes null, whatever stands there.
  void set(std::size_t row) {
    setBlank(row);
    mayCoverValues_ = true;
  }

  /// A row in which the default stands becomes null.
  void setBlank(std::size_t row) { words_[row / kBitsPerWord] |= maskOf(row); }

  /// The same for eight rows from `row`, a multiple of 8, where the mask has a 1, the lowest bit
  /// telling of the first row. The other flags stay.
  void setEight(std::size_t row, std::uint8_t mask) {
    words_[row / kBitsPerWord] |= std::uint64_t{mask} << (row % kBitsPerWord);
  }

  void reset(std::size_t row) { words_[row / kBitsPerWord] &= ~maskOf(row); }

  /// To be told by whoever copies cells along with flags that are set one by one.
  void coverAs(NullBits const& source) { mayCoverValues_ |= source.mayCoverValues_; }
  bool mayCoverValues() const { return mayCoverValues_; }

  std::size_t size() const { return size_; }

  /// The words, lowest row in the lowest bit; bits past size() are 0.
  std::uint64_t const* words() const { return words_.data(); }

  /// Whether some row is null: lets a loop over a column without nulls go without asking each row.
  bool any() const {
    for (std::uint64_t const word : words_) {
      if (word != 0) {
        return true;
      }
    }
    return false;
  }

 private:
  static std::size_t wordsFor(std::size_t rows) { return (rows + kBitsPerWord - 1) / kBitsPerWord; }
  static std::uint64_t maskBelow(std::size_t bits) {
    return bits >= kBitsPerWord ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
  }
  static std::uint64_t maskOf(std::size_t row) { return std::uint64_t{1} << (row % kBitsPerWord); }

  std::vector<std::uint64_t> words_;
  std::size_t size_ = 0;
  bool mayCoverValues_ = false;
};
