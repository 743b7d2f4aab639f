#pragma once

#include <cstddef>
#include <cstdint>

#include "compare/growing_array.h"

namespace bench {

/// A column of doubles by hand: an array, and a bit a row, set for a null. Under a null stands 0.
struct FloorNumbers {
  explicit FloorNumbers(std::size_t capacity) : cells(capacity), nulls(capacity / 64 + 1) {}

  bool isNull(std::size_t row) const { return (nulls[row / 64] >> (row % 64) & 1U) != 0; }

  GrowingArray<double> cells;
  GrowingArray<std::uint64_t> nulls;
};

/// Three columns of amounts with two decimal places, of every twenty cells one null; b and c are
/// not negative.
struct NumberTable {
  explicit NumberTable(std::size_t rowCount);

  std::size_t rows;
  FloorNumbers a;
  FloorNumbers b;
  FloorNumbers c;
};

// Each fills a new column. A null counts as 0, and a divisor of 0 would end the work, which is
// looked out for.

/// a + b * c - (a / (b + 1))
FloorNumbers computeSums(NumberTable const& table);

/// a ^ 2 + b ^ 0.5
FloorNumbers computePowers(NumberTable const& table);

}  // namespace bench
