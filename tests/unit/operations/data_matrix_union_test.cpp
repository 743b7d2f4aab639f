#include "mox/zyn/matrix/data_matrix_union.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "mox/core/error.h"
#include "mox/zyn/format/text_formatter.h"
#include "support/foreign_column.h"
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

Matrix unionOf(TestHost& host, std::vector<Source> const& sources, std::string const& table = "") {
  auto const engine = host.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  for (auto const& source : sources) {
    engine->pushSourceDataMatrix(source.matrix, source.columns);
  }
  return engine->process(table);
}

/// The union as a clerk would make it: all nulls first, then cell by cell.
Matrix plainUnion(std::vector<Source> const& sources) {
  Matrix result = matrix({});
  unsigned int total = 0;
  for (auto const& source : sources) {
    total += source.matrix->rowCount();
  }
  for (std::size_t i = 0; !sources.empty() && i < sources.front().columns.size(); ++i) {
    auto const first = sources.front().matrix->columnByName(sources.front().columns[i]);
    auto target = column(first->getName(), {first->getType(), {}});
    for (unsigned int row = 0; row < total; ++row) {
      target->appendNull();
    }
    result->addColumn(target);
  }
  for (std::size_t i = 0; i < result->columnCount(); ++i) {
    auto const to = result->columnAt(static_cast<unsigned int>(i))->begin();
    for (auto const& source : sources) {
      bool const hasColumn = i < source.columns.size();
      auto const from =
          hasColumn ? source.matrix->columnByName(source.columns[i])->begin() : nullptr;
      for (unsigned int row = 0; row < source.matrix->rowCount(); ++row, to->next()) {
        if (!hasColumn || !from->goTo(row)) {
          continue;
        }
        auto const number = std::dynamic_pointer_cast<moxIteratorBase<int>>(from);
        auto const wide = std::dynamic_pointer_cast<moxIteratorBase<double>>(to);
        if (number && wide) {
          if (!number->isNull()) {
            wide->set(number->get());
          }
        } else {
          to->set(from);
        }
      }
    }
  }
  return result;
}

}  // namespace

TEST(DataMatrixUnion, WithoutSourcesHasNoColumns) {
  TestHost host;

  Matrix const result = unionOf(host, {});

  ASSERT_TRUE(result);
  EXPECT_EQ(result->columnCount(), 0U);
}

TEST(DataMatrixUnion, OfSourcesWithoutRowsHasTheColumnsOfTheFirst) {
  TestHost host;

  EXPECT_THAT(unionOf(host, {{matrix({{"a", ints()}, {"b", texts()}}), {"b", "a"}},
                             {matrix({{"x", ints()}}), {"x"}}}),
              isMatrix({{"b", texts()}, {"a", ints()}}));
}

TEST(DataMatrixUnion, StacksByPlaceAndNotByName) {
  TestHost host;
  Matrix const first = matrix({{"aluno", texts("Ana", null)}, {"nota", ints(1, 2)}});
  Matrix const second = matrix({{"nota", ints(3)}, {"aluno", texts("Bia")}});

  EXPECT_THAT(unionOf(host, {{first, {"aluno", "nota"}}, {second, {"aluno", "nota"}}}),
              isMatrix({{"aluno", texts("Ana", null, "Bia")}, {"nota", ints(1, 2, 3)}}));
  EXPECT_THAT(unionOf(host, {{first, {"aluno", "nota"}}, {second, {"nota", "aluno"}}}),
              isMatrix({{"aluno", texts("Ana", null, null)}, {"nota", ints(1, 2, null)}}));
}

TEST(DataMatrixUnion, ANullStaysNullAlsoWhereAWholeNumberMeetsNumbers) {
  TestHost host;

  EXPECT_THAT(unionOf(host, {{matrix({{"v", doubles(0.5, null)}}), {"v"}},
                             {matrix({{"v", ints(7, null)}}), {"v"}}}),
              isMatrix({{"v", doubles(0.5, null, 7.0, null)}}));
}

TEST(DataMatrixUnion, NumbersAmongWholeNumbersAreNulls) {
  TestHost host;

  EXPECT_THAT(
      unionOf(host, {{matrix({{"v", ints(7)}}), {"v"}}, {matrix({{"v", doubles(0.5)}}), {"v"}}}),
      isMatrix({{"v", ints(7, null)}}));
}

