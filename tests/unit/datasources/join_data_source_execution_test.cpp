#include <gtest/gtest.h>

#include <limits>
#include <typeinfo>

#include "definition_fixture.h"
#include "mox/zyn/datasources/join_data_source.h"
#include "mox/zyn/format/text_formatter.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"

using namespace mox_test;

namespace {

using JoinData = moxJoinDataSource::JoinData;
using ColumnData = JoinData::ColumnData;
using JData = JoinData::JData;
using Matrix = std::shared_ptr<moxDataMatrix>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Columns of one name there and here.
std::vector<ColumnData> taking(std::vector<std::string> const& names) {
  std::vector<ColumnData> columns;
  for (auto const& name : names) {
    columns.push_back({name, name, moxDataMatrixTypes::Int});
  }
  return columns;
}

/// Where a column of the source equals one of the result.
JData on(std::string const& sourceColumn, std::string const& resultColumn) {
  return {sourceColumn, "unused", "unused", resultColumn};
}

class JoinDataSourceExecutionTest : public DefinitionTest {
 protected:
  JoinDataSourceExecutionTest() : context_(newContext()) {}

  void have(std::string const& name, std::vector<NamedCells> const& columns) {
    have(name, matrix(columns));
  }
  void have(std::string const& name, Matrix const& matrix) {
    ASSERT_TRUE(context_->registerDataMatrix(name, matrix));
  }

  std::shared_ptr<moxDataSourceExecution> execution(std::vector<JoinData> const& sources) {
    auto const join = host_.get<moxJoinDataSource>("moxJoinDataSource");
    join->setName("joined");
    join->setSources(sources);
    return join->createExecution();
  }

  Matrix join(std::vector<JoinData> const& sources) {
    EXPECT_TRUE(execution(sources)->generateDataMatrix(context_, "result"));
    return context_->getDataMatrix("result");
  }

  std::string failureOfJoin(std::vector<JoinData> const& sources) {
    return failureOf([&] { execution(sources)->generateDataMatrix(context_, "result"); });
  }

  std::shared_ptr<moxDataSourceExecutionContext> const context_;
};

}  // namespace

TEST_F(JoinDataSourceExecutionTest, WithoutConditionsTheFirstRowsStandInPlaceAndTheOthersAtTheEnd) {
  have("a", {{"x", ints(1, 2)}});
  have("b", {{"y", texts("p", "q", "r")}});

  EXPECT_THAT(
      join({{"a", taking({"x"}), {}}, {"b", taking({"y"}), {}}}),
      isMatrix({{"x", ints(1, 2, 1, 1, 2, 2)}, {"y", texts("p", "p", "q", "r", "q", "r")}}));
}

TEST_F(JoinDataSourceExecutionTest, ARowThatMeetsTwoStandsAndOneCopyOfItGoesToTheEnd) {
  have("a", {{"k", ints(1, 2, 3)}});
  have("b", {{"id", ints(3, 1, 2, 1)}, {"v", texts("c", "a", "b", "A")}});

  EXPECT_THAT(join({{"a", taking({"k"}), {}}, {"b", taking({"v"}), {on("id", "k")}}}),
              isMatrix({{"k", ints(1, 2, 3, 1)}, {"v", texts("a", "b", "c", "A")}}));
}

TEST_F(JoinDataSourceExecutionTest, ARowThatMeetsNoneIsGoneAndTheOthersKeepTheirOrder) {
  have("a", {{"k", ints(4, 1, 5, 2)}});
  have("b", {{"id", ints(1, 2, 3, 4)}});

  EXPECT_THAT(join({{"a", taking({"k"}), {}}, {"b", taking({"id"}), {on("id", "k")}}}),
              isMatrix({{"k", ints(4, 1, 2)}, {"id", ints(4, 1, 2)}}));
}

TEST_F(JoinDataSourceExecutionTest, AnySourceWithoutRowsGivesAllColumnsAndNoRows) {
  have("a", {{"x", ints(1, 2)}});
  have("b", {{"y", texts()}});

  EXPECT_THAT(join({{"a", taking({"x"}), {}}, {"b", taking({"y"}), {on("nobody", "x")}}}),
              isMatrix({{"x", ints()}, {"y", texts()}}));
}

