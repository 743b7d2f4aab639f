#include <stdexcept>

#include "core/run/chain.h"
#include "core/run/explanation.h"
#include "mox/core/progress_notifier.h"
#include "unit/core/error_message.h"
#include "unit/core/run/run_fixture.h"

namespace mox::core::run_test {
namespace {

/// Students, their sums by unit, and these in an order that the user may choose.
class ChainRunTest : public RunTest {
 protected:
  ChainRunTest() {
    defineStudents("", filter("moxDoubleRangeFilter", "nota"));
    define(
        "<moxAggregationDataSource name=\"Somas\" dataSource=\"Alunos\"><moxDataMatrixAggregator>"
        "<Indexes><Index name=\"id_unidade\"/></Indexes><Functions>"
        "<moxDoubleSum source=\"nota\" target=\"soma\"/></Functions></moxDataMatrixAggregator>"
        "</moxAggregationDataSource>" +
        sorter("Ordem", "Somas",
               "<column name=\"id_unidade\" desc=\"Unidade\"/>"
               "<column name=\"soma\" desc=\"Soma\" dir=\"desc\"/>",
               "yes") +
        sorter("Erro", "Somas", "<column name=\"nada\"/>", "no") +
        "<moxDataSourcePivoting name=\"Cruzada\" source=\"Somas\"><columns/><rows><row "
        "source=\"nada\"/></rows><cells/></moxDataSourcePivoting>" +
        sorter("Sem fonte", "Nada", "<column name=\"nada\"/>", "no") +
        sorter("Oferta vazia", "Somas", "<column name=\"nada\"/>", "yes") +
        sorter("Sem nome", "", "<column name=\"nada\"/>", "no") +
        "<moxObjectDataSource name=\"Apagar\"><Sql>delete from alunos</Sql><Binds/>"
        "</moxObjectDataSource>" +
        sorter("De nada", "Apagar", "", "no") +
        "<moxGroupDataSource name=\"Grupo\" outputSource=\"a\" filterSource=\"a\"><DataSources>"
        "<moxDadoDataSource name=\"a\" dataSource=\"Alunos\"/>"
        "<moxDadoDataSource name=\"b\" dataSource=\"Apagar\"/></DataSources></moxGroupDataSource>");
  }

  static std::string sorter(std::string const& name, std::string const& source,
                            std::string const& columns, std::string const& userDefined) {
    return "<moxSorterDataSource name=\"" + name + "\" source=\"" + source + "\" userDefined=\"" +
           userDefined + "\" description=\"A ordem\">" + columns + "</moxSorterDataSource>";
  }

  static std::string units(moxDataMatrix const& matrix) {
    auto const column =
        std::dynamic_pointer_cast<moxDataMatrixIntColumn const>(matrix.columnByName("id_unidade"));
    std::string text;
    for (unsigned int row = 0; row < column->numRows(); ++row) {
      text += (row == 0 ? "" : " ") + std::to_string(column->getValue(row));
    }
    return text;
  }

