#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zyn/matrix/large_allocator.h"
#include "zyn/matrix/sort_column.h"

/// Row numbers in some order.
using RowOrder = std::vector<std::uint32_t, LargeAllocator<std::uint32_t>>;

/// The row numbers 0 to `rows` - 1 in the order of the columns, the first deciding first; rows that
/// are equal in all of them keep their order. Needs up to 20 bytes a row while it runs.
RowOrder sortedRows(std::vector<std::unique_ptr<SortColumn>> const& columns, std::uint32_t rows);
