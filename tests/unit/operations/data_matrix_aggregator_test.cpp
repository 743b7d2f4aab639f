#include "mox/zyn/matrix/data_matrix_aggregator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "mox/core/error.h"
#include "mox/core/module.h"
#include "mox/core/registry.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "support/foreign_column.h"
#include "support/many_threads.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "unit/operations/made_aggregator.h"
#include "zyn/frame/plugin_containers.h"

using namespace mox_test;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Matrix = std::shared_ptr<moxDataMatrix>;
using Aggregator = std::shared_ptr<moxDataMatrixAggregator>;
using Types = moxDataMatrixTypes;

/// Counts the rows that it is shown, in a column without a name; of a class that nobody registered.
class RowCounter final : public virtual moxAggregationFunction {
 public:
  std::string name() const override { return "testRowCounter"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override { return node != nullptr; }
  bool load(std::shared_ptr<moxXMLNode> node) override { return node != nullptr; }
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() override {
    return {std::make_shared<ForeignIntColumn>("seen", std::vector<std::optional<int>>()),
            column("spare", texts())};
  }
  void setIterators(std::vector<std::shared_ptr<moxIterator>> iterators) override {
    cursor_ = std::dynamic_pointer_cast<moxIteratorBase<int>>(iterators.front());
  }
  bool compute(std::shared_ptr<moxDataMatrixRow const>) override {
    cursor_->set(cursor_->get() + 1);
    return true;
  }
  void posProcess(std::shared_ptr<moxDataMatrix>) override { ++finished; }
  std::vector<std::string> getMetaColumns() const override { return {"spare"}; }

  int finished = 0;

 private:
  std::shared_ptr<moxIteratorBase<int>> cursor_;
};

/// Writes the same text for every group: a function of another library, with a setting of its own.
class Stamp final : public virtual moxAggregationFunction {
 public:
  std::string name() const override { return "testStamp"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    node->writeAttribute("text", text);
    return true;
  }
  bool load(std::shared_ptr<moxXMLNode> node) override {
    text = node->readAttribute("text");
    return true;
  }
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() override {
    return {column("stamp", texts())};
  }
  void setIterators(std::vector<std::shared_ptr<moxIterator>> iterators) override {
    ++runs;
    cursor_ = std::dynamic_pointer_cast<moxIteratorBase<std::string>>(iterators.front());
  }
  bool compute(std::shared_ptr<moxDataMatrixRow const>) override {
    cursor_->set(text);
    return true;
  }
  void posProcess(std::shared_ptr<moxDataMatrix>) override {}
  std::vector<std::string> getMetaColumns() const override { return {}; }

  std::string text;
  int runs = 0;

 private:
  std::shared_ptr<moxIteratorBase<std::string>> cursor_;
};

void enterStamp(VELMORApplication* application, moxSessionService* session) {
  moxPlugIn_EntryPoint(application, session);
}

int registerStamp(moxPluginRegistry* registry) {
  registry->setLibraryName("another library");
  registry->registerClass(std::make_unique<moxInternalPluginContainer<Stamp>>("testStamp"));
  return 1;
}

}  // namespace

TEST(DataMatrixAggregator, GroupsEqualKeysWhereverTheyStand) {
  TestHost host;
  auto const input = matrix({{"k", texts("A", "A", "B", "A")}, {"v", ints(1, 2, 4, 8)}});

  EXPECT_THAT(aggregator(host, {"k"}, {{"moxIntegralSum", "v", "s"}})->aggregate(input, false, ""),
              isMatrix({{"k", texts("A", "B")}, {"s", ints(11, 4)}}));
}

TEST(DataMatrixAggregator, KeysThatAllDifferGiveARowEach) {
  TestHost host;
  auto const input = matrix({{"k", texts("A", "A", "B", "C")}, {"v", ints(1, 2, 4, 8)}});

  EXPECT_THAT(
      aggregator(host, {"k"}, {{"moxIntegralSum", "v", "s"}})->aggregate(input, true, ""),
      isMatrix({{"k", texts("A", "B", "C")}, {"s", ints(3, 4, 8)}, {"data_count", ints(2, 1, 1)}}));
}

TEST(DataMatrixAggregator, SumOverAGroupWithOnlyNullsIsNull) {
  TestHost host;
  auto const input = matrix({{"k", ints(1, 2, 1)}, {"v", ints(null, 5, null)}});

  EXPECT_THAT(aggregator(host, {"k"}, {{"moxIntegralSum", "v", "s"}})->aggregate(input, false, ""),
              isMatrix({{"k", ints(1, 2)}, {"s", ints(null, 5)}}));
}

