// Queries, aggregations and sorters one behind the other in one run, as definitions name each
// other.

#include "mox/core/database_connection.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

using Strings = std::vector<std::string>;

std::string const kMarks =
    "<moxSQLDataSource name=\"Notas\"><Command type=\"1\"><from>notas n</from></Command>"
    "<unidadeColumn tableName=\"n\" columnName=\"unidade\" allownull=\"0\"/><Columns>"
    "<Column tableName=\"n\" columnName=\"unidade\" columnNameOrigin=\"unidade\" Type=\"2\">"
    "<sql index=\"0\">n.unidade</sql></Column>"
    "<Column tableName=\"n\" columnName=\"turma\" columnNameOrigin=\"turma\" Type=\"1\">"
    "<sql index=\"1\">n.turma</sql></Column>"
    "<Column tableName=\"n\" columnName=\"nota\" columnNameOrigin=\"nota\" Type=\"4\">"
    "<sql index=\"2\">n.nota</sql></Column></Columns></moxSQLDataSource>";

std::string const kMeans =
    "<moxAggregationDataSource name=\"Médias\" dataSource=\"Notas\" countColumn=\"1\">"
    "<moxDataMatrixAggregator><Indexes><Index name=\"turma\"/></Indexes><Functions>"
    "<moxDoubleAvg source=\"nota\" target=\"media\"/></Functions></moxDataMatrixAggregator>"
    "</moxAggregationDataSource>";

std::string const kOrdered =
    "<moxSorterDataSource name=\"Melhores turmas\" source=\"Médias\" userDefined=\"yes\" "
    "description=\"Ordenar por\"><column name=\"turma\" desc=\"Turma\"/>"
    "<column name=\"media\" desc=\"Média\" dir=\"desc\"/></moxSorterDataSource>";

class DerivedChainTest : public DefinitionTest {
 protected:
  DerivedChainTest() {
    host_.database().execute("create table notas (unidade int, turma varchar(10), nota double)");
    host_.database().execute(
        "insert into notas values (1, 'A', 5), (1, 'B', 9), (2, 'Z', 10), (1, 'A', 7), "
        "(1, 'C', null)");
    enter(kMarks + kMeans + kOrdered);
  }

  /// Runs the source behind all that it reads, in the order in which it names them.
  void run(std::string const& name, std::vector<int> const& units = {1}) {
    auto const source = entered(name);
    std::vector<moxDataSourceToProcess> list;
    for (auto const& read : source->getRelatedDataSources(true)) {
      list.push_back({read->getName(), {false, read->createExecution()}});
    }
    list.push_back({name, {false, source->createExecution()}});
    context_->processDataSources({}, list, units, 0);
  }

  moxRunReporter& reporter() { return dynamic_cast<moxRunReporter&>(*context_); }

  /// "name class rows" of each source of the report.
  Strings reported() {
    Strings told;
    for (auto const& source : reporter().runReport().sources) {
      told.push_back(source.name + " " + source.executionClass + " " +
                     (source.executed ? std::to_string(source.rows) : "composed"));
    }
    return told;
  }

  std::shared_ptr<moxDataSourceExecutionContext> context_ = newContext();
};

}  // namespace

TEST_F(DerivedChainTest, EachSourceReadsTheOneAheadOfIt) {
  run("Melhores turmas");
  EXPECT_THAT(context_->getDataMatrix("Médias"), isMatrix({{"turma", texts("A", "B", "C")},
                                                           {"media", doubles(6.0, 9.0, null)},
                                                           {"data_count", ints(2, 1, 1)}}));
  EXPECT_THAT(context_->getDataMatrix("Melhores turmas"),
              isMatrix({{"turma", texts("B", "A", "C")},
                        {"media", doubles(9.0, 6.0, null)},
                        {"data_count", ints(1, 2, 1)}}));
}

TEST_F(DerivedChainTest, TheReportHasTheSourcesInTheirOrderWithTheirRows) {
  reporter().keepRunReport();
  run("Melhores turmas");
  EXPECT_EQ(reported(), (Strings{"Notas moxSQLDataSourceExecution 4",
                                 "Médias moxAggregationDataSourceExecution 3",
                                 "Melhores turmas moxSorterDataSourceExecution 3"}));
}

