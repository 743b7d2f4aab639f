#pragma once

#include <optional>

#include "zyn/matrix/column_copy.h"

class NumberTotals;
enum class NumberTotal : unsigned int;
struct KeyGroups;

/// Second face of the module's own functions: what compute() does row by row, for a whole column.
class GroupedAggregation {
 public:
  virtual ~GroupedAggregation() = default;

  /// Replaces the columns under the cursors of setIterators, which have a row for each group. All
  /// are the module's own. A source with another kind of values changes nothing.
  virtual void computeGroups(moxDataMatrixColumn const& source, KeyGroups const& groups) = 0;

  /// What has to be known of the numbers of each group, which functions of numbers find out
  /// together; none for other functions, and for a source with another kind of values.
  virtual std::optional<NumberTotal> totalOf(moxDataMatrixColumn const& source) const = 0;

  /// Replaces the columns as computeGroups does, by what is known of the groups' numbers.
  virtual void writeTotals(MatrixColumn const& source, NumberTotals const& totals) = 0;
};