TEST(DataMatrixAggregator, MinOverThreeNullOneIsOne) {
  TestHost host;
  EXPECT_THAT(aggregator(host, {}, {{"moxIntegralMin", "v", "m"}})
                  ->aggregate(matrix({{"v", ints(3, null, 1)}}), false, ""),
              isMatrix({{"m", ints(1)}}));
}

TEST(DataMatrixAggregator, IntegralAvgOfOneAndTwoIsOne) {
  TestHost host;
  EXPECT_THAT(aggregator(host, {}, {{"moxIntegralAvg", "v", "m"}})
                  ->aggregate(matrix({{"v", ints(1, 2)}}), false, ""),
              isMatrix({{"m", ints(1)}, {"m$Counter", ints(2)}}));
}

TEST(DataMatrixAggregator, AverageOfAGroupWithOnlyNullsIsNull) {
  TestHost host;
  auto const input = matrix({{"k", ints(1, 2)}, {"v", doubles(null, 3.0)}});
  EXPECT_THAT(
      aggregator(host, {"k"}, {{"moxDoubleAvg", "v", "m"}})->aggregate(input, false, ""),
      isMatrix({{"k", ints(1, 2)}, {"m", doubles(null, 3.0)}, {"m$Counter", ints(null, 1)}}));
}

TEST(DataMatrixAggregator, TextFirstAndLastPassOverNulls) {
  TestHost host;
  auto const input = matrix({{"v", texts(null, "a", "b")}});
  EXPECT_THAT(aggregator(host, {}, {{"moxTextFirst", "v", "f"}, {"moxTextLast", "v", "l"}})
                  ->aggregate(input, false, ""),
              isMatrix({{"f", texts("a")}, {"l", texts("b")}}));
}

TEST(DataMatrixAggregator, TextAppendGivesAbAndPrependBa) {
  TestHost host;
  auto const input = matrix({{"v", texts("a", "b")}});
  EXPECT_THAT(aggregator(host, {}, {{"moxTextAppend", "v", "x"}, {"moxTextPrepend", "v", "y"}})
                  ->aggregate(input, false, ""),
              isMatrix({{"x", texts("ab")}, {"y", texts("ba")}}));
}

TEST(DataMatrixAggregator, WithoutIndexColumnsThereIsOneRow) {
  TestHost host;
  auto const input = matrix({{"v", ints(1, 2, 3)}});
  EXPECT_THAT(aggregator(host, {}, {{"moxIntegralSum", "v", "s"}})->aggregate(input, true, ""),
              isMatrix({{"s", ints(6)}, {"data_count", ints(3)}}));
  EXPECT_THAT(aggregator(host, {}, {})->aggregate(input, true, ""),
              isMatrix({{"data_count", ints(3)}}));
}

TEST(DataMatrixAggregator, WithoutRowsThereAreColumnsAndNoCount) {
  TestHost host;
  auto const engine =
      aggregator(host, {"missing", "k"}, {{"moxIntegralAvg", "v", "m"}, {"moxTextMax", "k", "x"}});
  EXPECT_THAT(engine->aggregate(matrix({{"v", ints()}, {"k", texts()}}), true, ""),
              isMatrix({{"k", texts()}, {"m", ints()}, {"m$Counter", ints()}, {"x", texts()}}));
  EXPECT_THAT(engine->aggregate(matrix({}), true, ""),
              isMatrix({{"m", ints()}, {"m$Counter", ints()}, {"x", texts()}}));
}

TEST(DataMatrixAggregator, PosProcessIsNotCalledWithoutRows) {
  TestHost host;
  auto const engine = aggregator(host, {}, {});
  auto const counter = std::make_shared<RowCounter>();
  engine->addFunction(counter);

  engine->aggregate(matrix({{"v", ints()}}), false, "");
  EXPECT_EQ(counter->finished, 0);
  engine->aggregate(matrix({{"v", ints(1)}}), false, "");
  EXPECT_EQ(counter->finished, 1);
}

TEST(DataMatrixAggregator, AMissingIndexColumnIsPassedOver) {
  TestHost host;
  auto const input = matrix({{"k", ints(1, 2, 1)}});
  EXPECT_THAT(aggregator(host, {"missing", "k"}, {})->aggregate(input, true, ""),
              isMatrix({{"k", ints(1, 2)}, {"data_count", ints(2, 1)}}));
  EXPECT_THAT(aggregator(host, {"missing"}, {})->aggregate(input, true, ""),
              isMatrix({{"data_count", ints(3)}}));
}

