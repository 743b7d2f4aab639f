#pragma once

#include <cstddef>
#include <cstdint>

#include "compare/expression_floor.h"
#include "compare/floor_table.h"
#include "compare/growing_array.h"

namespace bench {

enum class GroupKey { kNumber, kText, kTwoNumbers };

/// A table to be grouped: keys, spread evenly over as many groups, and amounts, of which every
/// twentieth is null. Only the columns of its kind of key have values.
struct GroupTable {
  GroupTable(GroupKey key, std::size_t rowCount, std::size_t groupCount);

  GroupKey key;
  std::size_t rows;
  GrowingArray<std::int32_t> number;  // anywhere among the whole numbers
  GrowingArray<std::int32_t> second;  // of two numbers
  GrowingArray<FloorText> text;       // four letters and six digits
  FloorNumbers amount;
};

/// What a group has come to. Its key is that of its first row.
struct GroupOfRows {
  std::uint32_t firstRow;
  std::uint32_t rows;
  double sum;  // of the amounts
  double low;  // the lowest amount; of no meaning without one
  std::uint32_t amounts;
};

/// The groups, in no certain order.
GrowingArray<GroupOfRows> groupByHand(GroupTable const& table);

}  // namespace bench
