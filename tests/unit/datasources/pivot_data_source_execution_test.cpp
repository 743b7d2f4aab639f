#include "zyn/datasources/pivot_data_source_execution.h"

#include "mox/core/report.h"
#include "mox/zyn/format/integral_formatter.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

/// A report with one formatter, which writes down what it is handed.
class FakeReport final : public moxReportExecutionContext {
 public:
  std::string name() const override { return "fakeReport"; }
  std::shared_ptr<moxGenericFormatter> formatterByName(std::string const& name) const override {
    asked.push_back(name);
    return name == "bimestre" ? formatter : nullptr;
  }
  void takeOver(std::shared_ptr<moxDataMatrix> matrix, std::shared_ptr<moxPluginBase> relation,
                bool generated) override {
    matrices.push_back(std::move(matrix));
    relations.push_back(
        std::dynamic_pointer_cast<moxPivotDataSource::moxProcessRelation>(relation));
    generations.push_back(generated);
  }

  std::shared_ptr<moxGenericFormatter> formatter;
  mutable std::vector<std::string> asked;
  std::vector<std::shared_ptr<moxDataMatrix>> matrices;
  std::vector<std::shared_ptr<moxPivotDataSource::moxProcessRelation>> relations;
  std::vector<bool> generations;
};

class PivotExecutionTest : public DefinitionTest {
 protected:
  PivotExecutionTest()
      : source_(host_.get<moxPivotDataSource>("moxDataSourcePivoting")),
        context_(newContext()),
        report_(std::make_shared<FakeReport>()) {
    report_->formatter = host_.get<moxGenericFormatter>("moxIntegralFormatter");
    report_->formatter->setSuffix("o bimestre");
    context_->setReportContext(report_);
    context_->registerDataMatrix("Notas", notas());
    source_->setName("Boletim");
    source_->setDataSourceName("Notas");
    source_->setColumnsPivot({{"bimestre", "bimestre"}});
    source_->setRowsPivot({"aluno"});
    source_->setCellsPivot({{"nota", "moxDoubleAvg"}});
  }

  static std::shared_ptr<moxDataMatrix> notas() {
    return matrix({{"aluno", texts("Ana", "Bia", "Ana", "Ana")},
                   {"bimestre", ints(1, 1, 2, 2)},
                   {"nota", doubles(7.0, 8.0, 9.0, 10.0)}});
  }

  bool run(std::string const& target = {}) {
    return source_->createExecution()->generateDataMatrix(context_, target);
  }

  std::shared_ptr<moxDataMatrix> matrixOf(std::string const& name) {
    return context_->getDataMatrix(name);
  }

  std::shared_ptr<moxPivotDataSource> source_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
  std::shared_ptr<FakeReport> report_;
};

}  // namespace

TEST_F(PivotExecutionTest, KnowsItsName) {
  EXPECT_EQ(source_->createExecution()->name(), "moxDataSourcePivotingExecution");
}

TEST_F(PivotExecutionTest, LabelsAreThoseOfTheReportsFormatters) {
  EXPECT_TRUE(run());
  EXPECT_THAT(matrixOf("Boletim"), isMatrix({{"aluno", texts("Ana", "Bia")},
                                             {"1o bimestre", doubles(7.0, 8.0)},
                                             {"2o bimestre", doubles(9.5, null)}}));
  EXPECT_EQ(report_->asked, std::vector<std::string>{"bimestre"});
}

TEST_F(PivotExecutionTest, AFormatterThatTheReportLacksLeavesTheLabelsPlain) {
  source_->setColumnsPivot({{"bimestre", "nada"}});
  EXPECT_TRUE(run());
  EXPECT_NE(matrixOf("Boletim")->columnByName("1"), nullptr);
}

TEST_F(PivotExecutionTest, TheReportTakesTheTableItsRelationAndThatItsColumnsAreNew) {
  run();
  ASSERT_EQ(report_->matrices.size(), 1u);
  EXPECT_EQ(report_->matrices[0], matrixOf("Boletim"));
  EXPECT_TRUE(report_->generations[0]);
  ASSERT_NE(report_->relations[0], nullptr);
  EXPECT_EQ(report_->relations[0]->name(), "moxProcessRelation");
  auto const relation = report_->relations[0]->getRelation();
  ASSERT_EQ(relation.size(), 1u);
  EXPECT_EQ(relation[0].first, matrixOf("Notas")->columnByName("aluno"));
  EXPECT_EQ(relation[0].second, matrixOf("Boletim")->columnByName("aluno"));
}

