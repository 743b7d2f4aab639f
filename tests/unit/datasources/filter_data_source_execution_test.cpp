#include "zyn/datasources/filter_data_source_execution.h"

#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/filters/filter_specification.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

using Strings = std::vector<std::string>;

std::string const kStudents =
    "<moxSQLDataSource name=\"Alunos\"><Command type=\"1\"><from>alunos a</from></Command><Columns>"
    "<Column tableName=\"a\" columnName=\"id\" columnNameOrigin=\"id\" Type=\"2\">"
    "<sql index=\"0\">a.id</sql></Column>"
    "<Column tableName=\"a\" columnName=\"curso\" columnNameOrigin=\"id_curso\" Type=\"2\">"
    "<sql index=\"1\" alias=\"curso\">a.id_curso</sql></Column></Columns>"
    "<Order><By tableName=\"a\" columnName=\"id\"/></Order>"
    "<Filters><column><moxIntegralInFilter tableName=\"a\" columnName=\"curso\"/></column>"
    "</Filters></moxSQLDataSource>";

class FilterDataSourceExecutionTest : public DefinitionTest {
 protected:
  FilterDataSourceExecutionTest() {
    host_.database().execute("create table alunos (id int, id_curso int)");
    host_.database().execute("insert into alunos values (1, 10), (2, 20), (3, 10), (4, null)");
    host_.database().execute("create table cursos (id int, ativo int)");
    host_.database().execute("insert into cursos values (10, 0), (20, 1), (null, 1)");
  }

  std::shared_ptr<moxFilterDataSource> filterWith(std::string const& content) {
    return read<moxFilterDataSource>(
        "<moxFilterDataSource name=\"Do curso\" dataSource=\"Alunos\">" + content +
        "</moxFilterDataSource>");
  }

  /// The students of a run that the filter sources change; the first of them is a member, too.
  std::shared_ptr<moxDataMatrix> run(
      std::vector<std::shared_ptr<moxFilterDataSource>> const& filters) {
    auto const execution =
        std::dynamic_pointer_cast<moxSQLDataSourceExecution>(read(kStudents)->createExecution());
    for (auto const& filter : filters) {
      execution->addFiltersDataSource(filter);
    }
    auto const context = newContext();
    context->processDataSources(
        {}, {{"Alunos", {false, execution}}, {"", {false, filters.at(0)->createExecution()}}}, {},
        0);
    EXPECT_EQ(context->getDataMatrix("Do curso"), context->getDataMatrix("Alunos"));
    return context->getDataMatrix("Do curso");
  }

  /// An execution of a filter source named "f" on "a".
  std::shared_ptr<moxDataSourceExecution> execution() {
    return read("<moxFilterDataSource name=\"f\" dataSource=\"a\"/>")->createExecution();
  }
};

std::string valor(std::string const& values, std::string const& tag = "Valor") {
  return "<Filters><" + tag +
         " columnNameOrigin=\"id_curso\" tableName=\"a\" columnName=\"curso\">" + values + "</" +
         tag + "></Filters>";
}

}  // namespace

TEST_F(FilterDataSourceExecutionTest, IsAFilterSourcesExecutionWithoutFilters) {
  auto const made = std::dynamic_pointer_cast<moxFilterDataSourceExecution>(execution());
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->name(), "moxFilterDataSourceExecution");
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(FilterDataSourceExecutionTest, AMatrixUnderTwoNamesIsOneSharedObject) {
  auto const context = newContext();
  context->registerDataMatrix("a", matrix({{"x", ints(1)}}));
  EXPECT_TRUE(execution()->generateDataMatrix(context, "outro"));
  EXPECT_EQ(context->getDataMatrix("outro"), context->getDataMatrix("a"));
  EXPECT_EQ(context->getDataMatrix("f"), nullptr);
}

TEST_F(FilterDataSourceExecutionTest, WithoutATargetTheResultIsNamedLikeTheDefinition) {
  auto const context = newContext();
  context->registerDataMatrix("a", matrix({{"x", ints(1)}}));
  EXPECT_TRUE(execution()->generateDataMatrix(context, ""));
  EXPECT_EQ(context->getDataMatrix("f"), context->getDataMatrix("a"));
}