TEST_F(JoinDataSourceExecutionTest, ARelationThatSubstitutesASourceCountsForItsColumnsAndItsRows) {
  have("a", {{"k", ints(1, 2)}});
  have("b", {{"other", ints(9)}});
  have("b in context", {{"id", ints(2)}, {"v", texts("two")}});
  auto const run = execution({{"a", taking({"k"}), {}}, {"b", taking({"v"}), {on("id", "k")}}});
  run->setDataSourceExternalRelation({{"b", "b in context"}, {"b", "nowhere"}});

  EXPECT_TRUE(run->generateDataMatrix(context_, "result"));

  EXPECT_THAT(context_->getDataMatrix("result"), isMatrix({{"k", ints(2)}, {"v", texts("two")}}));
}

TEST_F(JoinDataSourceExecutionTest, ALaterSourceDoesNotSeeRowsThatAreGone) {
  have("a", {{"k", ints(1, 2)}});
  have("b", {{"id", ints(2)}});
  have("c", {{"z", texts("p", "q")}});

  EXPECT_THAT(join({{"a", taking({"k"}), {}},
                    {"b", taking({"id"}), {on("id", "k")}},
                    {"c", taking({"z"}), {}}}),
              isMatrix({{"k", ints(2, 2)}, {"id", ints(2, 2)}, {"z", texts("p", "q")}}));
}

TEST_F(JoinDataSourceExecutionTest, OnceAllRowsAreGoneALaterSourceBringsNone) {
  have("a", {{"k", ints(1)}});
  have("b", {{"id", ints(2)}});
  have("c", {{"z", ints(7, 8)}});

  EXPECT_THAT(join({{"a", taking({"k"}), {}},
                    {"b", taking({"id"}), {on("id", "k")}},
                    {"c", taking({"z"}), {}}}),
              isMatrix({{"k", ints()}, {"id", ints()}, {"z", ints()}}));
}

TEST_F(JoinDataSourceExecutionTest, AFirstSourceWithConditionsMeetsNothing) {
  have("a", {{"k", ints(1, 2)}});

  EXPECT_THAT(join({{"a", taking({"k"}), {on("k", "k")}}}), isMatrix({{"k", ints()}}));
}

TEST_F(JoinDataSourceExecutionTest, ASourceBehindItStartsTheResultAnewWithNullsElsewhere) {
  have("a", {{"k", ints(1, 2)}});
  have("b", {{"v", texts("p", "q")}});

  EXPECT_THAT(join({{"a", taking({"k"}), {on("k", "k")}}, {"b", taking({"v"}), {}}}),
              isMatrix({{"k", ints(null, null)}, {"v", texts("p", "q")}}));
}

TEST_F(JoinDataSourceExecutionTest, TellsWhichColumnOfWhichDefinedSourceIsMissing) {
  have("a", {{"x", ints(1)}});
  have("b in context", {{"y", ints(1)}});
  auto const run = execution({{"a", taking({"x"}), {}}, {"b", taking({"nota"}), {}}});
  run->setDataSourceExternalRelation({{"b", "b in context"}});

  EXPECT_EQ(failureOf([&] { run->generateDataMatrix(context_, ""); }),
            "JoinDataSource: coluna nota do source b não localizada.");
  EXPECT_FALSE(context_->getDataMatrix("joined"));
}

TEST_F(JoinDataSourceExecutionTest, BothColumnsOfAConditionMustBeThere) {
  have("a", {{"x", ints(1)}});
  have("b", {{"y", ints(1)}});

  EXPECT_EQ(failureOfJoin({{"a", taking({"x"}), {}}, {"b", taking({"y"}), {on("nota", "x")}}}),
            "JoinDataSource: coluna nota do source b não localizada.");
  EXPECT_EQ(failureOfJoin({{"a", taking({"x"}), {}}, {"b", taking({"y"}), {on("y", "aluno")}}}),
            "JoinDataSource: coluna aluno do source b não localizada.");
}