TEST(DataMatrixAggregator, AMissingSourceColumnKeepsNull) {
  TestHost host;
  auto const input = matrix({{"k", ints(1, 2)}});
  EXPECT_THAT(
      aggregator(host, {"k"}, {{"moxIntegralSum", "missing", "s"}, {"moxTextMin", "k", "t"}})
          ->aggregate(input, false, ""),
      isMatrix({{"k", ints(1, 2)}, {"s", ints(null, null)}, {"t", texts(null, null)}}));
}

TEST(DataMatrixAggregator, NullIsAKeyOfItsOwnAndAllOfAKeyCounts) {
  TestHost host;
  auto const input = matrix({{"a", ints(1, null, 1, null)}, {"b", texts("x", "", "y", "")}});
  EXPECT_THAT(
      aggregator(host, {"b", "a"}, {})->aggregate(input, true, ""),
      isMatrix(
          {{"b", texts("x", "", "y")}, {"a", ints(1, null, 1)}, {"data_count", ints(1, 2, 1)}}));
}

TEST(DataMatrixAggregator, KeepsTheKeyThatCameFirst) {
  TestHost host;
  auto const result =
      aggregator(host, {"k"}, {})->aggregate(matrix({{"k", doubles(-0.0, 0.0, 1.0)}}), true, "");
  EXPECT_THAT(result, isMatrix({{"k", doubles(-0.0, 1.0)}, {"data_count", ints(2, 1)}}));
  EXPECT_TRUE(std::signbit(std::get<double>(cellAt(*result->columnAt(0), 0))));
}

TEST(DataMatrixAggregator, ANaNStaysInTheGroupBeforeOrGoesToTheFirst) {
  TestHost host;
  EXPECT_THAT(aggregator(host, {"k"}, {})
                  ->aggregate(matrix({{"k", doubles(1.0, 2.0, kNaN, null, kNaN)}}), true, ""),
              isMatrix({{"k", doubles(1.0, 2.0, null)}, {"data_count", ints(2, 2, 1)}}));
}

