#include "escola/generator/random.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace {

using escola::Purpose;
using escola::Random;

TEST(EscolaRandom, SameNameGivesTheSameSequence) {
  Random first(7, Purpose::kStudent, 3);
  Random second(7, Purpose::kStudent, 3);
  for (int draw = 0; draw < 100; ++draw) {
    EXPECT_EQ(first.next(), second.next());
  }
}

TEST(EscolaRandom, SeedPurposeIdentifierAndPartEachMakeAnotherSequence) {
  std::set<std::uint64_t> const firsts{
      Random(7, Purpose::kStudent, 3, 1).next(), Random(8, Purpose::kStudent, 3, 1).next(),
      Random(7, Purpose::kStaff, 3, 1).next(), Random(7, Purpose::kStudent, 4, 1).next(),
      Random(7, Purpose::kStudent, 3, 2).next()};
  EXPECT_EQ(firsts.size(), 5U);
}

TEST(EscolaRandom, BetweenReachesBothEndsAndNothingBeyond) {
  Random random(1, Purpose::kCohort, 0);
  std::array<int, 5> counts{};
  for (int draw = 0; draw < 5000; ++draw) {
    int const value = random.between(-2, 2);
    ASSERT_GE(value, -2);
    ASSERT_LE(value, 2);
    ++counts[static_cast<std::size_t>(value + 2)];
  }
  for (int const count : counts) {
    EXPECT_NEAR(count, 1000, 150);
  }
}

TEST(EscolaRandom, ChanceKeepsItsShare) {
  Random random(1, Purpose::kCohort, 1);
  int hits = 0;
  for (int draw = 0; draw < 10000; ++draw) {
    hits += random.chance(250) ? 1 : 0;
  }
  EXPECT_NEAR(hits, 2500, 200);
}

TEST(EscolaRandom, BellStaysWithinTwiceItsSpreadAndCentresOnItsMean) {
  Random random(1, Purpose::kCohort, 2);
  std::int64_t sum = 0;
  for (int draw = 0; draw < 10000; ++draw) {
    int const value = random.bell(50, 10);
    ASSERT_GE(value, 30);
    ASSERT_LE(value, 70);
    sum += value;
  }
  EXPECT_NEAR(static_cast<double>(sum) / 10000, 50.0, 0.5);
}

}  // namespace
