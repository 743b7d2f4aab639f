// A run that only puts statements together must leave the data as they are, whatever it executes
// for the rows that a statement is made of.

#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "unit/datasources/definition_fixture.h"

namespace {

using Texts = std::vector<std::string>;

std::string const kInsert =
    "<moxObjectDataSource name=\"Insere\"><Sql>insert into t values (9)</Sql>"
    "</moxObjectDataSource>";
std::string const kAll =
    "<moxSQLDataSource name=\"Todos\"><Command>select id from t</Command><Columns>"
    "<Column tableName=\"t\" columnName=\"id\" Type=\"2\"/></Columns></moxSQLDataSource>";

std::string member(std::string const& name, std::string const& definition) {
  return "<moxDadoDataSource name=\"" + name + "\">" + definition + "</moxDadoDataSource>";
}

class ObjectDryRunTest : public mox_test::DefinitionTest {
 protected:
  ObjectDryRunTest() : context_(newContext()) {
    host_.database().execute("create table t (id int)");
    host_.database().execute("insert into t values (1), (2)");
  }

  moxRunReporter& reporter() { return dynamic_cast<moxRunReporter&>(*context_); }

  moxDataSourceToProcess entry(std::string const& name, std::string const& definition) {
    return {name, {false, read(definition)->createExecution()}};
  }

  /// A query that the values of `source` restrict, which must be executed for it.
  moxDataSourceToProcess restrictedBy(std::string const& source) {
    auto const execution =
        std::dynamic_pointer_cast<moxSQLDataSourceExecution>(read(kAll)->createExecution());
    EXPECT_TRUE(execution->setDataSourceFilterRelation(source, "id", "id"));
    return {"Restrita", {false, execution}};
  }

  /// Each source of the report: name, what became of it, number of statements.
  Texts composed(std::vector<moxDataSourceToProcess> const& list) {
    reporter().composeOnly();
    context_->processDataSources(nullptr, list, {}, 0);
    Texts told;
    auto const report = reporter().runReport();
    for (auto const& source : report.sources) {
      told.push_back(source.name + (source.executed ? " executed " : " composed ") +
                     std::to_string(source.statements.size()));
    }
    return told;
  }

  int rowsInTheTable() {
    auto const statement = host_.database().prepare("select count(*) from t");
    statement->execute();
    EXPECT_TRUE(statement->fetch());
    return statement->getInt(0);
  }

  std::shared_ptr<moxDataSourceExecutionContext> context_;
};

}  // namespace

TEST_F(ObjectDryRunTest, ARealRunChangesTheData) {
  context_->processDataSources(nullptr, {entry("Insere", kInsert)}, {}, 0);
  EXPECT_EQ(rowsInTheTable(), 3);
}

TEST_F(ObjectDryRunTest, ARealRunWithAReportChangesTheDataOnce) {
  reporter().keepRunReport();
  context_->processDataSources(nullptr, {entry("Insere", kInsert)}, {}, 0);
  EXPECT_EQ(rowsInTheTable(), 3);
}

TEST_F(ObjectDryRunTest, AloneItIsOnlyComposed) {
  EXPECT_EQ(composed({entry("Insere", kInsert)}), Texts{"Insere composed 1"});
  EXPECT_EQ(rowsInTheTable(), 2);
}

TEST_F(ObjectDryRunTest, AheadOfASourceThatIsExecutedItIsOnlyComposed) {
  EXPECT_EQ(composed({entry("Insere", kInsert), entry("Todos", kAll), restrictedBy("Todos")}),
            (Texts{"Insere composed 1", "Todos executed 1", "Restrita composed 1"}));
  EXPECT_EQ(rowsInTheTable(), 2);
}

TEST_F(ObjectDryRunTest, WhenEverythingAheadOfASourceIsExecutedItIsOnlyComposed) {
  std::string const doubled =
      "<moxUnionDataSource name=\"Dobro\"><sources>"
      "<source name=\"Todos\"><moxDataMatrixIntColumn name=\"id\"/></source>"
      "<source name=\"Todos\"><moxDataMatrixIntColumn name=\"id\"/></source>"
      "</sources></moxUnionDataSource>";
  EXPECT_EQ(composed({entry("Insere", kInsert), entry("Todos", kAll), entry("", kInsert),
                      entry("Dobro", doubled), restrictedBy("Dobro")}),
            (Texts{"Insere composed 1", "Todos executed 1", " composed 1", "Dobro executed 0",
                   "Restrita composed 1"}));
  EXPECT_EQ(context_->getDataMatrix("Dobro")->rowCount(), 4u);
  EXPECT_EQ(rowsInTheTable(), 2);
}

TEST_F(ObjectDryRunTest, UnderTheNameOfANeededSourceItIsOnlyComposed) {
  EXPECT_EQ(composed({entry("Insere", kInsert), restrictedBy("Insere")}),
            (Texts{"Insere composed 1", "Restrita composed 1"}));
  EXPECT_EQ(rowsInTheTable(), 2);
}

TEST_F(ObjectDryRunTest, WithoutANameItIsOnlyComposed) {
  EXPECT_EQ(composed({entry("", kInsert), restrictedBy("Insere")}),
            (Texts{" composed 1", "Restrita composed 1"}));
  EXPECT_EQ(rowsInTheTable(), 2);
}

TEST_F(ObjectDryRunTest, InsideAGroupThatIsExecutedItIsOnlyComposed) {
  auto const group =
      "<moxGroupDataSource name=\"Grupo\" outputSource=\"Todos\" "
      "filterSource=\"Todos\"><DataSources>" +
      member("Insere", kInsert) + member("Todos", kAll) + "</DataSources></moxGroupDataSource>";
  EXPECT_EQ(
      composed({entry("Grupo", group), restrictedBy("Grupo")}),
      (Texts{"Grupo executed 0", "Insere composed 1", "Todos executed 1", "Restrita composed 1"}));
  EXPECT_EQ(context_->getDataMatrix("Grupo")->rowCount(), 2u);
  EXPECT_EQ(rowsInTheTable(), 2);
}

TEST_F(ObjectDryRunTest, InsideAGroupThatIsOnlyComposedItIsOnlyComposed) {
  auto const group =
      "<moxGroupDataSource name=\"Grupo\" outputSource=\"Todos\" "
      "filterSource=\"Todos\"><DataSources>" +
      member("Insere", kInsert) + member("Todos", kAll) + "</DataSources></moxGroupDataSource>";
  EXPECT_EQ(composed({entry("Grupo", group)}),
            (Texts{"Grupo composed 0", "Insere composed 1", "Todos composed 1"}));
  EXPECT_EQ(rowsInTheTable(), 2);
}