TEST(DataMatrixAggregator, ANaNDoesNotMakeManyGroupsSlow) {
  TestHost host;
  std::vector<std::optional<double>> values;
  for (int i = 0; i < 400'000; ++i) {
    values.emplace_back(i % 100'000);
  }
  values.emplace_back(kNaN);
  auto const result =
      aggregator(host, {"k"}, {})->aggregate(matrix({{"k", doubles(values)}}), true, "");
  EXPECT_EQ(result->rowCount(), 100'000U);
  EXPECT_EQ(cellAt(*result->columnAt(1), 99'999), Cell(5)) << "the NaN stays where it stands";
}

TEST(DataMatrixAggregator, BlobsAreKeysByTheObject) {
  TestHost host;
  auto const one = blob("same");
  auto const other = blob("same");
  auto const result =
      aggregator(host, {"k"}, {})->aggregate(matrix({{"k", blobs(one, other, one)}}), true, "");
  EXPECT_THAT(result, isMatrix({{"k", blobs(one, other)}, {"data_count", ints(2, 1)}}));
}

TEST(DataMatrixAggregator, FunctionsMayShareATargetNameAndASource) {
  TestHost host;
  auto const input = matrix({{"v", ints(4, 8)}});
  EXPECT_THAT(
      aggregator(host, {}, {{"moxIntegralAvg", "v", "r"}, {"moxIntegralAvg", "v", "r"}})
          ->aggregate(input, false, ""),
      isMatrix({{"r", ints(6)}, {"r$Counter", ints(2)}, {"r", ints(6)}, {"r$Counter", ints(2)}}));
}

TEST(DataMatrixAggregator, LongTextsAreCopiedWhole) {
  TestHost host;
  auto input = matrix({{"k", texts("a key beyond the reference", "a key beyond the reference")},
                       {"v", texts("a value beyond the reference", "another such a value")}});
  auto const result =
      aggregator(host, {"k"}, {{"moxTextMax", "v", "x"}, {"moxTextAppend", "v", "y"}})
          ->aggregate(input, false, "");
  input.reset();
  EXPECT_THAT(result, isMatrix({{"k", texts("a key beyond the reference")},
                                {"x", texts("another such a value")},
                                {"y", texts("a value beyond the referenceanother such a value")}}));
}

TEST(DataMatrixAggregator, ALongChainOfAppendedTextsTakesNoStages) {
  TestHost host;
  std::vector<std::optional<std::string>> const pieces(200'000, "a piece of text");
  auto const result =
      aggregator(host, {}, {{"moxTextAppend", "v", "a"}, {"moxTextPrepend", "v", "p"}})
          ->aggregate(matrix({{"v", texts(pieces)}}), false, "");
  EXPECT_EQ(std::get<std::string>(cellAt(*result->columnAt(0), 0)).size(), 200'000U * 15);
  EXPECT_EQ(std::get<std::string>(cellAt(*result->columnAt(1), 0)).size(), 200'000U * 15);
}

TEST(DataMatrixAggregator, ASecondRunStartsAnew) {
  TestHost host;
  auto const engine = aggregator(host, {"k"}, {{"moxDoubleSum", "v", "s"}});
  EXPECT_THAT(engine->aggregate(matrix({{"k", ints(1)}, {"v", doubles(0.5)}}), false, ""),
              isMatrix({{"k", ints(1)}, {"s", doubles(0.5)}}));
  EXPECT_THAT(engine->aggregate(matrix({{"k", texts("x")}, {"v", doubles(7.0)}}), false, ""),
              isMatrix({{"k", texts("x")}, {"s", doubles(7.0)}}));
}

TEST(DataMatrixAggregator, ThreadsShareADefinition) {
  TestHost host;
  auto const engine =
      aggregator(host, {"k"}, {{"moxIntegralAvg", "v", "m"}, {"moxTextAppend", "t", "a"}});
  auto const input =
      matrix({{"k", ints(1, 2, 1)}, {"v", ints(2, 5, 4)}, {"t", texts("a", "b", "c")}});
  auto const expected = engine->aggregate(input, true, "");

  runInThreads(8, 50, 8,
               [&](int) { EXPECT_THAT(engine->aggregate(input, true, ""), isMatrix(expected)); });
}

TEST(DataMatrixAggregator, ResultsLookLikeTheirSources) {
  TestHost host;
  auto const input = matrix({{"k", ints(1)}});
  auto const formatter = host.get<moxGenericFormatter>("moxIntegralFormatter");
  input->columnAt(0)->setFormatter(formatter);
  auto const engine =
      aggregator(host, {"k"}, {{"moxIntegralAvg", "k", "media"}, {"moxTextMax", "k", "texto"}});
  auto const result = engine->aggregate(input, true, "");
  EXPECT_EQ(result->columnByName("k")->getFormatter(), formatter);
  EXPECT_EQ(result->columnByName("media")->getFormatter(), formatter);
  EXPECT_EQ(result->columnByName("media$Counter")->getFormatter(), nullptr);
  EXPECT_EQ(result->columnByName("texto")->getFormatter(), nullptr);
  EXPECT_EQ(result->columnByName("data_count")->getFormatter(), nullptr);
}

TEST(DataMatrixAggregator, RunsFunctionsOfAnotherLibraryRowByRow) {
  TestHost host;
  auto const engine = aggregator(host, {"k"}, {{"moxIntegralSum", "k", "s"}});
  engine->addFunction(std::make_shared<RowCounter>());
  auto const input = matrix({{"k", ints(1, 2, 1)}});

  for (int run = 0; run < 2; ++run) {
    EXPECT_THAT(engine->aggregate(input, false, ""), isMatrix({{"k", ints(1, 2)},
                                                               {"s", ints(2, 2)},
                                                               {"seen", ints(2, 1)},
                                                               {"spare", texts(null, null)}}));
  }
}

TEST(DataMatrixAggregator, CopiesRegisteredFunctionsOfAnotherLibraryWithTheirSettings) {
  TestHost host;
  host.application().addModule(
      {moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck, enterStamp, registerStamp},
      "another library");
  auto const engine = aggregator(host, {"k"}, {});
  auto const original = std::make_shared<Stamp>();
  original->text = "visto";
  engine->addFunction(original);

  EXPECT_THAT(engine->aggregate(matrix({{"k", ints(1, 2)}}), false, ""),
              isMatrix({{"k", ints(1, 2)}, {"stamp", texts("visto", "visto")}}));
  EXPECT_EQ(original->runs, 0);
}

TEST(DataMatrixAggregator, LeavesTheRowsInATemporaryTableAndGivesNoColumns) {
  TestHost host(TestHost::kMemoryDatabase);
  auto const engine = aggregator(host, {"k"}, {{"moxIntegralSum", "v", "s"}});

  auto const result =
      engine->aggregate(matrix({{"k", ints(1, 2, 1)}, {"v", ints(4, null, 6)}}), true, "soma");

  ASSERT_TRUE(result);
  EXPECT_EQ(result->columnCount(), 0U);
  auto const rows = host.application().query("select count(*), sum(s), sum(data_count) from soma",
                                             "where", 0, "", 0);
  ASSERT_TRUE(rows->step());
  EXPECT_EQ(rows->getInt(0), 2);
  EXPECT_EQ(rows->getInt(1), 10);
  EXPECT_EQ(rows->getInt(2), 3);
}

TEST(DataMatrixAggregator, ANameIsAKeyOnce) {
  TestHost host;
  auto const engine = aggregator(host, {"a", "b", "a"}, {});
  EXPECT_EQ(engine->getIndexes(), (std::vector<std::string>{"a", "b"}));
  engine->removeIndex("a");
  engine->removeIndex("missing");
  EXPECT_EQ(engine->getIndexes(), (std::vector<std::string>{"b"}));
}

TEST(DataMatrixAggregator, AFunctionIsKeptOnceByTheObject) {
  TestHost host;
  auto const engine = aggregator(host, {}, {});
  auto const one = function(host, "moxIntegralSum", "v", "s");
  auto const other = function(host, "moxIntegralSum", "v", "s");
  engine->addFunction(one);
  engine->addFunction(other);
  engine->addFunction(one);
  engine->addFunction(nullptr);
  EXPECT_EQ(engine->getFunctions(),
            (std::vector<std::shared_ptr<moxAggregationFunction>>{one, other}));
  engine->removeFunction(one);
  engine->removeFunction(nullptr);
  EXPECT_EQ(engine->getFunctions(), (std::vector<std::shared_ptr<moxAggregationFunction>>{other}));
}

TEST(DataMatrixAggregator, ColumnsAreTheIndexesAndTheTargetsWithoutCounters) {
  TestHost host;
  auto const engine = aggregator(host, {"k"},
                                 {{"moxIntegralAvg", "v", "i"},
                                  {"moxDoubleAvg", "v", "d"},
                                  {"moxTextMin", "v", "t"},
                                  {"moxDateMax", "v", "m"},
                                  {"moxBlobLast", "v", "b"}});
  engine->addFunction(std::make_shared<RowCounter>());
  EXPECT_EQ(engine->getColumns(),
            (std::vector<std::pair<std::string, Types::Types>>{{"k", Types::Int},
                                                               {"i", Types::Int},
                                                               {"d", Types::Double},
                                                               {"t", Types::Text},
                                                               {"m", Types::Date},
                                                               {"b", Types::Blob},
                                                               {"seen", Types::Int}}));
}

TEST(DataMatrixAggregator, WhatTheDatabaseRefusesIsAFailure) {
  TestHost host(TestHost::kMemoryDatabase);
  auto const engine =
      aggregator(host, {}, {{"moxIntegralSum", "v", "r"}, {"moxIntegralMin", "v", "r"}});
  EXPECT_THROW(engine->aggregate(matrix({{"v", ints(1)}}), false, "duas"), moxError)
      << "no table has two columns of one name";
}

TEST(DataMatrixAggregator, ThousandsOfFunctionsAreNoTrouble) {
  TestHost host;
  constexpr int kFunctions = 3'000;
  auto const input = matrix({{"k", ints(1, 2, 1)}});
  auto const engine = aggregator(host, {"k"}, {});
  for (int i = 0; i < kFunctions; ++i) {
    std::string const number = std::to_string(i);
    input->addColumn(column("v" + number, ints(i, null, i)));
    engine->addFunction(function(host, "moxIntegralSum", "v" + number, "s" + number));
  }
  auto const result = engine->aggregate(input, false, "");
  ASSERT_EQ(result->columnCount(), kFunctions + 1U);
  EXPECT_EQ(cellAt(*result->columnAt(kFunctions), 0), Cell(2 * (kFunctions - 1)));
  EXPECT_EQ(cellAt(*result->columnAt(kFunctions), 1), Cell(null));
}

TEST(DataMatrixAggregator, NamesMayBeEmptyOrHoldAnyBytes) {
  TestHost host;
  std::string const odd("a\0\"\xff\n", 5);
  auto const input = matrix({{"", texts("x", "x")}, {odd, ints(1, 2)}});
  EXPECT_THAT(aggregator(host, {""}, {{"moxIntegralSum", odd, odd}})->aggregate(input, false, ""),
              isMatrix({{"", texts("x")}, {odd, ints(3)}}));
}

TEST(DataMatrixAggregator, WithoutAMatrixIsAMistakeOfTheProgram) {
  TestHost host;
  EXPECT_THROW(aggregator(host, {}, {})->aggregate(nullptr, false, ""), std::invalid_argument);
}
