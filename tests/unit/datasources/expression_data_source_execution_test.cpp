#include "zyn/datasources/expression_data_source_execution.h"

#include "mox/zyn/expressions/expression_context.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

class ExpressionExecutionTest : public DefinitionTest {
 protected:
  ExpressionExecutionTest() : context_(newContext()) {
    context_->registerDataMatrix("Notas", matrix({{"a", ints(1, 2)}, {"b", doubles(0.5, null)}}));
  }

  static std::string definition(std::string const& columns, std::string const& more = "") {
    return "<moxExpressionDataSource name=\"Medias\" source=\"Notas\"" + more + "><expressions>" +
           columns + "</expressions></moxExpressionDataSource>";
  }

  static std::string column(std::string const& name, std::string const& expression,
                            std::string const& more = " type=\"1\"") {
    return "<moxColumnExpression name=\"" + name + "\"" + more + ">" + expression +
           "</moxColumnExpression>";
  }

  bool run(std::string const& text, std::string const& target = {}) {
    return read(text)->createExecution()->generateDataMatrix(context_, target);
  }

  std::shared_ptr<moxDataMatrix> matrixOf(std::string const& name) {
    return context_->getDataMatrix(name);
  }

  std::shared_ptr<moxDataSourceExecutionContext> context_;
};

}  // namespace

TEST_F(ExpressionExecutionTest, KnowsItsName) {
  EXPECT_EQ(read(definition(""))->createExecution()->name(), "moxExpressionDataSourceExecution");
}

TEST_F(ExpressionExecutionTest, TheInputItselfGetsTheColumnsAndHasBothNames) {
  auto const notas = matrixOf("Notas");
  EXPECT_TRUE(run(definition(column("soma", "a(0)+b(0)") + column("dobro", "soma(0)*2"))));
  EXPECT_EQ(matrixOf("Medias"), notas);
  EXPECT_EQ(matrixOf("Notas"), notas);
  EXPECT_THAT(notas, isMatrix({{"a", ints(1, 2)},
                               {"b", doubles(0.5, null)},
                               {"soma", doubles(1.5, 2.0)},
                               {"dobro", doubles(3.0, 4.0)}}));
}

TEST_F(ExpressionExecutionTest, InAListTheMatrixIsKnownByTheSmallerName) {
  auto const source = read(definition(column("soma", "a(0)+b(0)")));
  context_->processDataSources(nullptr, {{"Medias", {false, source->createExecution()}}}, {}, 0);
  EXPECT_EQ(context_->getDataMatrixName(matrixOf("Notas")), "Medias");
}

TEST_F(ExpressionExecutionTest, KindsPrecisionsAndZerosAreHandedOn) {
  run(definition(column("i", "a(0)/2", " type=\"0\"") + column("d", "a(0)/3", " type=\"1\"") +
                     column("r", "a(0)/3", " type=\"1\" decimalPrecision=\"1\"") +
                     column("t", "a(0)/3",
                            " type=\"1\" decimalPrecision=\"1\" "
                            "decimalOperation=\"1\""),
                 " convertZeroToNull=\"1\""));
  EXPECT_THAT(matrixOf("Medias"), isMatrix({{"a", ints(1, 2)},
                                            {"b", doubles(0.5, null)},
                                            {"i", ints(null, 1)},
                                            {"d", doubles(1.0 / 3, 2.0 / 3)},
                                            {"r", doubles(0.3, 0.7)},
                                            {"t", doubles(0.3, 0.6)}}));
}

TEST_F(ExpressionExecutionTest, ZerosStayWithoutTheFlag) {
  run(definition(column("z", "a(0)-a(0)", "")));
  EXPECT_EQ(cellAt(*matrixOf("Medias")->columnByName("z"), 0), Cell(0));
}

TEST_F(ExpressionExecutionTest, WithoutExpressionsTheInputGetsTheNameAndNothingElse) {
  EXPECT_TRUE(run(definition("")));
  EXPECT_EQ(matrixOf("Medias"), matrixOf("Notas"));
  EXPECT_EQ(matrixOf("Medias")->columnCount(), 2u);
}

TEST_F(ExpressionExecutionTest, WithATargetTheOwnNamePlaysNoPart) {
  EXPECT_TRUE(run(definition(column("s", "1")), "alvo"));
  EXPECT_EQ(matrixOf("alvo"), matrixOf("Notas"));
  EXPECT_EQ(matrixOf("Medias"), nullptr);
}

TEST_F(ExpressionExecutionTest, ExternalRelationsNameTheInputInTheContext) {
  auto const other = matrix({{"a", ints(9)}});
  context_->registerDataMatrix("interna", other);
  auto const execution = read(definition(column("s", "a(0)")))->createExecution();
  execution->setDataSourceExternalRelation({{"x", "y"}, {"Notas", "interna"}, {"Notas", "z"}});
  EXPECT_TRUE(execution->generateDataMatrix(context_, ""));
  EXPECT_EQ(matrixOf("Medias"), other);
  EXPECT_EQ(matrixOf("Notas")->columnCount(), 2u);
}

TEST_F(ExpressionExecutionTest, AMissingInputIsTheProcessorsFailure) {
  context_ = newContext();
  EXPECT_EQ(failureOf([&] { run(definition(column("s", "1"))); }),
            "Fonte de dados não localizada.");
  EXPECT_EQ(matrixOf("Medias"), nullptr);
}

TEST_F(ExpressionExecutionTest, FailuresOfExpressionsPassAndNothingIsRegistered) {
  EXPECT_EQ(failureOf([&] { run(definition(column("s", "nada(0)"))); }),
            "Coluna não encontrada nada");
  EXPECT_EQ(failureOf([&] { run(definition(column("s", "a(0)/0"))); }), "Divisão por zero.");
  EXPECT_EQ(matrixOf("Medias"), nullptr);
}

TEST_F(ExpressionExecutionTest, ANameThatIsTakenKeepsItsMatrixAndIsNoFailure) {
  auto const first = matrix({{"z", ints()}});
  context_->registerDataMatrix("Medias", first);
  EXPECT_TRUE(run(definition(column("s", "1"))));
  EXPECT_EQ(matrixOf("Medias"), first);
  EXPECT_EQ(matrixOf("Notas")->columnCount(), 3u);
}

TEST_F(ExpressionExecutionTest, EachRunAddsItsColumnsOnceMore) {
  auto const source = read(definition(column("s", "1")));
  EXPECT_TRUE(source->createExecution()->generateDataMatrix(context_, "um"));
  EXPECT_TRUE(source->createExecution()->generateDataMatrix(context_, "dois"));
  EXPECT_EQ(matrixOf("Notas")->columnCount(), 4u);
}

TEST_F(ExpressionExecutionTest, EmptyEntriesInTheListCountForNothing) {
  auto const source = read<moxExpressionDataSource>(definition(column("s", "1")));
  source->expressions().add(nullptr);
  EXPECT_TRUE(source->createExecution()->generateDataMatrix(context_, ""));
  EXPECT_EQ(matrixOf("Notas")->columnCount(), 3u);
}