  int studentCount() { return static_cast<int>(newRun().run()->rowCount()); }
};

using Texts = std::vector<std::string>;

std::vector<std::string> detailsOf(DefinitionRun& run) {
  try {
    run.run();
  } catch (moxError const& error) {
    return error.errorDetails();
  }
  return {};
}

TEST_F(ChainRunTest, RunsWithAllThatItReads) {
  auto run = newRun("Ordem");
  EXPECT_EQ(run.sources().size(), 3U);
  EXPECT_EQ(units(*run.run()), "3 4 6");
}

TEST_F(ChainRunTest, FiltersOfTheQueryAreOffered) {
  auto run = newRun("Ordem");
  ASSERT_EQ(run.offers().size(), 1U);
  EXPECT_EQ(run.offers()[0].source, "Alunos");
  run.setFilters({"nota=6.."});
  EXPECT_EQ(units(*run.run()), "3 4");
}

TEST_F(ChainRunTest, OrderOfTheUserReachesItsSorter) {
  auto run = newRun("Ordem");
  ASSERT_EQ(run.sortOffers().size(), 1U);
  EXPECT_EQ(run.sortOffers()[0].source, "Ordem");
  run.setOrder({{"Unidade", true}});
  EXPECT_EQ(units(*run.run()), "6 4 3");
  EXPECT_EQ(sortText(run.order()), "id_unidade, descending");
}

TEST_F(ChainRunTest, OrderIsRefusedWhereNoneIsToBeChosen) {
  auto run = newRun("Somas");
  EXPECT_EQ(test::errorMessageOf([&] {
              run.setOrder({{"soma", false}});
            }),
            "the definition 'Somas' has no order to choose: no sorter in it leaves it to its user");
  EXPECT_NO_THROW(run.setOrder({}));
}

TEST_F(ChainRunTest, OrderIsSetOnce) {
  auto run = newRun("Ordem");
  run.setOrder({{"soma", false}});
  EXPECT_THROW(run.setOrder({{"soma", true}}), std::logic_error);
}

/// What the explanation of a run tells of its chain.
Texts problemsOf(DefinitionRun run) {
  run.keepReport(DefinitionRun::Report::kKept);
  run.run();
  return explain(run, DefinitionRun::Report::kKept, "").chainProblems;
}

TEST_F(ChainRunTest, SoundChainHasNoProblems) {
  EXPECT_EQ(problemsOf(newRun("Ordem")), Texts{});
}

TEST_F(ChainRunTest, ColumnsThatTheRowsDoNotHaveAreTold) {
  define(
      "<moxAggregationDataSource name=\"Trocada\" dataSource=\"Alunos\"><moxDataMatrixAggregator>"
      "<Indexes><Index name=\"turma\"/></Indexes><Functions>"
      "<moxDoubleSum source=\"pontos\" target=\"soma\"/></Functions></moxDataMatrixAggregator>"
      "</moxAggregationDataSource>" +
      sorter("Ordem trocada", "Trocada", "<column name=\"media\"/>", "no") +
      sorter("Oferta trocada", "Ordem trocada", "<column name=\"soma\"/><column name=\"x\"/>",
             "yes"));
  EXPECT_EQ(problemsOf(newRun("Oferta trocada")),
            (Texts{"the source 'Trocada' groups by 'turma', a column that the rows of 'Alunos' do "
                   "not have",
                   "the source 'Trocada' computes 'soma' by moxDoubleSum from 'pontos', a column "
                   "that the rows of 'Alunos' do not have",
                   "the source 'Ordem trocada' sorts by 'media', a column that the rows of "
                   "'Trocada' do not have",
                   "the source 'Oferta trocada' offers to sort by 'x', a column that the rows of "
                   "'Ordem trocada' do not have"}));
}

TEST_F(ChainRunTest, FiguresOfAnotherKindAreTold) {
  define(
      "<moxAggregationDataSource name=\"Vazia\" dataSource=\"Alunos\"><moxDataMatrixAggregator>"
      "<Functions><moxIntegralSum source=\"nota\" target=\"soma\"/></Functions>"
      "</moxDataMatrixAggregator></moxAggregationDataSource>");
  EXPECT_EQ(problemsOf(newRun("Vazia")),
            Texts{"the source 'Vazia' computes 'soma' by moxIntegralSum from 'nota', which is "
                  "double and not int"});
}

TEST_F(ChainRunTest, CellsOfAnotherKindAreTold) {
  define(
      "<moxDataSourcePivoting name=\"Sem números\" source=\"Alunos\"><columns><column "
      "source=\"nome\"/></columns><rows/><cells><cell source=\"nota\" "
      "aggregation=\"moxIntegralAvg\"/></cells></moxDataSourcePivoting>");
  EXPECT_EQ(problemsOf(newRun("Sem números")),
            Texts{"the source 'Sem números' fills its cells by moxIntegralAvg from 'nota', which "
                  "is double and not int"});
}

TEST_F(ChainRunTest, ColumnsTakenAsAnotherKindAndListsOfOtherLengthsAreTold) {
  define(
      "<moxUnionDataSource name=\"Lista\"><sources><source name=\"Alunos\">"
      "<moxDataMatrixTextColumn name=\"nota\"/><moxDataMatrixTextColumn name=\"nome\"/></source>"
      "<source name=\"Somas\"><moxDataMatrixDoubleColumn name=\"soma\"/></source></sources>"
      "</moxUnionDataSource><moxUnionDataSource name=\"Nada\"/><moxJoinDataSource name=\"Junta\">"
      "<sources><source name=\"Lista\"><columns><moxDataMatrixIntColumn columnName=\"nota\" "
      "acolumnAlias=\"\"/></columns></source></sources></moxJoinDataSource>");
  EXPECT_EQ(problemsOf(newRun("Junta")),
            (Texts{"the source 'Lista' takes 'nota' of 'Alunos' as text, and it is double",
                   "the source 'Lista' takes 1 columns of 'Somas', and 2 of 'Alunos', which comes "
                   "first",
                   "the source 'Junta' takes 'nota' of 'Lista' as int, and it is double",
                   "the source 'Junta' has a column without a name"}));
  EXPECT_EQ(problemsOf(newRun("Nada")),
            Texts{"the source 'Nada' names no source whose rows it reads"});
}

TEST_F(ChainRunTest, ColumnsOfOneNameAreTold) {
  auto const computed = [](std::string const& name) {
    return "<moxColumnExpression name=\"" + name + "\">1</moxColumnExpression>";
  };
  define("<moxExpressionDataSource name=\"Conta\" source=\"Somas\"><expressions>" +
         computed("soma") + computed("x") + computed("x") +
         "</expressions></moxExpressionDataSource>");
  EXPECT_EQ(problemsOf(newRun("Conta")),
            (Texts{"the source 'Conta' computes 'soma', a name that the rows of 'Somas' had "
                   "already, and by which the first is found",
                   "the source 'Conta' has several columns called 'x', of which the first is "
                   "found"}));
}

TEST_F(ChainRunTest, FailureTellsWhatWentWrongAheadOfIt) {
  define(
      "<moxAggregationDataSource name=\"Trocada\" dataSource=\"Alunos\"><moxDataMatrixAggregator>"
      "<Indexes><Index name=\"turma\"/></Indexes></moxDataMatrixAggregator>"
      "</moxAggregationDataSource><moxDataSourcePivoting name=\"Por turma\" source=\"Trocada\">"
      "<rows><row source=\"turma\"/></rows></moxDataSourcePivoting>");
  auto run = newRun("Por turma");
  EXPECT_EQ(detailsOf(run),
            (Texts{"there are no columns", "in the source 'Por turma', a moxDataSourcePivoting",
                   "the source 'Trocada' groups by 'turma', a column that the rows "
                   "of 'Alunos' do not have",
                   "in the definition 'Por turma'"}));
}

TEST_F(ChainRunTest, RunThatOnlyComposesKnowsNoColumns) {
  auto run = newRun("Erro");
  run.keepReport(DefinitionRun::Report::kComposeOnly);
  run.run();
  EXPECT_EQ(explain(run, DefinitionRun::Report::kComposeOnly, "").chainProblems, Texts{});
}

TEST_F(ChainRunTest, FailureNamesTheSourceAtWork) {
  auto run = newRun("Cruzada");
  EXPECT_EQ(detailsOf(run),
            (std::vector<std::string>{"there are: id_unidade, soma",
                                      "in the source 'Cruzada', a moxDataSourcePivoting",
                                      "in the definition 'Cruzada'"}));
}

TEST_F(ChainRunTest, ColumnOnOfferThatTheRowsLackIsTold) {
  auto run = newRun("Oferta vazia");
  run.setOrder({{"nada", false}});
  EXPECT_EQ(test::errorMessageOf([&] { run.run(); }),
            "the source 'Oferta vazia' offers to sort by 'nada', a column that its rows do not "
            "have");
}

TEST_F(ChainRunTest, FailureNamesMissingInputs) {
  auto run = newRun("Sem fonte");
  EXPECT_EQ(detailsOf(run),
            (std::vector<std::string>{
                "the source 'Sem fonte' reads 'Nada', which is no source that this session finds",
                "in the definition 'Sem fonte'"}));
  auto unnamed = newRun("Sem nome");
  EXPECT_EQ(detailsOf(unnamed).front(),
            "the source 'Sem nome' names no source whose rows it reads");
}

TEST_F(ChainRunTest, InputThatGivesNoRowsIsNamed) {
  auto run = newRun("De nada");
  run.agreeToChanges();
  auto const details = detailsOf(run);
  ASSERT_EQ(details.size(), 3U);
  EXPECT_EQ(details[1], "the source 'De nada' reads 'Apagar', which gives no rows");
}

TEST_F(ChainRunTest, WhatChangesDataIsRunOnRequestOnly) {
  for (auto const* const name : {"Apagar", "Grupo", "De nada"}) {
    auto run = newRun(name);
    EXPECT_TRUE(run.changesData()) << name;
    EXPECT_EQ(test::errorMessageOf([&] { run.run(); }),
              "the definition '" + std::string(name) + "' changes data, which nobody agreed to");
    EXPECT_EQ(studentCount(), 4) << name;
  }
  EXPECT_FALSE(newRun("Ordem").changesData());
  auto run = newRun("Apagar");
  run.agreeToChanges();
  EXPECT_FALSE(run.run());
  EXPECT_EQ(studentCount(), 0);
}

TEST_F(ChainRunTest, PuttingStatementsTogetherNeedsNoConsentAndChangesNothing) {
  for (auto const* const name : {"Apagar", "Grupo"}) {
    auto run = newRun(name);
    run.keepReport(DefinitionRun::Report::kComposeOnly);
    run.run();
    EXPECT_EQ(studentCount(), 4) << name;
  }
}

/// Stops when `last` sources are done.
class Stop final : public moxDataSourceExecutionProgressNotifier {
 public:
  explicit Stop(int last) : last_(last) {}

