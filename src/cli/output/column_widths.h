#pragma once

#include <cstddef>
#include <vector>

namespace mox::cli {

/// What a column of a table asks for, in places of a terminal.
struct WidthWish {
  int wanted;  // shows everything
  int least;   // below this the column is of no use
};

/// What the columns get. Columns past the widths given are left out.
struct WidthPlan {
  std::vector<int> widths;
  bool leavesOut = false;  // then one place more is kept for the mark that says so
};

/// Spaces between two columns.
inline constexpr int kColumnGap = 2;

/// Divides the terminal's width: wide columns give first, down to their least; then columns are
/// left out from the end, but never the first. A `width` of 0 gives everyone what is wanted.
WidthPlan planWidths(std::vector<WidthWish> const& wishes, int width);

}  // namespace mox::cli
