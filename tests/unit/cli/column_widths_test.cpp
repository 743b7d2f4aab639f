#include "cli/output/column_widths.h"

#include <numeric>
#include <random>

#include <gtest/gtest.h>

namespace mox::cli {
namespace {

int used(WidthPlan const& plan) {
  int const gaps = kColumnGap * (static_cast<int>(plan.widths.size()) - 1);
  int const mark = plan.leavesOut ? kColumnGap + 1 : 0;
  return std::accumulate(plan.widths.begin(), plan.widths.end(), gaps + mark);
}

TEST(ColumnWidths, GivesEveryoneWhatIsWantedWithoutATerminal) {
  EXPECT_EQ(planWidths({{500, 8}, {3, 3}}, 0).widths, (std::vector<int>{500, 3}));
}

TEST(ColumnWidths, ShortensTheWidestFirst) {
  auto const plan = planWidths({{4, 4}, {100, 8}, {20, 8}}, 60);
  EXPECT_EQ(plan.widths, (std::vector<int>{4, 32, 20}));
  EXPECT_FALSE(plan.leavesOut);
}

TEST(ColumnWidths, LeavesOutTheLastColumnsWhenNothingElseHelps) {
  auto const plan = planWidths({{10, 10}, {10, 10}, {10, 10}}, 26);
  EXPECT_EQ(plan.widths, (std::vector<int>{10, 10}));
  EXPECT_TRUE(plan.leavesOut);
}

TEST(ColumnWidths, AlwaysKeepsTheFirstColumn) {
  EXPECT_EQ(planWidths({{100, 100}}, 20).widths, (std::vector<int>{20}));
  EXPECT_EQ(planWidths({{100, 100}, {5, 5}}, 20).widths, (std::vector<int>{17}));
  EXPECT_EQ(planWidths({{100, 100}, {5, 5}}, 1).widths, (std::vector<int>{1}));
}

TEST(ColumnWidths, HasNothingToPlanWithoutColumns) {
  EXPECT_TRUE(planWidths({}, 80).widths.empty());
}

TEST(ColumnWidths, NeverUsesMoreThanTheTerminalNorWastesWhatIsWanted) {
  std::mt19937 random(7);
  auto const pick = [&](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(random);
  };
  for (int round = 0; round < 5000; ++round) {
    int const width = pick(4, 200);
    std::vector<WidthWish> wishes;
    for (int i = pick(1, 12); i > 0; --i) {
      int const wanted = pick(1, 60);
      wishes.push_back({wanted, pick(1, wanted)});
    }
    auto const plan = planWidths(wishes, width);
    ASSERT_LE(used(plan), width);
    int wantedInAll = kColumnGap * (static_cast<int>(wishes.size()) - 1);
    for (std::size_t i = 0; i < plan.widths.size(); ++i) {
      ASSERT_LE(plan.widths[i], wishes[i].wanted);
    }
    for (auto const& wish : wishes) {
      wantedInAll += wish.wanted;
    }
    if (wantedInAll >= width && !plan.leavesOut) {
      ASSERT_EQ(used(plan), width) << "room was left while a column was shortened";
    }
  }
}

}  // namespace
}  // namespace mox::cli
