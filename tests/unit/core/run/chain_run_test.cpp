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

TEST_F(ChainRunTest, FailureNamesTheSourceAtWork) {
  auto run = newRun("Cruzada");
  EXPECT_EQ(detailsOf(run),
            (std::vector<std::string>{"in the source 'Cruzada', a moxDataSourcePivoting",
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