TEST_F(JoinDataSourceExecutionTest, AMissingInputIsAnsweredWithFalse) {
  have("a", {{"x", ints(1)}});

  EXPECT_FALSE(execution({{"a", taking({"x"}), {}}, {"b", taking({"y"}), {}}})
                   ->generateDataMatrix(context_, "result"));
  EXPECT_FALSE(context_->getDataMatrix("result"));
}

TEST_F(JoinDataSourceExecutionTest, TheResultIsNamedAsAskedOrLikeTheDefinition) {
  have("a", {{"x", ints(1)}});

  EXPECT_TRUE(execution({{"a", taking({"x"}), {}}})->generateDataMatrix(context_, ""));
  EXPECT_THAT(context_->getDataMatrix("joined"), isMatrix({{"x", ints(1)}}));
  EXPECT_TRUE(execution({{"a", taking({"x"}), {}}})->generateDataMatrix(context_, "other"));
  EXPECT_THAT(context_->getDataMatrix("other"), isMatrix({{"x", ints(1)}}));
}

TEST_F(JoinDataSourceExecutionTest, ATakenNameIsOnlyToldForASourceWithoutRows) {
  have("a", {{"x", ints(1)}});
  have("none", {{"x", ints()}});
  have("taken", {{"x", ints(5)}});

  EXPECT_TRUE(execution({{"a", taking({"x"}), {}}})->generateDataMatrix(context_, "taken"));
  EXPECT_FALSE(execution({{"none", taking({"x"}), {}}})->generateDataMatrix(context_, "taken"));
  EXPECT_THAT(context_->getDataMatrix("taken"), isMatrix({{"x", ints(5)}}));
}

TEST_F(JoinDataSourceExecutionTest, WithoutSourcesTheResultHasNoColumns) {
  Matrix const result = join({});

  ASSERT_TRUE(result);
  EXPECT_EQ(result->columnCount(), 0U);
}

TEST_F(JoinDataSourceExecutionTest, OfSeveralColumnsWithOneAliasTheFirstHasTheLastValues) {
  have("a", {{"x", ints(1)}});
  have("b", {{"y", ints(2)}, {"z", ints(3)}});

  EXPECT_THAT(
      join({{"a", {{"x", "v", moxDataMatrixTypes::Int}}, {}},
            {"b", {{"y", "v", moxDataMatrixTypes::Int}, {"z", "v", moxDataMatrixTypes::Int}}, {}}}),
      isMatrix({{"v", ints(3)}, {"v", ints(null)}, {"v", ints(null)}}));
}

TEST_F(JoinDataSourceExecutionTest,
       ACopyKeepsTheFirstMeetingsValueWhereTheLastOfAnAliasIsOfAnotherKind) {
  have("a", {{"x", ints(0)}});
  have("b", {{"y", ints(1, 2)}, {"z", texts("p", "q")}});

  EXPECT_THAT(
      join(
          {{"a", taking({"x"}), {}},
           {"b", {{"y", "v", moxDataMatrixTypes::Int}, {"z", "v", moxDataMatrixTypes::Text}}, {}}}),
      isMatrix({{"x", ints(0, 0)}, {"v", ints(1, 1)}, {"v", texts(null, null)}}));
}

TEST_F(JoinDataSourceExecutionTest, NullsMeetNulls) {
  have("a", {{"k", ints(null, 0, 1)}});
  have("b", {{"id", ints(1, null)}, {"v", texts("one", "none")}});

  EXPECT_THAT(join({{"a", taking({"k"}), {}}, {"b", taking({"v"}), {on("id", "k")}}}),
              isMatrix({{"k", ints(null, 1)}, {"v", texts("none", "one")}}));
}

TEST_F(JoinDataSourceExecutionTest, ANaNMeetsEveryNumberAndNoNull) {
  have("a", {{"k", doubles(kNaN, 1.0, null)}});
  have("b", {{"id", doubles(2.0, null, kNaN, 1.0)}, {"v", ints(1, 2, 3, 4)}});

  EXPECT_THAT(
      join({{"a", taking({"k"}), {}}, {"b", taking({"v"}), {on("id", "k")}}}),
      isMatrix({{"k", doubles(kNaN, 1.0, null, kNaN, kNaN, 1.0)}, {"v", ints(1, 3, 2, 3, 4, 4)}}));
}

