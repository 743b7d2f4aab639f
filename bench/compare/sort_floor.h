#pragma once

#include "compare/floor_table.h"

namespace bench {

/// The table in a new order, by number and then amount, nulls before all amounts; rows with equal
/// keys keep their order. Written for this shape alone: keys packed once, sorted by radix with the
/// row numbers, columns gathered one by one. Numbers are 0 to 2^17 - 1, rows fewer than 2^24.
FloorTable sortByNumbers(FloorTable const& table);

/// Likewise by code, which has ten bytes in every row.
FloorTable sortByCode(FloorTable const& table);

}  // namespace bench