TEST_F(PivotExecutionTest, ListsAreHandedOnInTheirOrder) {
  source_->setRowsPivot({"bimestre", "aluno"});
  source_->setColumnsPivot({});
  EXPECT_TRUE(run());
  EXPECT_THAT(matrixOf("Boletim"),
              isMatrix({{"bimestre", ints(1, 1, 2)}, {"aluno", texts("Ana", "Bia", "Ana")}}));
}

TEST_F(PivotExecutionTest, WithoutCellsThereAreTheRowKeysAlone) {
  source_->setCellsPivot({});
  EXPECT_TRUE(run());
  EXPECT_THAT(matrixOf("Boletim"), isMatrix({{"aluno", texts("Ana", "Bia")}}));
}

TEST_F(PivotExecutionTest, TheInputStaysAsItIs) {
  run();
  EXPECT_THAT(matrixOf("Notas"), isMatrix(notas()));
}

TEST_F(PivotExecutionTest, TheTargetNamesTheResult) {
  EXPECT_TRUE(run("alvo"));
  EXPECT_NE(matrixOf("alvo"), nullptr);
  EXPECT_EQ(matrixOf("Boletim"), nullptr);
}

TEST_F(PivotExecutionTest, AMissingInputIsToldByItsName) {
  source_->setDataSourceName("Faltas");
  EXPECT_EQ(failureOf([&] { run(); }), "Fonte de dados Faltas não localizada.");
  EXPECT_TRUE(report_->matrices.empty());
}

TEST_F(PivotExecutionTest, ExternalRelationsNameTheInputInTheContext) {
  context_->registerDataMatrix(
      "interna", matrix({{"aluno", texts("Zé")}, {"bimestre", ints(3)}, {"nota", doubles(1.0)}}));
  auto const execution = source_->createExecution();
  execution->setDataSourceExternalRelation({{"Notas", "interna"}, {"Notas", "outra"}});
  EXPECT_TRUE(execution->generateDataMatrix(context_, ""));
  EXPECT_THAT(matrixOf("Boletim"),
              isMatrix({{"aluno", texts("Zé")}, {"3o bimestre", doubles(1.0)}}));
}

TEST_F(PivotExecutionTest, TheFailureKeepsTheDefinedNameUnderAnExternalRelation) {
  auto const execution = source_->createExecution();
  execution->setDataSourceExternalRelation({{"Notas", "interna"}});
  EXPECT_EQ(failureOf([&] { execution->generateDataMatrix(context_, ""); }),
            "Fonte de dados Notas não localizada.");
}

TEST_F(PivotExecutionTest, WithoutAReportItIsRefused) {
  context_->setReportContext(nullptr);
  EXPECT_EQ(failureOf([&] { run(); }), "Contexto de relatório não informado.");
  EXPECT_EQ(matrixOf("Boletim"), nullptr);
}

TEST_F(PivotExecutionTest, AMissingInputIsToldAheadOfAMissingReport) {
  context_->setReportContext(nullptr);
  source_->setDataSourceName("Faltas");
  EXPECT_EQ(failureOf([&] { run(); }), "Fonte de dados Faltas não localizada.");
}

TEST_F(PivotExecutionTest, FailuresOfTheEnginePassAndNothingIsRegistered) {
  source_->setRowsPivot({"nada"});
  EXPECT_EQ(failureOf([&] { run(); }), "Coluna nada não localizada.");
  source_->setRowsPivot({"aluno"});
  source_->setCellsPivot({{"nota", "moxNada"}});
  EXPECT_THROW(run(), moxPluginNotFound);
  EXPECT_EQ(matrixOf("Boletim"), nullptr);
  EXPECT_TRUE(report_->matrices.empty());
}

TEST_F(PivotExecutionTest, ANameThatIsTakenKeepsItsMatrixAndTheReportGetsTheTable) {
  auto const first = matrix({{"z", ints()}});
  context_->registerDataMatrix("Boletim", first);
  EXPECT_TRUE(run());
  EXPECT_EQ(matrixOf("Boletim"), first);
  ASSERT_EQ(report_->matrices.size(), 1u);
  EXPECT_EQ(report_->matrices[0]->columnCount(), 3u);
}
