#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zyn/matrix/column_copy.h"
#include "zyn/matrix/null_bits.h"

/// The keys of rows as words of 64 bits: equal words mean equal keys, whatever the number of key
/// columns. It holds for whole numbers, dates and texts that stand in their references, where the
/// bits in which the rows differ at all fit into a word. Refers to the columns, which must outlive
/// it.
class PackedKeys {
 public:
  /// Rows that are packed together.
  static constexpr std::uint32_t kBlock = 512;

  /// Looks at some of the rows, to guess in which bits they differ.
  PackedKeys(std::vector<MatrixColumn> const& keys, std::uint32_t rows);

  /// Whether there are words, as far as the rows are known.
  bool isPossible() const { return isPossible_ && bits_ <= kWordBits; }

  /// How many bits of a word are used, from the lowest one.
  unsigned int bits() const { return bits_; }

  /// The words of at most kBlock rows from `from`. False when a row differs from the others in
  /// another bit than was guessed; the words are no good then.
  bool words(std::uint32_t from, std::uint32_t count, std::uint64_t* words) const;

  /// Looks at all rows, after which words() never is false while isPossible(). Words are others
  /// than before.
  void lookAtAll();

 private:
  static constexpr unsigned int kWordBits = 64;

  enum class Part { kInt, kDate, kTextHead, kTextTail, kIsNull };

  /// 64 bits of each row that a column brings, of which the varying ones enter the word.
  struct Lane {
    Part part;
    void const* cells;
    NullBits const* nulls;   // none when no row is null
    std::uint64_t base = 0;  // of some row
    std::uint64_t varying = 0;
    unsigned int shift = 0;  // where the word takes them
  };

  void addLanes(moxDataMatrixColumn const& key);
  void lookAt(std::uint32_t from, std::uint32_t count);
  void assignShifts();
  static bool mergeBits(Lane const& lane, std::uint64_t* raw, std::uint32_t count,
                        std::uint64_t* words);
  static bool fetch(Lane const& lane, std::uint32_t from, std::uint32_t count, std::uint64_t* raw);

  std::uint32_t rows_;
  std::vector<Lane> lanes_;
  unsigned int bits_ = 0;
  bool isPossible_ = true;
  bool isOneInt_ = false;  // whose bits all vary: the words are the numbers
};
