#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zyn/matrix/column_copy.h"

class moxGenericFormatter;

/// The values of the pivoted columns that occur together, each combination of which heads columns
/// of the cross table. Only those that occur are ever made: the product of all values could be far
/// greater than what there is.
class PivotCombinations {
 public:
  /// A row that carries the values of a combination.
  struct Entry {
    std::uint32_t row;
    std::uint32_t combination;
  };

  /// For a matrix of `rows` rows; each combination will head `width` columns. Without pivoted
  /// columns there is no combination.
  PivotCombinations(std::uint32_t rows, std::size_t width) : rows_(rows), width_(width) {}

  /// Tells the combinations apart by a further column, which is the module's own. An empty
  /// formatter stands for the one of its kind of values. Throws moxError when there are more
  /// columns to head than the application allows.
  void add(MatrixColumn const& column, std::shared_ptr<moxGenericFormatter const> formatter);

  /// Labels in the order of the values' first appearance, the first column's outermost.
  std::vector<std::string> const& labels() const { return labels_; }

  /// The rows of each combination, side by side in the order of the combinations, and in each
  /// ascending. A row with a NaN, which agrees with every number, may carry several.
  std::vector<Entry> const& entries() const { return entries_; }

 private:
  void number(std::vector<std::uint64_t>& codes, std::vector<std::string> const& values);

  std::uint32_t rows_;
  std::size_t width_;
  bool isFirst_ = true;
  std::vector<std::string> labels_;
  std::vector<Entry> entries_;
};
