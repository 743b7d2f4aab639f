#pragma once

class moxDataMatrixColumn;
struct KeyGroups;

/// Second face of the module's own functions: what compute() does row by row, for a whole column.
class GroupedAggregation {
 public:
  virtual ~GroupedAggregation() = default;

  /// Replaces the columns under the cursors of setIterators, which have a row for each group. All
  /// are the module's own. A source with another kind of values changes nothing.
  virtual void computeGroups(moxDataMatrixColumn const& source, KeyGroups const& groups) = 0;
};