TEST_F(DerivedChainTest, ARunThatOnlyComposesExecutesNone) {
  reporter().composeOnly();
  run("Melhores turmas");
  EXPECT_EQ(reported(), (Strings{"Notas moxSQLDataSourceExecution composed",
                                 "Médias moxAggregationDataSourceExecution composed",
                                 "Melhores turmas moxSorterDataSourceExecution composed"}));
}

TEST_F(DerivedChainTest, NoRowOfAnotherUnitEntersAResult) {
  run("Melhores turmas", {2});
  EXPECT_THAT(context_->getDataMatrix("Melhores turmas"),
              isMatrix({{"turma", texts("Z")}, {"media", doubles(10.0)}, {"data_count", ints(1)}}));
}

TEST_F(DerivedChainTest, WithoutRowsAllColumnsReachTheEnd) {
  run("Melhores turmas", {3});
  EXPECT_THAT(context_->getDataMatrix("Melhores turmas"),
              isMatrix({{"turma", texts()}, {"media", doubles()}, {"data_count", ints()}}));
}

TEST_F(DerivedChainTest, TheUsersOrderIsKeptByTheNameOfTheSorter) {
  auto const option = entered("Melhores turmas")->options().at(0);
  auto const answer =
      std::dynamic_pointer_cast<moxSorterDataSourceOptionData>(option->createOptionData());
  answer->setOrder("turma", true);
  context_->setDataSourceOptions("Melhores turmas", {answer});
  run("Melhores turmas");
  EXPECT_THAT(context_->getDataMatrix("Melhores turmas"),
              isMatrix({{"turma", texts("C", "B", "A")},
                        {"media", doubles(null, 9.0, 6.0)},
                        {"data_count", ints(1, 1, 2)}}));
}

TEST_F(DerivedChainTest, RelationsPassThroughKeysAndOrders) {
  std::vector<moxNamedDataSource> const sources{
      {"n", entered("Notas")}, {"m", entered("Médias")}, {"o", entered("Melhores turmas")}};
  EXPECT_EQ(entered("Melhores turmas")->getRelatedColumns(sources),
            (Columns{{"turma", moxDataMatrixTypes::Text}}));
}

TEST_F(DerivedChainTest, ASourceThatStandsBehindItsReaderFailsTheReader) {
  auto const failed = [&] {
    context_->processDataSources({},
                                 {{"Médias", {false, entered("Médias")->createExecution()}},
                                  {"Notas", {false, entered("Notas")->createExecution()}}},
                                 {1}, 0);
  };
  EXPECT_EQ(failureOf(failed), "Falha: Médias");
}

TEST_F(DerivedChainTest, GroupsRunThemUnderTheirMembersNames) {
  enter(
      "<moxGroupDataSource name=\"Grupo\" outputSource=\"o\" filterSource=\"n\"><DataSources>"
      "<moxDadoDataSource name=\"n\" dataSource=\"Notas\"/>"
      "<moxDadoDataSource name=\"m\" dataSource=\"Médias\"><sourcesExternalRelation>"
      "<relation external=\"Notas\" internal=\"n\"/></sourcesExternalRelation></moxDadoDataSource>"
      "<moxDadoDataSource name=\"o\" dataSource=\"Melhores turmas\"><sourcesExternalRelation>"
      "<relation external=\"Médias\" internal=\"m\"/></sourcesExternalRelation>"
      "</moxDadoDataSource></DataSources></moxGroupDataSource>");
  context_->processDataSources({}, {{"Grupo", {false, entered("Grupo")->createExecution()}}}, {1},
                               0);
  EXPECT_THAT(context_->getDataMatrix("Grupo"), isMatrix({{"turma", texts("B", "A", "C")},
                                                          {"media", doubles(9.0, 6.0, null)},
                                                          {"data_count", ints(1, 2, 1)}}));
}