TEST_F(JoinDataSourceExecutionTest, MinusZeroMeetsZeroAndEachKeepsItsSign) {
  have("a", {{"k", doubles(-0.0)}});
  have("b", {{"id", doubles(0.0)}});

  EXPECT_THAT(join({{"a", taking({"k"}), {}}, {"b", taking({"id"}), {on("id", "k")}}}),
              isMatrix({{"k", doubles(-0.0)}, {"id", doubles(0.0)}}));
}

TEST_F(JoinDataSourceExecutionTest, AllConditionsOfASourceMustHold) {
  have("a", {{"k", ints(1, 1, 2)}, {"l", texts("p", "a text of many bytes", "p")}});
  have("b", {{"id", ints(1, 2, 1)},
             {"t", texts("a text of many bytes", "p", "p")},
             {"v", ints(1, 2, 3)}});

  EXPECT_THAT(
      join({{"a", taking({"k", "l"}), {}}, {"b", taking({"v"}), {on("id", "k"), on("t", "l")}}}),
      isMatrix({{"k", ints(1, 1, 2)},
                {"l", texts("p", "a text of many bytes", "p")},
                {"v", ints(3, 1, 2)}}));
}

TEST_F(JoinDataSourceExecutionTest, AKeyThatTheSourceOverwritesChangesWhatFollowingRowsMeet) {
  have("a", {{"k", ints(1)}});
  have("b", {{"from", ints(1, 2, 1, 2)}, {"to", ints(2, 7, 8, 9)}});

  // The first row is met with 1 and leaves 2, which the second and the fourth meet.
  EXPECT_THAT(join({{"a", taking({"k"}), {}},
                    {"b", {{"to", "k", moxDataMatrixTypes::Int}}, {on("from", "k")}}}),
              isMatrix({{"k", ints(2, 7, 9)}, {"k", ints(null, null, null)}}));
}

TEST_F(JoinDataSourceExecutionTest, AKeyThatIsOverwrittenWithItselfStaysTheSame) {
  have("a", {{"id", ints(1, 2)}});
  have("b", {{"id", ints(1, 3, 1)}, {"v", ints(7, 8, 9)}});

  EXPECT_THAT(join({{"a", taking({"id"}), {}}, {"b", taking({"id", "v"}), {on("id", "id")}}}),
              isMatrix({{"id", ints(1, 1)}, {"id", ints(null, null)}, {"v", ints(7, 9)}}));
}

TEST_F(JoinDataSourceExecutionTest, AConditionOnAColumnThatALaterSourceFillsMeetsNulls) {
  have("a", {{"x", ints(1)}});
  have("b", {{"y", ints(5, null)}, {"v", ints(1, 2)}});
  have("c", {{"z", ints(9)}});

  EXPECT_THAT(join({{"a", taking({"x"}), {}},
                    {"b", taking({"v"}), {on("y", "z")}},
                    {"c", taking({"z"}), {}}}),
              isMatrix({{"x", ints(1)}, {"v", ints(2)}, {"z", ints(9)}}));
}

TEST_F(JoinDataSourceExecutionTest, ColumnsOfDifferentKindsCannotBeCompared) {
  have("a", {{"k", ints(1)}});
  have("b", {{"id", texts("1")}, {"v", ints(1)}});
  std::vector<JoinData> const sources{{"a", taking({"k"}), {}},
                                      {"b", taking({"v"}), {on("id", "k")}}};

  EXPECT_EQ(failureOfJoin(sources),
            "JoinDataSource: coluna id do source b não pode ser comparada com a coluna k: os tipos "
            "são diferentes.");
  EXPECT_THROW(execution(sources)->generateDataMatrix(context_, "r"), std::bad_cast);
}

TEST_F(JoinDataSourceExecutionTest, AConditionBehindOneThatNeverHoldsIsNotTried) {
  have("a", {{"k", ints(1)}});
  have("b", {{"id", texts("1")}, {"v", ints(2)}});
  std::vector<JoinData> const never{{"a", taking({"k"}), {}},
                                    {"b", taking({"v"}), {on("v", "k"), on("id", "k")}}};
  std::vector<JoinData> const tried{{"a", taking({"k"}), {}},
                                    {"b", taking({"v"}), {on("id", "k"), on("v", "k")}}};

  EXPECT_THAT(join(never), isMatrix({{"k", ints()}, {"v", ints()}}));
  EXPECT_NE(failureOfJoin(tried), "");
}

