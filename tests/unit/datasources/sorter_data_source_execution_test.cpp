#include "zyn/datasources/sorter_data_source_execution.h"

#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

using ColumnInfo = moxSorterDataSource::ColumnInfo;
using Context = std::shared_ptr<moxDataSourceExecutionContext>;
using Answers = std::vector<std::shared_ptr<moxDataSourceOptionData>>;

/// An answer to an option of another kind.
class OtherAnswer final : public moxDataSourceOptionData {
 public:
  std::string name() const override { return "testOtherAnswer"; }
};

class SorterDataSourceExecutionTest : public DefinitionTest {
 protected:
  SorterDataSourceExecutionTest() {
    definition_->setName("Em ordem");
    definition_->setDataSourceName("t");
  }

  void column(std::string const& name, ColumnInfo::SortMode mode) {
    definition_->setOrderColumn(name, name, mode);
  }

  static std::shared_ptr<moxDataMatrix> table() {
    return matrix({{"a", ints(2, 1, 2, null)}, {"b", texts("x", "y", "w", "z")}});
  }

  Context contextOf(std::shared_ptr<moxDataMatrix> const& input) {
    auto made = newContext();
    made->registerDataMatrix("t", input);
    return made;
  }

  bool run(Context const& context, std::string const& target = "") {
    return definition_->createExecution()->generateDataMatrix(context, target);
  }

  /// The rows in the order of the definition, or of the answers.
  std::shared_ptr<moxDataMatrix> sorted(Answers const& answers = {}) {
    auto const context = contextOf(table());
    context->setDataSourceOptions("Em ordem", answers);
    EXPECT_TRUE(run(context));
    return context->getDataMatrix("Em ordem");
  }

  std::shared_ptr<moxDataSourceOptionData> answer(std::string const& columnName, bool descending) {
    auto made = std::dynamic_pointer_cast<moxSorterDataSourceOptionData>(
        definition_->options().at(0)->createOptionData());
    made->setOrder(columnName, descending);
    return made;
  }

  std::shared_ptr<moxSorterDataSource> definition_ =
      host_.get<moxSorterDataSource>("moxSorterDataSource");
};

MatrixMatcher byBDescending() {
  return isMatrix({{"a", ints(null, 1, 2, 2)}, {"b", texts("z", "y", "x", "w")}});
}

}  // namespace

