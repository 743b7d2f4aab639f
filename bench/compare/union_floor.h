#pragma once

#include <cstdint>

#include "compare/floor_table.h"

namespace bench {

/// Four of the columns of two tables, one below the other. Short texts only: they stand in the
/// cells.
struct UnitedTable {
  explicit UnitedTable(std::size_t rows)
      : number(rows), amount(rows), day(rows), code(rows), amountNulls(rows / 64 + 2) {}

  bool isAmountNull(std::size_t row) const {
    return (amountNulls[row / 64] >> (row % 64) & 1U) != 0;
  }

  GrowingArray<std::int32_t> number;
  GrowingArray<double> amount;
  GrowingArray<std::int64_t> day;
  GrowingArray<FloorText> code;
  GrowingArray<std::uint64_t> amountNulls;  // a bit a row
};

UnitedTable unite(FloorTable const& upper, FloorTable const& lower);

}  // namespace bench