  std::string name() const override { return "testStop"; }
  void setTotal(int count) override { total = count; }
  bool step(int done) override { return done < last_; }

  int total = 0;

 private:
  int last_;
};

TEST_F(ChainRunTest, NotifierOfTheCallerIsAsked) {
  auto const stop = std::make_shared<Stop>(2);
  auto run = newRun("Ordem");
  EXPECT_FALSE(run.run(stop));
  EXPECT_EQ(stop->total, 3);
  EXPECT_TRUE(run.context().getDataMatrix("Somas"));
}

TEST_F(ChainRunTest, ExplanationTellsWhatEachSourceReadsAndDoes) {
  auto run = newRun("Ordem");
  run.setOrder({{"id_unidade", false}});
  run.keepReport(DefinitionRun::Report::kKept);
  run.run();
  auto const explanation = explain(run, DefinitionRun::Report::kKept, "");
  EXPECT_TRUE(explanation.steps.at("Alunos").reads.empty());
  EXPECT_EQ(explanation.steps.at("Alunos").does, "");
  EXPECT_EQ(explanation.steps.at("Somas").reads, std::vector<std::string>{"Alunos"});
  EXPECT_EQ(explanation.steps.at("Somas").does, "groups by id_unidade, computes soma");
  EXPECT_EQ(explanation.steps.at("Ordem").does, "sorts by id_unidade, as its user asks");
  ASSERT_EQ(explanation.report.sources.size(), 3U);
  EXPECT_EQ(explanation.report.sources[1].rows, 3);
}

TEST_F(ChainRunTest, SortersTellTheirOrder) {
  EXPECT_EQ(whatItDoes(*newRun("Ordem").definition()),
            "sorts by soma, descending, unless its user says otherwise");
  EXPECT_EQ(whatItDoes(*newRun("Erro").definition()), "sorts by nada");
}

}  // namespace
}  // namespace mox::core::run_test
