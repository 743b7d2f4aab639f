#include "zyn/operations/direct_aggregation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "mox/core/error.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "support/matrix_builder.h"
#include "support/random_tables.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Matrix = std::shared_ptr<moxDataMatrix>;
using Names = std::vector<std::string>;
using Functions = std::vector<std::shared_ptr<moxCommonAggregationFunction>>;

std::shared_ptr<moxCommonAggregationFunction> function(TestHost& host, std::string const& name,
                                                       std::string const& column) {
  auto made = host.get<moxCommonAggregationFunction>(name);
  made->setSourceColumn(column);
  made->setTargetColumn(column);
  return made;
}

Matrix byAggregator(TestHost& host, Matrix const& input, Names const& keys,
                    Functions const& functions) {
  auto const aggregator = host.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
  for (auto const& key : keys) {
    aggregator->pushIndexColumn(key);
  }
  for (auto const& each : functions) {
    aggregator->addFunction(each);
  }
  return aggregator->aggregate(input, false, "");
}

/// Some names of the table's columns, each once.
Names someColumns(RandomTables& random, moxDataMatrix const& table, std::size_t below) {
  Names names;
  for (std::size_t i = random.pick(below); i != 0; --i) {
    std::string const name = random.columnOf(table);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
  }
  return names;
}

constexpr std::array kFunctions{
    "moxDoubleSum",   "moxDoubleMin",   "moxDoubleMax",   "moxDoubleAvg",
    "moxIntegralSum", "moxIntegralMin", "moxIntegralMax", "moxIntegralAvg",
    "moxTextFirst",   "moxTextLast",    "moxTextMin",     "moxTextMax",
    "moxDateMin",     "moxDateMax",     "moxBlobFirst",   "moxBlobLast"};

/// A function that computes over columns of the type, mostly.
std::string functionFor(RandomTables& random, moxDataMatrixTypes::Types type) {
  constexpr std::array<std::size_t, 5> kFirst{4, 0, 8, 12, 14};
  constexpr std::array<std::size_t, 5> kCount{4, 4, 4, 2, 2};
  auto const kind = static_cast<std::size_t>(type);
  return random.pick(20) == 0 ? kFunctions[random.pick(kFunctions.size())]
                              : kFunctions[kFirst[kind] + random.pick(kCount[kind])];
}

/// Compares over random tables; the number of those that were aggregated directly.
int compare(std::uint64_t seed, RandomTableOptions options, int rounds) {
  TestHost host;
  RandomTables random(seed, options);
  int direct = 0;
  for (int round = 0; round < rounds; ++round) {
    Matrix const input = random.table();
    Names const keys = someColumns(random, *input, 4);
    Functions functions;
    for (auto const& name : someColumns(random, *input, 3)) {
      functions.push_back(
          function(host, functionFor(random, input->columnByName(name)->getType()), name));
    }
    Matrix const found = aggregatedDirectly(*input, keys, functions);
    if (found) {
      ++direct;
      EXPECT_THAT(found, isMatrix(byAggregator(host, input, keys, functions)))
          << "round " << round << "\n"
          << asText(*input);
    }
    if (testing::Test::HasFailure()) {
      return direct;
    }
  }
  return direct;
}

}  // namespace

TEST(DirectAggregation, GivesWhatAnAggregatorGives) {
  EXPECT_GT(compare(20260101, {}, 20000), 5000);
}

TEST(DirectAggregation, GivesWhatAnAggregatorGivesBeyondABlockOfRows) {
  RandomTableOptions options;
  options.maxRows = 3000;
  EXPECT_GT(compare(20260102, options, 300), 50);
}

TEST(DirectAggregation, KeysStandInTheOrderOfTheirFirstRows) {
  TestHost host;
  auto const input =
      matrix({{"k", ints(7, 5, null, 7, 5)}, {"v", doubles(1.0, 2.0, 3.0, 4.0, null)}});

  EXPECT_THAT(aggregatedDirectly(*input, {"k"}, {function(host, "moxDoubleSum", "v")}),
              isMatrix({{"k", ints(7, 5, null)}, {"v", doubles(5.0, 2.0, 3.0)}}));
}

TEST(DirectAggregation, AGroupWithoutAValueIsNull) {
  TestHost host;
  auto const input = matrix({{"k", ints(1, 2, 2)}, {"v", ints(null, 3, 4)}});

  EXPECT_THAT(aggregatedDirectly(*input, {"k"}, {function(host, "moxIntegralAvg", "v")}),
              isMatrix({{"k", ints(1, 2)}, {"v", ints(null, 3)}, {"v$Counter", ints(null, 2)}}));
}

TEST(DirectAggregation, WholeNumbersFarApartAreLeftToTheAggregator) {
  TestHost host;
  constexpr int kLowest = std::numeric_limits<int>::min();
  constexpr int kHighest = std::numeric_limits<int>::max();
  auto const input = matrix({{"k", ints(kLowest, kHighest)}, {"v", ints(1, 2)}});

  EXPECT_EQ(aggregatedDirectly(*input, {"k"}, {function(host, "moxIntegralSum", "v")}), nullptr);
}

TEST(DirectAggregation, ExtremeNumbersCloseTogetherAreNot) {
  TestHost host;
  constexpr int kLowest = std::numeric_limits<int>::min();
  auto const input = matrix({{"k", ints(kLowest + 1, null, kLowest)}, {"v", ints(1, 2, 3)}});

  EXPECT_THAT(aggregatedDirectly(*input, {"k"}, {function(host, "moxIntegralSum", "v")}),
              isMatrix({{"k", ints(kLowest + 1, null, kLowest)}, {"v", ints(1, 2, 3)}}));
}

TEST(DirectAggregation, ANaNAmongTheKeysIsLeftToTheAggregator) {
  TestHost host;
  auto const input =
      matrix({{"k", doubles(1.0, std::numeric_limits<double>::quiet_NaN())}, {"v", ints(1, 2)}});

  EXPECT_EQ(aggregatedDirectly(*input, {"k"}, {function(host, "moxIntegralSum", "v")}), nullptr);
}

TEST(DirectAggregation, TextsPutTogetherAreLeftToTheAggregator) {
  TestHost host;
  auto const input = matrix({{"k", ints(1)}, {"v", texts("a")}});

  EXPECT_EQ(aggregatedDirectly(*input, {"k"}, {function(host, "moxTextAppend", "v")}), nullptr);
}

TEST(DirectAggregation, WithoutRowsTheAggregatorIsAsked) {
  TestHost host;
  EXPECT_EQ(aggregatedDirectly(*matrix({{"k", ints()}}), {"k"}, {}), nullptr);
}
