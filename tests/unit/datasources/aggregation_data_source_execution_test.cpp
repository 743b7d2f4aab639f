#include "zyn/datasources/aggregation_data_source_execution.h"

#include "mox/core/database_connection.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "mox/zyn/matrix/iterator.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

/// A function of another library: two columns, of which the first only serves the second.
class LastSeen final : public virtual moxAggregationFunction {
 public:
  std::string name() const override { return "testLastSeen"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override { return node != nullptr; }
  bool load(std::shared_ptr<moxXMLNode> node) override { return node != nullptr; }
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() override {
    return {column("work", ints()), nullptr, column("seen", ints())};
  }
  void setIterators(std::vector<std::shared_ptr<moxIterator>> iterators) override {
    seen_ = std::dynamic_pointer_cast<moxIteratorBase<int>>(iterators.at(1));
  }
  bool compute(std::shared_ptr<moxDataMatrixRow const>) override {
    seen_->set(seen_->get() + 1);
    return true;
  }
  void posProcess(std::shared_ptr<moxDataMatrix>) override {}
  std::vector<std::string> getMetaColumns() const override { return {"work"}; }

 private:
  std::shared_ptr<moxIteratorBase<int>> seen_;
};

class AggregationDataSourceExecutionTest : public DefinitionTest {
 protected:
  AggregationDataSourceExecutionTest() {
    definition_->setName("Médias");
    definition_->setDataSourceName("Notas");
    definition_->getAggregator()->pushIndexColumn("turma");
    add("moxDoubleAvg", "nota", "media");
    add("moxDoubleMax", "nota", "maior");
  }

  void add(std::string const& registeredName, std::string const& source,
           std::string const& target) {
    auto const function = host_.get<moxCommonAggregationFunction>(registeredName);
    function->setSourceColumn(source);
    function->setTargetColumn(target);
    definition_->getAggregator()->addFunction(function);
  }

  static std::shared_ptr<moxDataMatrix> marks() {
    return matrix({{"turma", texts("A", "B", "A")}, {"nota", doubles(5.0, 8.0, 7.0)}});
  }

  static std::vector<NamedCells> means() {
    return {{"turma", texts("A", "B")}, {"media", doubles(6.0, 8.0)}, {"maior", doubles(7.0, 8.0)}};
  }

  std::shared_ptr<moxDataSourceExecutionContext> contextOf(
      std::shared_ptr<moxDataMatrix> const& input) {
    auto made = newContext();
    made->registerDataMatrix("Notas", input);
    return made;
  }

  /// What a run over the input registers.
  std::shared_ptr<moxDataMatrix> resultOf(std::shared_ptr<moxDataMatrix> const& input) {
    auto const context = contextOf(input);
    EXPECT_TRUE(definition_->createExecution()->generateDataMatrix(context, ""));
    return context->getDataMatrix("Médias");
  }

  static Columns columnsOf(moxDataMatrix const& matrix) {
    Columns columns;
    for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
      columns.emplace_back(matrix.columnAt(i)->getName(), matrix.columnAt(i)->getType());
    }
    return columns;
  }

  /// The rows of the statement as text, the cells with a blank behind each.
  std::string rowsOf(std::string const& sql, int columns) {
    auto const statement = host_.database().prepare(sql);
    statement->execute();
    std::string text;
    while (statement->fetch()) {
      for (int i = 0; i < columns; ++i) {
        text += std::string(statement->getString(i)) + " ";
      }
    }
    return text;
  }

  std::shared_ptr<moxAggregationDataSource> definition_ =
      host_.get<moxAggregationDataSource>("moxAggregationDataSource");
};

}  // namespace