TEST(DataMatrixUnion, ALaterSourceMayHaveFewerColumnsOrMore) {
  TestHost host;
  Matrix const wide = matrix({{"a", ints(1)}, {"b", texts("x")}});
  Matrix const narrow = matrix({{"a", ints(2)}});

  EXPECT_THAT(unionOf(host, {{wide, {"a", "b"}}, {narrow, {"a"}}}),
              isMatrix({{"a", ints(1, 2)}, {"b", texts("x", null)}}));
  EXPECT_THAT(unionOf(host, {{narrow, {"a"}}, {wide, {"a", "b"}}}), isMatrix({{"a", ints(2, 1)}}));
}

TEST(DataMatrixUnion, TellsWhichColumnIsMissingAndForgetsTheSource) {
  TestHost host;
  auto const engine = host.get<moxDataMatrixUnion>("moxDataMatrixUnion");

  try {
    engine->pushSourceDataMatrix(matrix({{"a", ints(1)}}), {"a", "nota"});
    FAIL() << "a missing column must be told";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Coluna nota não localizada.");
  }
  EXPECT_THROW(engine->pushSourceDataMatrix(nullptr, {}), std::invalid_argument);

  EXPECT_EQ(engine->process("")->columnCount(), 0U);
}

TEST(DataMatrixUnion, CountsOnlyRowsThatStandInEveryColumnOfASource) {
  TestHost host;
  Matrix const uneven = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1)}});

  EXPECT_THAT(unionOf(host, {{uneven, {"a"}}, {matrix({{"a", ints(9)}}), {"a"}}}),
              isMatrix({{"a", ints(1, 9)}}));
}

TEST(DataMatrixUnion, ASourceMayComeTwice) {
  TestHost host;
  Matrix const data = matrix({{"a", texts("x", "a text beyond the reference")}, {"b", ints(1, 2)}});

  EXPECT_THAT(unionOf(host, {{data, {"a", "a"}}, {data, {"a", "b"}}}),
              isMatrix({{"a", texts("x", "a text beyond the reference", "x",
                                    "a text beyond the reference")},
                        {"a", texts("x", "a text beyond the reference", null, null)}}));
}

TEST(DataMatrixUnion, AColumnThatLeftItsSourceAndLostItsRowsIsNull) {
  TestHost host;
  Matrix const data = matrix({{"a", texts("x", "y", "z")}, {"b", ints(1, 2, 3)}});
  auto const engine = host.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  engine->pushSourceDataMatrix(data, {"a", "b"});
  auto const gone = data->columnByName("a");
  data->dropColumn(gone);
  gone->clear();

  EXPECT_THAT(engine->process(""),
              isMatrix({{"a", texts(null, null, null)}, {"b", ints(1, 2, 3)}}));
}

TEST(DataMatrixUnion, GivesTheSameAgain) {
  TestHost host;
  auto const engine = host.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  engine->pushSourceDataMatrix(matrix({{"a", texts("a text beyond the reference", null)}}), {"a"});

  Matrix const first = engine->process("");

  EXPECT_THAT(engine->process(""), isMatrix(first));
}

TEST(DataMatrixUnion, KeepsTheFormattersOfTheFirstSource) {
  TestHost host;
  auto const formatter = host.get<moxGenericFormatter>("moxTextFormatter");
  Matrix const first = matrix({{"a", texts("x")}});
  first->columnAt(0)->setFormatter(formatter);

  Matrix const result = unionOf(host, {{first, {"a"}}, {matrix({{"a", texts("y")}}), {"a"}}});

  EXPECT_EQ(result->columnAt(0)->getFormatter(), formatter);
}

TEST(DataMatrixUnion, LeavesTheRowsInATemporaryTableToo) {
  TestHost host(TestHost::kMemoryDatabase);

  Matrix const result = unionOf(
      host, {{matrix({{"a", ints(1, null)}}), {"a"}}, {matrix({{"a", ints(3)}}), {"a"}}}, "junto");

  EXPECT_THAT(result, isMatrix({{"a", ints(1, null, 3)}}));
  auto const rows =
      host.application().query("select count(*), sum(a) from junto", "where", 0, "", 0);
  ASSERT_TRUE(rows->step());
  EXPECT_EQ(rows->getInt(0), 3);
  EXPECT_EQ(rows->getInt(1), 4);
}

TEST(DataMatrixUnion, GivesWhatAPlainOneGives) {
  TestHost host;
  RandomTables random(20240305);
  for (int round = 0; round < 20000; ++round) {
    std::vector<Source> sources;
    for (std::size_t i = random.pick(4); i != 0; --i) {
      Source source{random.table(), {}};
      for (std::size_t columns = random.pick(4); columns != 0; --columns) {
        source.columns.push_back(random.columnOf(*source.matrix));
      }
      sources.push_back(source);
    }

    ASSERT_THAT(unionOf(host, sources), isMatrix(plainUnion(sources))) << "round " << round;
  }
}
