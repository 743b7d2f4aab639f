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

/// A row for each group, in no certain order.
struct GroupedTable {
  explicit GroupedTable(std::size_t capacity)
      : number(capacity),
        second(capacity),
        text(capacity),
        sum(capacity),
        low(capacity),
        rows(capacity),
        isNull(capacity) {}

  GrowingArray<std::int32_t> number;
  GrowingArray<std::int32_t> second;
  GrowingArray<FloorText> text;
  GrowingArray<double> sum;  // of the amounts
  GrowingArray<double> low;  // the lowest amount
  GrowingArray<std::uint32_t> rows;
  FloorNulls isNull;  // both, where no row has an amount
};

GroupedTable groupByHand(GroupTable const& table);

}  // namespace bench