TEST_F(AggregationDataSourceExecutionTest, IsNamedAndHasNoFilters) {
  auto const made = definition_->createExecution();
  EXPECT_EQ(made->name(), "moxAggregationDataSourceExecution");
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(AggregationDataSourceExecutionTest, WithoutATargetTheMatrixBearsTheDefinitionsName) {
  auto const context = contextOf(marks());
  EXPECT_TRUE(definition_->createExecution()->generateDataMatrix(context, ""));
  EXPECT_THAT(context->getDataMatrix("Médias"), isMatrix(means()));
}

TEST_F(AggregationDataSourceExecutionTest, ATargetNamesTheResultAndLeavesTheDefinitionsName) {
  auto const context = contextOf(marks());
  EXPECT_TRUE(definition_->createExecution()->generateDataMatrix(context, "Resumo"));
  EXPECT_THAT(context->getDataMatrix("Resumo"), isMatrix(means()));
  EXPECT_EQ(context->getDataMatrix("Médias"), nullptr);
  EXPECT_EQ(definition_->getName(), "Médias");
}

TEST_F(AggregationDataSourceExecutionTest, TheInputStaysAsItIs) {
  auto const input = marks();
  resultOf(input);
  EXPECT_THAT(input, isMatrix(marks()));
}

TEST_F(AggregationDataSourceExecutionTest, AMissingInputGivesFalseAndFailsTheRunByName) {
  auto const context = newContext();
  EXPECT_FALSE(definition_->createExecution()->generateDataMatrix(context, ""));
  EXPECT_EQ(context->getDataMatrix("Médias"), nullptr);
  auto const failed = [&] {
    newContext()->processDataSources({}, {{"Resumo", {false, definition_->createExecution()}}}, {},
                                     0);
  };
  EXPECT_EQ(failureOf(failed), "Falha: Resumo");
}

TEST_F(AggregationDataSourceExecutionTest, ANameThatIsTakenGivesFalseAndTheFirstMatrixStays) {
  auto const input = marks();
  auto const context = contextOf(input);
  EXPECT_FALSE(definition_->createExecution()->generateDataMatrix(context, "Notas"));
  EXPECT_EQ(context->getDataMatrix("Notas"), input);
}

TEST_F(AggregationDataSourceExecutionTest, ARelationOfAnotherInputHasNoEffect) {
  auto const made = definition_->createExecution();
  made->setDataSourceExternalRelation({{"Outra", "nenhuma"}, {"notas", "nenhuma"}});
  auto const context = contextOf(marks());
  EXPECT_TRUE(made->generateDataMatrix(context, ""));
  EXPECT_THAT(context->getDataMatrix("Médias"), isMatrix(means()));
}

TEST_F(AggregationDataSourceExecutionTest, OfTwoRelationsOfTheInputTheFirstWins) {
  auto const made = definition_->createExecution();
  made->setDataSourceExternalRelation({{"Notas", "a"}, {"Notas", "b"}, {"a", "c"}});
  auto const context = newContext();
  context->registerDataMatrix("a", marks());
  EXPECT_TRUE(made->generateDataMatrix(context, ""));
  EXPECT_THAT(context->getDataMatrix("Médias"), isMatrix(means()));
}

TEST_F(AggregationDataSourceExecutionTest, LaterRelationsReplaceEarlierOnes) {
  auto const made = definition_->createExecution();
  made->setDataSourceExternalRelation({{"Notas", "nenhuma"}});
  made->setDataSourceExternalRelation({});
  EXPECT_TRUE(made->generateDataMatrix(contextOf(marks()), ""));
}

TEST_F(AggregationDataSourceExecutionTest, TheMatrixHoldsExactlyTheDeclaredColumns) {
  enter(
      "<moxSQLDataSource name=\"Notas\"><Command/><Columns><Column columnName=\"turma\" "
      "Type=\"1\"/></Columns></moxSQLDataSource>");
  for (bool const counted : {false, true}) {
    definition_->setCountColumn(counted);
    EXPECT_EQ(columnsOf(*resultOf(marks())), definition_->getColumns()) << counted;
  }
}

TEST_F(AggregationDataSourceExecutionTest, CountsTheRowsOfEachGroupInTheLastColumn) {
  definition_->setCountColumn(true);
  auto expected = means();
  expected.push_back({"data_count", ints(2, 1)});
  EXPECT_THAT(resultOf(marks()), isMatrix(expected));
}

TEST_F(AggregationDataSourceExecutionTest, AnInputWithoutRowsGivesAllDeclaredColumns) {
  definition_->setCountColumn(true);
  EXPECT_THAT(resultOf(matrix({{"turma", texts()}, {"nota", doubles()}})),
              isMatrix({{"turma", texts()},
                        {"media", doubles()},
                        {"maior", doubles()},
                        {"data_count", ints()}}));
}

TEST_F(AggregationDataSourceExecutionTest, AKeyThatIsNamedLikeACounterStays) {
  definition_->getAggregator()->pushIndexColumn("media$Counter");
  auto const input = matrix(
      {{"turma", texts("A", "A")}, {"nota", doubles(1.0, 3.0)}, {"media$Counter", ints(7, 7)}});
  EXPECT_THAT(resultOf(input), isMatrix({{"turma", texts("A")},
                                         {"media$Counter", ints(7)},
                                         {"media", doubles(2.0)},
                                         {"maior", doubles(3.0)}}));
}

TEST_F(AggregationDataSourceExecutionTest, ATargetThatIsNamedLikeACounterStays) {
  add("moxTextLast", "turma", "media$Counter");
  EXPECT_THAT(resultOf(marks()), isMatrix({{"turma", texts("A", "B")},
                                           {"media", doubles(6.0, 8.0)},
                                           {"maior", doubles(7.0, 8.0)},
                                           {"media$Counter", texts("A", "B")}}));
}

TEST_F(AggregationDataSourceExecutionTest, AveragesOfOneNameLoseBothTheirCounters) {
  add("moxDoubleAvg", "nota", "media");
  EXPECT_THAT(resultOf(marks()), isMatrix({{"turma", texts("A", "B")},
                                           {"media", doubles(6.0, 8.0)},
                                           {"maior", doubles(7.0, 8.0)},
                                           {"media", doubles(6.0, 8.0)}}));
}

TEST_F(AggregationDataSourceExecutionTest, AKeyThatTheInputLacksIsPassedOver) {
  definition_->getAggregator()->pushIndexColumn("nenhuma");
  EXPECT_THAT(resultOf(marks()), isMatrix(means()));
}

TEST_F(AggregationDataSourceExecutionTest, FunctionsOfAnotherLibraryLoseTheirWorkingColumnsToo) {
  definition_->getAggregator()->addFunction(std::make_shared<LastSeen>());
  auto expected = means();
  expected.push_back({"seen", ints(2, 1)});
  EXPECT_THAT(resultOf(marks()), isMatrix(expected));
}

TEST_F(AggregationDataSourceExecutionTest, InputsOfForeignMakeAreAggregatedAlike) {
  auto const input = matrix({{"turma", texts("A", "B", "A")}});
  input->addColumn(std::make_shared<ForeignColumn<moxDataMatrixTypes::Double>>(
      "nota", std::vector<std::optional<double>>{5.0, 8.0, 7.0}));
  EXPECT_THAT(resultOf(input), isMatrix(means()));
}

TEST_F(AggregationDataSourceExecutionTest, ATemporaryTableBearsTheDefinitionsName) {
  definition_->setGerarTabelaTeporaria(true);
  auto const context = contextOf(marks());
  EXPECT_TRUE(definition_->createExecution()->generateDataMatrix(context, ""));
  EXPECT_EQ(context->getDataMatrix("Médias")->columnCount(), 0u);
  EXPECT_EQ(rowsOf("select turma, media, maior from \"Médias\"", 3), "A 6.0 7.0 B 8.0 8.0 ");
}

TEST_F(AggregationDataSourceExecutionTest, ATemporaryTableGoesWithTheContextOfItsRun) {
  definition_->setGerarTabelaTeporaria(true);
  resultOf(marks());
  EXPECT_FALSE(failureOf([&] { rowsOf("select turma from \"Médias\"", 1); }).empty());
}

TEST_F(AggregationDataSourceExecutionTest, ATemporaryTableBearsTheTargetsNameWhereThereIsOne) {
  definition_->setGerarTabelaTeporaria(true);
  definition_->setCountColumn(true);
  auto const context = contextOf(marks());
  EXPECT_TRUE(definition_->createExecution()->generateDataMatrix(context, "resumo"));
  EXPECT_EQ(context->getDataMatrix("resumo")->columnCount(), 0u);
  EXPECT_EQ(rowsOf("select turma, data_count from resumo", 2), "A 2 B 1 ");
  EXPECT_FALSE(failureOf([&] { rowsOf("select turma from \"Médias\"", 1); }).empty());
}

TEST_F(AggregationDataSourceExecutionTest, WithoutTheFlagNoTableIsMade) {
  resultOf(marks());
  EXPECT_FALSE(failureOf([&] { rowsOf("select turma from \"Médias\"", 1); }).empty());
}

TEST_F(AggregationDataSourceExecutionTest, WhatTheDatabaseRefusesEndsTheRunAndRegistersNothing) {
  definition_->setGerarTabelaTeporaria(true);
  add("moxDoubleMin", "nota", "turma");
  auto const context = contextOf(marks());
  EXPECT_FALSE(
      failureOf([&] { definition_->createExecution()->generateDataMatrix(context, ""); }).empty());
  EXPECT_EQ(context->getDataMatrix("Médias"), nullptr);
}

TEST_F(AggregationDataSourceExecutionTest, RunsOverDifferentInputsDoNotSeeEachOther) {
  auto const made = definition_->createExecution();
  EXPECT_THAT(resultOf(marks()), isMatrix(means()));
  EXPECT_THAT(resultOf(matrix({{"turma", texts("C")}, {"nota", doubles(1.0)}})),
              isMatrix({{"turma", texts("C")}, {"media", doubles(1.0)}, {"maior", doubles(1.0)}}));
  EXPECT_THAT(resultOf(marks()), isMatrix(means()));
}

TEST_F(AggregationDataSourceExecutionTest, ARunLeavesTheDefinitionAsItWas) {
  auto const before = textOf(*definition_);
  resultOf(marks());
  EXPECT_EQ(textOf(*definition_), before);
}
