#include "mox/zyn/matrix/aggregation_function.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "mox/core/xml.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Function = std::shared_ptr<moxCommonAggregationFunction>;

Function functionOf(TestHost& host, std::string const& registeredName) {
  auto function = host.get<moxCommonAggregationFunction>(registeredName);
  function->setSourceColumn("v");
  function->setTargetColumn("r");
  return function;
}

/// What the function makes of all rows as one group: a matrix of its columns.
std::shared_ptr<moxDataMatrix> computed(Function const& function, Cells const& values) {
  auto const input = matrix({{"v", values}});
  auto result = matrix({});
  std::vector<std::shared_ptr<moxIterator>> cursors;
  for (auto const& column : function->columns()) {
    column->appendNull();
    result->addColumn(column);
    cursors.push_back(column->begin());
  }
  function->setIterators(cursors);
  auto const row = input->begin();
  for (unsigned int i = 0; i < input->rowCount(); ++i, row->next()) {
    EXPECT_TRUE(function->compute(row));
  }
  function->posProcess(result);
  return result;
}

testing::AssertionResult gives(TestHost& host, std::string const& registeredName,
                               Cells const& values, Cells const& expected) {
  return sameMatrix(*computed(functionOf(host, registeredName), values),
                    *matrix({{"r", expected}}));
}

testing::AssertionResult averages(TestHost& host, std::string const& registeredName,
                                  Cells const& values, Cells const& mean, Cells const& counter) {
  return sameMatrix(*computed(functionOf(host, registeredName), values),
                    *matrix({{"r", mean}, {"r$Counter", counter}}));
}

}  // namespace

TEST(AggregationFunctions, SumAddsWhatIsNotNull) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxIntegralSum", ints(3, null, 4), ints(7)));
  EXPECT_TRUE(gives(host, "moxDoubleSum", doubles(0.5, null, -2.0), doubles(-1.5)));
}

TEST(AggregationFunctions, SumOfOnlyNullsIsNullAndNotZero) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxIntegralSum", ints(null, null), ints(null)));
  EXPECT_TRUE(gives(host, "moxDoubleSum", doubles(null), doubles(null)));
}

TEST(AggregationFunctions, SumOfWholeNumbersWraps) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxIntegralSum", ints(INT_MAX, 2), ints(INT_MIN + 1)));
}

TEST(AggregationFunctions, MinOverThreeNullOneIsOne) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxIntegralMin", ints(3, null, 1), ints(1)));
  EXPECT_TRUE(gives(host, "moxDoubleMin", doubles(3.0, null, 1.0), doubles(1.0)));
  EXPECT_TRUE(gives(host, "moxDateMin", dates("2024-03-05", null, "2024-03-04 10:00:00"),
                    dates("2024-03-04 10:00:00")));
  EXPECT_TRUE(gives(host, "moxTextMin", texts("b", null, "", "a"), texts("")));
}

TEST(AggregationFunctions, MaxIsTheHighest) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxIntegralMax", ints(-3, null, -1, -2), ints(-1)));
  EXPECT_TRUE(gives(host, "moxDoubleMax", doubles(-3.0, -1.0), doubles(-1.0)));
  EXPECT_TRUE(gives(host, "moxDateMax", dates("2024-03-05", "2024-03-04"), dates("2024-03-05")));
  EXPECT_TRUE(gives(host, "moxTextMax", texts("Z", "a", "\xC3\x81", "b"), texts("\xC3\x81")));
}

TEST(AggregationFunctions, ANaNIsNeitherAboveNorBelow) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxDoubleMin", doubles(kNaN, 1.0), doubles(kNaN)));
  EXPECT_TRUE(gives(host, "moxDoubleMin", doubles(1.0, kNaN, 0.5), doubles(0.5)));
  EXPECT_TRUE(gives(host, "moxDoubleMax", doubles(kNaN, 1.0), doubles(kNaN)));
  EXPECT_TRUE(gives(host, "moxDoubleMax", doubles(1.0, kNaN), doubles(1.0)));
}

TEST(AggregationFunctions, FirstAndLastPassOverNulls) {
  TestHost host;
  auto const one = blob("1");
  auto const other = blob("2");
  EXPECT_TRUE(gives(host, "moxTextFirst", texts(null, "a", "b"), texts("a")));
  EXPECT_TRUE(gives(host, "moxTextLast", texts("a", "b", null), texts("b")));
  EXPECT_TRUE(gives(host, "moxBlobFirst", blobs(null, one, other), blobs(one)));
  EXPECT_TRUE(gives(host, "moxBlobLast", blobs(one, other, null), blobs(other)));
}

TEST(AggregationFunctions, AppendAndPrependPutNothingBetween) {
  TestHost host;
  EXPECT_TRUE(gives(host, "moxTextAppend", texts("a", "b"), texts("ab")));
  EXPECT_TRUE(gives(host, "moxTextPrepend", texts("a", "b"), texts("ba")));
  EXPECT_TRUE(gives(host, "moxTextAppend", texts(null, "", null), texts("")));
  EXPECT_TRUE(gives(host, "moxTextPrepend", texts(null), texts(null)));
}

TEST(AggregationFunctions, IntegralAvgOfOneAndTwoIsOne) {
  TestHost host;
  EXPECT_TRUE(averages(host, "moxIntegralAvg", ints(1, 2), ints(1), ints(2)));
  EXPECT_TRUE(averages(host, "moxIntegralAvg", ints(-1, -2), ints(-1), ints(2)));
  EXPECT_TRUE(averages(host, "moxIntegralAvg", ints(INT_MIN, null), ints(INT_MIN), ints(1)));
  EXPECT_TRUE(averages(host, "moxDoubleAvg", doubles(1.0, null, 2.0), doubles(1.5), ints(2)));
}

