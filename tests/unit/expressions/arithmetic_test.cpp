#include "zyn/expressions/arithmetic.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using namespace moxExParser;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The same value, the sign of a zero included; a NaN is as good as another.
bool isSame(double left, double right) {
  return (std::isnan(left) && std::isnan(right)) ||
         std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

void expectStandard(double value) {
  EXPECT_TRUE(isSame(truncated(value), std::trunc(value))) << value;
  EXPECT_TRUE(isSame(rounded(value), std::round(value))) << value;
  EXPECT_TRUE(isSame(raised(value), std::ceil(value))) << value;
}

TEST(Arithmetic, RoundsAsTheStandardFunctionsAtTheEdges) {
  for (double const value : {0.0, 0.5, 0.49999999999999994, 0.9999999999999999, 1.0, 1.5, 2.5,
                             4503599627370495.5, 4503599627370496.0, 9007199254740993.0,
                             9223372036854775808.0, 1e300, 5e-324, kInfinity, kNaN}) {
    expectStandard(value);
    expectStandard(-value);
  }
}

TEST(Arithmetic, RoundsAsTheStandardFunctionsEverywhere) {
  std::mt19937_64 random(20240305);
  for (int i = 0; i < 300'000; ++i) {
    expectStandard(std::bit_cast<double>(random()));  // of any size
    expectStandard(static_cast<double>(static_cast<std::int64_t>(random())) / (1LL << (i % 63)));
  }
}

TEST(Arithmetic, AScaleHasNoneToEighteenPlaces) {
  EXPECT_EQ(scaleFor(0), 1.0);
  EXPECT_EQ(scaleFor(2.9), 100.0);
  EXPECT_EQ(scaleFor(18), 1e18);
  EXPECT_EQ(scaleFor(19), 1e18);
  EXPECT_EQ(scaleFor(kInfinity), 1e18);
  EXPECT_EQ(scaleFor(-1), 1.0);
  EXPECT_EQ(scaleFor(-kInfinity), 1.0);
  EXPECT_EQ(scaleFor(kNaN), 1.0);
}

TEST(Arithmetic, IntsTakeWhatFitsAndTheNearestOtherwise) {
  EXPECT_EQ(toInt(2.9), 2);
  EXPECT_EQ(toInt(-2.9), -2);
  EXPECT_EQ(toInt(2147483647.9), 2147483647);
  EXPECT_EQ(toInt(2147483648.0), 2147483647);
  EXPECT_EQ(toInt(-2147483648.9), std::numeric_limits<int>::min());
  EXPECT_EQ(toInt(1e300), 2147483647);
  EXPECT_EQ(toInt(-kInfinity), std::numeric_limits<int>::min());
  EXPECT_EQ(toInt(kNaN), 0);
}

}  // namespace
