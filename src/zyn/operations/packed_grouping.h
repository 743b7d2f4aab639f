#pragma once

#include <cstdint>
#include <vector>

#include "zyn/matrix/column_copy.h"

/// Takes the groups of rows, a block at a time.
class GroupTaker {
 public:
  virtual ~GroupTaker() = default;

  /// The groups of `count` rows from row `from`, in the order of the rows. There are `groupCount`
  /// groups so far.
  virtual void take(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups,
                    std::uint32_t groupCount) = 0;

  /// Forgets what it took: all rows come again.
  virtual void restart() = 0;
};

/// Groups the rows by keys that can be packed into words of 64 bits, and hands the groups on block
/// by block. False, and nothing taken, for keys that cannot; `firstRow` of each group otherwise.
bool groupPackedRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows, GroupTaker& taker,
                     std::vector<std::uint32_t>& firstRow);