TEST(AggregationFunctions, AverageOfOnlyNullsIsNull) {
  TestHost host;
  EXPECT_TRUE(averages(host, "moxIntegralAvg", ints(null, null), ints(null), ints(null)));
  EXPECT_TRUE(averages(host, "moxDoubleAvg", doubles(null), doubles(null), ints(null)));
}

TEST(AggregationFunctions, AverageNamesItsCounterAsMeta) {
  TestHost host;
  EXPECT_EQ(functionOf(host, "moxDoubleAvg")->getMetaColumns(),
            std::vector<std::string>{"r$Counter"});
  EXPECT_EQ(functionOf(host, "moxDoubleSum")->getMetaColumns(), std::vector<std::string>());
}

TEST(AggregationFunctions, ColumnsAreOfTheFamilysKindAndNamedByTheTarget) {
  TestHost host;
  auto const columns = functionOf(host, "moxDateMin")->columns();
  ASSERT_EQ(columns.size(), 1U);
  EXPECT_EQ(columns[0]->name(), "moxDataMatrixDateColumn");
  EXPECT_EQ(columns[0]->getName(), "r");
  EXPECT_EQ(columns[0]->numRows(), 0U);
}

TEST(AggregationFunctions, ComputeGivesFalseWithoutSourceOrTarget) {
  TestHost host;
  auto const input = matrix({{"v", texts("a")}});
  auto const function = functionOf(host, "moxTextLast");
  EXPECT_FALSE(function->compute(input->begin())) << "before setIterators";

  auto const target = column("r", texts(null));
  function->setIterators({target->begin()});
  function->setSourceColumn("missing");
  EXPECT_FALSE(function->compute(input->begin()));

  function->setIterators({column("r", ints(null))->begin()});
  function->setSourceColumn("v");
  EXPECT_FALSE(function->compute(input->begin())) << "a target of another kind";
  EXPECT_TRUE(target->isNull(0));
}

TEST(AggregationFunctions, ComputeGivesFalseForASourceOfAnotherKind) {
  TestHost host;
  auto const function = functionOf(host, "moxIntegralSum");
  auto const target = column("r", ints(null));
  function->setIterators({target->begin()});
  EXPECT_FALSE(function->compute(matrix({{"v", doubles(1.0)}})->begin()));
  EXPECT_TRUE(target->isNull(0));
}

TEST(AggregationFunctions, AverageComputesNothingWithoutItsCounter) {
  TestHost host;
  auto const function = functionOf(host, "moxIntegralAvg");
  auto const target = column("r", ints(null));
  function->setIterators({target->begin()});
  EXPECT_FALSE(function->compute(matrix({{"v", ints(1)}})->begin()));
  function->posProcess(matrix({{"r", ints(1)}}));
  EXPECT_TRUE(target->isNull(0));
}

TEST(AggregationFunctions, SetIteratorsForgetsTheInputOfTheLastRun) {
  TestHost host;
  auto const function = functionOf(host, "moxIntegralSum");
  EXPECT_TRUE(sameMatrix(*computed(function, ints(1, 2)), *matrix({{"r", ints(3)}})));
  EXPECT_TRUE(sameMatrix(*computed(function, ints(10)), *matrix({{"r", ints(10)}})));
}

TEST(AggregationFunctions, NamesGoThroughXml) {
  TestHost host;
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  document->create("moxIntegralSum");
  EXPECT_TRUE(functionOf(host, "moxIntegralSum")->save(document->root()));
  EXPECT_EQ(document->writeText(0, 0), "<moxIntegralSum source=\"v\" target=\"r\"/>");

  auto const loaded = host.get<moxIntegralAggregationFunction>("moxIntegralSum");
  EXPECT_TRUE(loaded->load(document->root()));
  EXPECT_EQ(loaded->getSourceColumn(), "v");
  EXPECT_EQ(loaded->getTargetColumn(), "r");

  EXPECT_FALSE(loaded->load(nullptr));
  EXPECT_FALSE(loaded->save(nullptr));
  EXPECT_EQ(loaded->getSourceColumn(), "v");
}

TEST(AggregationFunctions, EachBelongsToItsFamily) {
  TestHost host;
  for (std::string const kind : {"Sum", "Min", "Max", "Avg"}) {
    EXPECT_TRUE(host.get<moxIntegralAggregationFunction>("moxIntegral" + kind));
    EXPECT_TRUE(host.get<moxDoubleAggregationFunction>("moxDouble" + kind));
  }
  for (std::string const kind : {"Min", "Max", "First", "Last", "Append", "Prepend"}) {
    EXPECT_TRUE(host.get<moxTextAggregationFunction>("moxText" + kind));
  }
  EXPECT_TRUE(host.get<moxDateAggregationFunction>("moxDateMin"));
  EXPECT_TRUE(host.get<moxDateAggregationFunction>("moxDateMax"));
  EXPECT_TRUE(host.get<moxBlobAggregationFunction>("moxBlobFirst"));
  EXPECT_TRUE(host.get<moxBlobAggregationFunction>("moxBlobLast"));
  EXPECT_FALSE(host.get<moxDoubleAggregationFunction>("moxIntegralSum"));
}
