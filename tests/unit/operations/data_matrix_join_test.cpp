#include "mox/zyn/matrix/data_matrix_join.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "mox/core/error.h"
#include "support/matrix_builder.h"
#include "support/random_tables.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Matrix = std::shared_ptr<moxDataMatrix>;

struct Source {
  Matrix matrix;
  std::vector<std::string> columns;
};

Matrix joinOf(TestHost& host, std::vector<Source> const& sources) {
  auto const engine = host.get<moxDataMatrixJoin>("moxDataMatrixJoin");
  for (auto const& source : sources) {
    engine->pushSourceDataMatrix(source.matrix, source.columns);
  }
  return engine->process();
}

Matrix plainJoin(std::vector<Source> const& sources) {
  Matrix result = matrix({});
  unsigned int length = 0;
  for (auto const& source : sources) {
    length = std::max(length, source.matrix->rowCount());
  }
  for (auto const& source : sources) {
    for (auto const& name : source.columns) {
      auto const from = source.matrix->columnByName(name);
      auto target = column(name, {from->getType(), {}});
      for (unsigned int row = 0; row < length; ++row) {
        append(*target, row < source.matrix->rowCount() ? cellAt(*from, row) : Cell(null));
      }
      result->addColumn(target);
    }
  }
  return result;
}

}  // namespace

TEST(DataMatrixJoin, WithoutSourcesHasNoColumns) {
  TestHost host;

  EXPECT_EQ(joinOf(host, {})->columnCount(), 0U);
}

TEST(DataMatrixJoin, AShorterSourceEndsInNulls) {
  TestHost host;
  Matrix const two = matrix({{"a", ints(1, 2)}, {"t", texts("x", null)}});
  Matrix const three = matrix({{"b", ints(7, 8, 9)}});

  EXPECT_THAT(
      joinOf(host, {{two, {"a", "t"}}, {three, {"b"}}}),
      isMatrix({{"a", ints(1, 2, null)}, {"t", texts("x", null, null)}, {"b", ints(7, 8, 9)}}));
}

TEST(DataMatrixJoin, KeepsColumnsOfOneNameFromTwoSources) {
  TestHost host;

  EXPECT_THAT(
      joinOf(host, {{matrix({{"a", ints(1)}}), {"a"}}, {matrix({{"a", texts("x")}}), {"a"}}}),
      isMatrix({{"a", ints(1)}, {"a", texts("x")}}));
}

TEST(DataMatrixJoin, CountsOnlyRowsThatStandInEveryColumnOfASource) {
  TestHost host;
  Matrix const uneven = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1)}});

  EXPECT_THAT(joinOf(host, {{uneven, {"a"}}, {matrix({{"c", ints(7, 8)}}), {"c"}}}),
              isMatrix({{"a", ints(1, null)}, {"c", ints(7, 8)}}));
}

TEST(DataMatrixJoin, GivesTheSameAgainAndTakesMoreSources) {
  TestHost host;
  auto const engine = host.get<moxDataMatrixJoin>("moxDataMatrixJoin");
  Matrix const data = matrix({{"a", texts("x", null)}});
  engine->pushSourceDataMatrix(data, {"a"});
  EXPECT_THAT(engine->process(), isMatrix({{"a", texts("x", null)}}));
  EXPECT_THAT(engine->process(), isMatrix({{"a", texts("x", null)}}));

  engine->pushSourceDataMatrix(data, {"a"});
  EXPECT_THAT(engine->process(), isMatrix({{"a", texts("x", null)}, {"a", texts("x", null)}}));
}

TEST(DataMatrixJoin, AColumnThatLeftItsSourceAndLostItsRowsIsNull) {
  TestHost host;
  Matrix const data = matrix({{"a", texts("x", "y")}, {"b", ints(1, 2)}});
  auto const engine = host.get<moxDataMatrixJoin>("moxDataMatrixJoin");
  engine->pushSourceDataMatrix(data, {"a", "b"});
  auto const gone = data->columnByName("a");
  data->dropColumn(gone);
  gone->clear();

  EXPECT_THAT(engine->process(), isMatrix({{"a", texts(null, null)}, {"b", ints(1, 2)}}));
}

TEST(DataMatrixJoin, TellsWhichColumnIsMissingAndForgetsTheSource) {
  TestHost host;
  auto const engine = host.get<moxDataMatrixJoin>("moxDataMatrixJoin");

  try {
    engine->pushSourceDataMatrix(matrix({{"a", ints(1)}}), {"nota"});
    FAIL() << "a missing column must be told";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Coluna nota não localizada.");
  }
  EXPECT_THROW(engine->pushSourceDataMatrix(nullptr, {}), std::invalid_argument);

  EXPECT_EQ(engine->process()->columnCount(), 0U);
}

TEST(DataMatrixJoin, GivesWhatAPlainOneGives) {
  TestHost host;
  RandomTables random(20240306);
  for (int round = 0; round < 20000; ++round) {
    std::vector<Source> sources;
    for (std::size_t i = random.pick(4); i != 0; --i) {
      Source source{random.table(), {}};
      for (std::size_t columns = random.pick(4); columns != 0; --columns) {
        source.columns.push_back(random.columnOf(*source.matrix));
      }
      sources.push_back(source);
    }

    ASSERT_THAT(joinOf(host, sources), isMatrix(plainJoin(sources))) << "round " << round;
  }
}