TEST_F(SorterDataSourceExecutionTest, IsNamedAndHasTheFiltersOfTheDefinition) {
  auto const made = definition_->createExecution();
  EXPECT_EQ(made->name(), "moxSorterDataSourceExecution");
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(SorterDataSourceExecutionTest, NotUserDefinedSortsByAllColumnsAndWithoutDirectionAscending) {
  definition_->setUserDefined(false);
  column("a", ColumnInfo::kSemDirecao);
  column("b", ColumnInfo::kDecrescente);
  EXPECT_THAT(sorted(), isMatrix({{"a", ints(null, 1, 2, 2)}, {"b", texts("z", "y", "x", "w")}}));
}

TEST_F(SorterDataSourceExecutionTest, NotUserDefinedHasNoEarForAnswers) {
  column("a", ColumnInfo::kCrescente);
  column("b", ColumnInfo::kCrescente);
  auto const chosen = answer("b", true);
  definition_->setUserDefined(false);
  EXPECT_THAT(sorted({chosen}),
              isMatrix({{"a", ints(null, 1, 2, 2)}, {"b", texts("z", "y", "w", "x")}}));
}

TEST_F(SorterDataSourceExecutionTest, NotUserDefinedWithoutColumnsGivesTheInputASecondName) {
  definition_->setUserDefined(false);
  auto const input = table();
  auto const context = contextOf(input);
  EXPECT_TRUE(run(context));
  EXPECT_EQ(context->getDataMatrix("Em ordem"), input);
}

TEST_F(SorterDataSourceExecutionTest, WithoutAnAnswerOnlyTheFirstColumnWithADirectionCounts) {
  column("a", ColumnInfo::kSemDirecao);
  column("b", ColumnInfo::kDecrescente);
  EXPECT_THAT(sorted(), byBDescending());
  column("b", ColumnInfo::kCrescente);
  EXPECT_THAT(sorted(), isMatrix({{"a", ints(2, 2, 1, null)}, {"b", texts("w", "x", "y", "z")}}));
}

TEST_F(SorterDataSourceExecutionTest, WithoutAnAnswerFurtherDirectionsAreNotAsked) {
  column("a", ColumnInfo::kDecrescente);
  column("b", ColumnInfo::kCrescente);
  EXPECT_THAT(sorted(), isMatrix({{"a", ints(2, 2, 1, null)}, {"b", texts("x", "w", "y", "z")}}));
}

TEST_F(SorterDataSourceExecutionTest, WithoutAnAnswerAndDirectionsTheInputIsRegisteredAsItIs) {
  column("a", ColumnInfo::kSemDirecao);
  auto const input = table();
  auto const context = contextOf(input);
  EXPECT_TRUE(run(context));
  EXPECT_EQ(context->getDataMatrix("Em ordem"), input);
}

TEST_F(SorterDataSourceExecutionTest, AnAnswerTakesThePlaceOfTheDefinitionsOrder) {
  column("a", ColumnInfo::kDecrescente);
  EXPECT_THAT(sorted({answer("b", true)}), byBDescending());
}

TEST_F(SorterDataSourceExecutionTest, SeveralAnswersSortInTheirOrder) {
  EXPECT_THAT(sorted({answer("a", true), answer("b", false)}),
              isMatrix({{"a", ints(2, 2, 1, null)}, {"b", texts("w", "x", "y", "z")}}));
}

TEST_F(SorterDataSourceExecutionTest, AnswersOfOtherKindsArePassedOver) {
  EXPECT_THAT(sorted({std::make_shared<OtherAnswer>(), nullptr, answer("b", true)}),
              byBDescending());
}

TEST_F(SorterDataSourceExecutionTest, AnswersOfWhichNoneIsAnOrderAreAnError) {
  auto const context = contextOf(table());
  context->setDataSourceOptions("alvo", {std::make_shared<OtherAnswer>()});
  EXPECT_EQ(failureOf([&] { run(context, "alvo"); }), "Impossível criar ordenador Em ordem");
  EXPECT_EQ(context->getDataMatrix("alvo"), nullptr);
}

TEST_F(SorterDataSourceExecutionTest, AnswersAreThoseForTheNameOfTheResult) {
  column("a", ColumnInfo::kDecrescente);
  auto const context = contextOf(table());
  context->setDataSourceOptions("Em ordem", {answer("a", false)});
  context->setDataSourceOptions("alvo", {answer("b", true)});
  EXPECT_TRUE(run(context, "alvo"));
  EXPECT_THAT(context->getDataMatrix("alvo"), byBDescending());
  EXPECT_EQ(context->getDataMatrix("Em ordem"), nullptr);
}

TEST_F(SorterDataSourceExecutionTest, AnAnswerThatNobodyFilledLeavesTheRowsAsTheyAre) {
  column("a", ColumnInfo::kDecrescente);
  EXPECT_THAT(sorted({definition_->options().at(0)->createOptionData()}), isMatrix(table()));
}

TEST_F(SorterDataSourceExecutionTest, AColumnThatTheInputLacksLeavesTheRowsAsTheyAre) {
  column("nenhuma", ColumnInfo::kCrescente);
  auto const input = table();
  auto const context = contextOf(input);
  EXPECT_TRUE(run(context));
  EXPECT_EQ(context->getDataMatrix("Em ordem"), input);
}

TEST_F(SorterDataSourceExecutionTest, TheInputStaysAsItIsAlsoWithReplace) {
  auto const replacing = read<moxSorterDataSource>(
      "<moxSorterDataSource name=\"s\" source=\"t\" replace=\"yes\" userDefined=\"no\">"
      "<column name=\"a\"/></moxSorterDataSource>");
  auto const input = table();
  auto const context = contextOf(input);
  EXPECT_TRUE(replacing->createExecution()->generateDataMatrix(context, ""));
  EXPECT_THAT(input, isMatrix(table()));
  EXPECT_EQ(context->getDataMatrix("t"), input);
  EXPECT_NE(context->getDataMatrix("s"), input);
}

TEST_F(SorterDataSourceExecutionTest, AnInputWithoutRowsGivesItsColumns) {
  column("a", ColumnInfo::kCrescente);
  auto const context = contextOf(matrix({{"a", ints()}, {"b", texts()}}));
  EXPECT_TRUE(run(context));
  EXPECT_THAT(context->getDataMatrix("Em ordem"), isMatrix({{"a", ints()}, {"b", texts()}}));
}

TEST_F(SorterDataSourceExecutionTest, AMissingInputGivesFalseAndFailsTheRunByName) {
  EXPECT_FALSE(run(newContext()));
  auto const failed = [&] {
    newContext()->processDataSources({}, {{"Lista", {false, definition_->createExecution()}}}, {},
                                     0);
  };
  EXPECT_EQ(failureOf(failed), "Falha: Lista");
}

TEST_F(SorterDataSourceExecutionTest, AMissingInputIsMetAheadOfAnswersThatAreNoOrder) {
  auto const context = newContext();
  context->setDataSourceOptions("Em ordem", {std::make_shared<OtherAnswer>()});
  EXPECT_FALSE(run(context));
}

TEST_F(SorterDataSourceExecutionTest, ANameThatIsTakenGivesFalse) {
  EXPECT_FALSE(run(contextOf(table()), "t"));
}

TEST_F(SorterDataSourceExecutionTest, TheFirstRelationOfTheInputNamesItInTheContext) {
  column("b", ColumnInfo::kDecrescente);
  auto const made = definition_->createExecution();
  made->setDataSourceExternalRelation({{"x", "t"}, {"t", "outra"}, {"t", "x"}});
  auto const context = newContext();
  context->registerDataMatrix("outra", table());
  EXPECT_TRUE(made->generateDataMatrix(context, ""));
  EXPECT_THAT(context->getDataMatrix("Em ordem"), byBDescending());
  made->setDataSourceExternalRelation({});
  EXPECT_FALSE(made->generateDataMatrix(context, "de novo"));
}

TEST_F(SorterDataSourceExecutionTest, ARunLeavesTheDefinitionAsItWas) {
  column("a", ColumnInfo::kCrescente);
  auto const before = textOf(*definition_);
  sorted({answer("b", true)});
  EXPECT_EQ(textOf(*definition_), before);
}
