#include "cli/output/column_widths.h"

#include <algorithm>

namespace mox::cli {

namespace {

/// The width of a column when none may be wider than `cap` without need.
int capped(WidthWish const& wish, int cap) {
  return std::max(wish.least, std::min(wish.wanted, cap));
}

int total(std::vector<WidthWish> const& wishes, std::size_t count, int cap) {
  int sum = kColumnGap * (static_cast<int>(count) - 1);
  for (std::size_t i = 0; i < count; ++i) {
    sum += capped(wishes[i], cap);
  }
  return sum;
}

/// The largest cap with which the first columns fit; 0 when none does.
int largestCap(std::vector<WidthWish> const& wishes, std::size_t count, int room) {
  int cap = room;
  while (cap > 0 && total(wishes, count, cap) > room) {
    --cap;
  }
  return cap;
}

std::vector<int> shareOut(std::vector<WidthWish> const& wishes, std::size_t count, int room) {
  int const cap = largestCap(wishes, count, room);
  int spare = room - total(wishes, count, cap);
  std::vector<int> widths;
  for (std::size_t i = 0; i < count; ++i) {
    int const width = capped(wishes[i], cap);
    int const extra = spare > 0 && width < wishes[i].wanted ? 1 : 0;
    spare -= extra;
    widths.push_back(width + extra);
  }
  return widths;
}

}  // namespace

WidthPlan planWidths(std::vector<WidthWish> const& wishes, int width) {
  WidthPlan plan;
  if (width <= 0 || wishes.empty()) {
    for (auto const& wish : wishes) {
      plan.widths.push_back(wish.wanted);
    }
    return plan;
  }
  std::size_t count = wishes.size();
  if (total(wishes, count, 0) <= width) {
    plan.widths = shareOut(wishes, count, width);
    return plan;
  }
  int const room = std::max(1, width - kColumnGap - 1);
  while (count > 1 && total(wishes, count, 0) > room) {
    --count;
  }
  plan.leavesOut = count < wishes.size();
  plan.widths = shareOut(wishes, count, plan.leavesOut ? room : width);
  if (count == 1) {
    plan.widths[0] = std::clamp(plan.widths[0], 1, plan.leavesOut ? room : width);
  }
  return plan;
}

}  // namespace mox::cli