TEST_F(FilterDataSourceExecutionTest, TheFirstRelationOfTheSourceNamesTheInput) {
  auto const context = newContext();
  context->registerDataMatrix("a", matrix({{"x", ints(1)}}));
  context->registerDataMatrix("b", matrix({{"x", ints(2)}}));
  auto const made = execution();
  made->setDataSourceExternalRelation({{"c", "a"}, {"a", "b"}, {"a", "c"}});
  EXPECT_TRUE(made->generateDataMatrix(context, "f"));
  EXPECT_EQ(context->getDataMatrix("f"), context->getDataMatrix("b"));
}

TEST_F(FilterDataSourceExecutionTest, RelationsAreReplacedByLaterOnes) {
  auto const context = newContext();
  context->registerDataMatrix("a", matrix({{"x", ints(1)}}));
  auto const made = execution();
  made->setDataSourceExternalRelation({{"a", "b"}});
  made->setDataSourceExternalRelation({});
  EXPECT_TRUE(made->generateDataMatrix(context, "f"));
}

TEST_F(FilterDataSourceExecutionTest, ASourceThatIsNotInTheContextFailsWithTheName) {
  EXPECT_FALSE(execution()->generateDataMatrix(newContext(), "f"));
  auto const failed = [&] {
    newContext()->processDataSources({}, {{"Filtrados", {false, execution()}}}, {}, 0);
  };
  EXPECT_EQ(failureOf(failed), "Falha: Filtrados");
}

TEST_F(FilterDataSourceExecutionTest, ANameThatIsTakenGivesFalse) {
  auto const context = newContext();
  context->registerDataMatrix("a", matrix({{"x", ints(1)}}));
  EXPECT_FALSE(execution()->generateDataMatrix(context, "a"));
}

TEST_F(FilterDataSourceExecutionTest, ValuesNarrowTheRowsOfTheSource) {
  EXPECT_THAT(run({filterWith(valor("<value>10</value><value>30</value>"))}),
              isMatrix({{"id", ints(1, 3)}, {"curso", ints(10, 10)}}));
}

TEST_F(FilterDataSourceExecutionTest, RowsOfAStatementNarrowTheRowsOfTheSource) {
  EXPECT_THAT(run({filterWith(valor("<SQL>select id from cursos where ativo=1</SQL>", "Sql"))}),
              isMatrix({{"id", ints(2)}, {"curso", ints(20)}}));
}

TEST_F(FilterDataSourceExecutionTest, ASemFiltroAddsNoConditionAndIsNoLongerOffered) {
  auto const filter = filterWith(valor("", "SemFiltro"));
  EXPECT_THAT(run({filter}),
              isMatrix({{"id", ints(1, 2, 3, 4)}, {"curso", ints(10, 20, 10, null)}}));
  auto const execution =
      std::dynamic_pointer_cast<moxSQLDataSourceExecution>(read(kStudents)->createExecution());
  EXPECT_EQ(execution->getFilters().size(), 1u);
  execution->addFiltersDataSource(filter);
  EXPECT_TRUE(execution->getFilters().empty());
}

TEST_F(FilterDataSourceExecutionTest, TextsAreAddedToTheStatement) {
  auto const filter = filterWith(
      "<join>join cursos c on c.id=a.id_curso</join><where>c.ativo=0</where>"
      "<order>a.id desc</order>");
  EXPECT_THAT(run({filter}), isMatrix({{"id", ints(3, 1)}, {"curso", ints(10, 10)}}));
}

TEST_F(FilterDataSourceExecutionTest, ColumnsInThePlaceOfTheSourcesGiveAnotherTable) {
  auto const filter = filterWith(
      "<group>a.id_curso</group><order>a.id_curso</order><selectColumns tipo=\"1\">"
      "<column columnName=\"quantos\"><sql alias=\"quantos\" index=\"0\">count([id])</sql>"
      "<columnSourceOrigin tableName=\"a\" columnName=\"id\"/></column></selectColumns>");
  EXPECT_THAT(run({filter}), isMatrix({{"quantos", ints(1, 2, 1)}}));
}

TEST_F(FilterDataSourceExecutionTest, SeveralFilterSourcesNarrowTogether) {
  auto const byCourse = filterWith(valor("<value>10</value>"));
  auto const byText = filterWith("<where>a.id&gt;1</where>");
  EXPECT_THAT(run({byCourse, byText}), isMatrix({{"id", ints(3)}, {"curso", ints(10)}}));
}

TEST_F(FilterDataSourceExecutionTest, ARunLeavesTheDefinitionAsItWas) {
  auto const filter = filterWith(valor("<SQL>select id from cursos</SQL>", "Sql"));
  auto const before = textOf(*filter);
  run({filter});
  run({filter});
  EXPECT_EQ(textOf(*filter), before);
}
