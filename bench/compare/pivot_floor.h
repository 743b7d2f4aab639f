#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "compare/expression_floor.h"
#include "compare/growing_array.h"

namespace bench {

/// Rows to be turned into a cross table: a thousand keys, fifty headings, amounts with two decimal
/// places, of every twenty one null.
struct PivotTable {
  explicit PivotTable(std::size_t rowCount);

  std::size_t rows;
  GrowingArray<std::int32_t> key;
  GrowingArray<std::int32_t> heading;
  FloorNumbers amount;
};

/// Sums by key and heading, in the order of the numbers. A cell without an amount is null.
struct CrossTable {
  std::vector<std::int32_t> keys;
  std::vector<std::int32_t> headings;
  std::vector<FloorNumbers> columns;  // a cell a key, one column for each heading
};

CrossTable crossTableOf(PivotTable const& table);

}  // namespace bench
