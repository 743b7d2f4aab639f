#include "zyn/operations/exact_power.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "zyn/matrix/processor.h"

namespace {

void expectStandard(std::vector<double> const& bases, double exponent, bool fuses) {
  std::vector<double> results(bases.size());
  exact_power::powers(bases.data(), exponent, results.data(), bases.size(), fuses);
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < bases.size(); ++i) {
    double const expected = std::pow(bases[i], exponent);
    bool const isSame = std::isnan(expected) ? std::isnan(results[i])
                                             : std::bit_cast<std::uint64_t>(expected) ==
                                                   std::bit_cast<std::uint64_t>(results[i]);
    EXPECT_TRUE(isSame || ++wrong > 5)
        << bases[i] << "^" << exponent << " is " << expected << ", not " << results[i];
  }
  EXPECT_EQ(wrong, 0U);
}

void expectStandard(std::vector<double> const& bases) {
  for (double const exponent : {2.0, 3.0, 0.5}) {
    expectStandard(bases, exponent, hasFusedProducts());
    expectStandard(bases, exponent, false);
  }
}

TEST(ExactPower, KnowsSquaresCubesAndRoots) {
  EXPECT_TRUE(exact_power::isKnown(2));
  EXPECT_TRUE(exact_power::isKnown(3));
  EXPECT_TRUE(exact_power::isKnown(0.5));
  EXPECT_FALSE(exact_power::isKnown(1));
  EXPECT_FALSE(exact_power::isKnown(-2));
  EXPECT_FALSE(exact_power::isKnown(std::nan("")));
}

TEST(ExactPower, AtTheEdges) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  expectStandard({0.0,
                  -0.0,
                  1,
                  -1,
                  2,
                  -2,
                  4,
                  0.25,
                  3,
                  9,
                  10,
                  1e90,
                  1.1e90,
                  1e-90,
                  9e-91,
                  1e200,
                  -1e200,
                  1e-200,
                  5e-324,
                  std::numeric_limits<double>::max(),
                  kInfinity,
                  -kInfinity,
                  std::nan(""),
                  0.1,
                  -0.1});
}

TEST(ExactPower, OfMoneyAndCounts) {
  std::vector<double> bases;
  for (int i = -100'000; i < 100'000; ++i) {
    bases.push_back(i);
    bases.push_back(i / 100.0);
  }
  expectStandard(bases);
}

TEST(ExactPower, OfAnything) {
  std::mt19937_64 random(7);
  std::vector<double> bases(200'000);
  for (double& base : bases) {
    base = std::bit_cast<double>(random());
  }
  expectStandard(bases);
}

TEST(ExactPower, OfManyPlaces) {
  std::mt19937_64 random(8);
  std::vector<double> bases(1'000'000);
  for (double& base : bases) {
    base = static_cast<double>(random() >> 11) * 0x1p-53 * 1000;
  }
  expectStandard(bases);
}

}  // namespace