TEST_F(JoinDataSourceExecutionTest, AResultOfTooManyRowsIsRefusedBeforeItIsMade) {
  Matrix const many = matrix({{"x", ints()}});
  for (int i = 0; i <= 10'000; ++i) {
    append(*many->columnAt(0), Cell(1));
  }
  have("a", many);

  std::string const refused = "Resultado grande demais: 100020001 linhas, e o limite é 100000000.";
  EXPECT_EQ(failureOfJoin({{"a", taking({"x"}), {}}, {"a", taking({"x"}), {}}}), refused);
  EXPECT_EQ(failureOfJoin({{"a", taking({"x"}), {}},
                           {"a", {{"x", "y", moxDataMatrixTypes::Int}}, {on("x", "x")}}}),
            refused);
}

TEST_F(JoinDataSourceExecutionTest, ProductsOfProductsAreRefusedWithoutOverflow) {
  Matrix const many = matrix({{"x", ints()}});
  for (int i = 0; i < 2'000; ++i) {
    append(*many->columnAt(0), Cell(i));
  }
  have("a", many);
  JoinData const one{"a", taking({"x"}), {}};

  EXPECT_EQ(failureOfJoin({one, one, one, one}),
            "Resultado grande demais: 8000000000 linhas, e o limite é 100000000.");
}

TEST_F(JoinDataSourceExecutionTest, ARowCountsOnlyWhereEveryColumnOfItsSourceHasIt) {
  have("a", {{"x", ints(1, 2, 3)}, {"not taken", ints(1)}});

  EXPECT_THAT(join({{"a", taking({"x"}), {}}}), isMatrix({{"x", ints(1)}}));
}

TEST_F(JoinDataSourceExecutionTest, ColumnsKeepTheirFormatterUnderTheAlias) {
  auto const from = matrix({{"x", texts("p")}});
  auto const formatter = host_.get<moxTextFormatter>("moxTextFormatter");
  from->columnAt(0)->setFormatter(formatter);
  have("a", from);

  Matrix const result = join({{"a", {{"x", "y", moxDataMatrixTypes::Text}}, {}}});

  EXPECT_EQ(result->columnAt(0)->getName(), "y");
  EXPECT_EQ(result->columnAt(0)->getFormatter(), formatter);
}

TEST_F(JoinDataSourceExecutionTest, TheKindOfAColumnIsThatOfTheSourceAndNotOfTheDefinition) {
  have("a", {{"x", texts("p")}});

  EXPECT_THAT(join({{"a", {{"x", "x", moxDataMatrixTypes::Int}}, {}}}),
              isMatrix({{"x", texts("p")}}));
}

TEST_F(JoinDataSourceExecutionTest, ColumnsOfForeignMakeAreJoinedAsOurs) {
  auto const foreign = matrix({});
  foreign->addColumn(std::make_shared<ForeignTextColumn>(
      "id", std::vector<std::optional<std::string>>{"b", std::nullopt, "a"}));
  have("a", {{"k", texts("a", null, "c", "b")}});
  have("b", foreign);

  EXPECT_THAT(join({{"a", taking({"k"}), {}}, {"b", taking({"id"}), {on("id", "k")}}}),
              isMatrix({{"k", texts("a", null, "b")}, {"id", texts("a", null, "b")}}));
}

TEST_F(JoinDataSourceExecutionTest, TheSourcesStayAsTheyWere) {
  auto const a = matrix({{"k", ints(1, 2)}});
  auto const b = matrix({{"k", ints(1, 1)}});
  have("a", a);
  have("b", b);

  join({{"a", taking({"k"}), {}}, {"b", taking({"k"}), {on("k", "k")}}});

  EXPECT_THAT(a, isMatrix({{"k", ints(1, 2)}}));
  EXPECT_THAT(b, isMatrix({{"k", ints(1, 1)}}));
}
