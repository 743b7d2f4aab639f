#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zyn/matrix/column_copy.h"

class moxCommonAggregationFunction;

/// What an aggregation function comes to in each place of an array, block by block of rows.
class DirectCells {
 public:
  virtual ~DirectCells() = default;

  /// Takes `count` rows from `first` on, in order; each has its place. `first` is a multiple of 64.
  virtual void take(std::uint32_t first, std::uint32_t count, std::uint32_t const* places) = 0;

  /// New columns of the places asked for, in this order, as the function's columns() are, that of
  /// the function's target first. Asked for once, at the end.
  virtual std::vector<MatrixColumn> columns(std::vector<std::uint32_t> const& places) = 0;
};

/// For one of the module's own functions, over a source column of the module's own that must
/// outlive it, and `width` places. Empty for other functions, those that put texts together, and a
/// source of another kind of values than the function's.
std::unique_ptr<DirectCells> directCells(moxCommonAggregationFunction const& function,
                                         moxDataMatrixColumn const& source, std::size_t width);
