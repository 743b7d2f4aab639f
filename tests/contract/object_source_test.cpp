// What a statement that is run for its effect does to a real database.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/databases.h"
#include "support/test_host.h"

namespace mox_test {

namespace {

using Rows = std::vector<std::vector<std::string>>;
using Filters = std::vector<std::shared_ptr<moxDataMatrixSQLFilter>>;

std::string integer(std::string const& column) {
  return "<moxIntegralUniqueFilter columnName='" + column + "'/>";
}

std::string text(std::string const& column) {
  return "<moxTextUniqueFilter columnName='" + column + "'/>";
}

class ObjectSource : public OnEveryDatabase {
 protected:
  ObjectSource() {
    db.run(
        "create table alunos (id int primary key, nome varchar(80), nascimento date, "
        "bloqueado int)");
    db.run(
        "insert into alunos values (1, 'Ana', '2010-03-05', 0), (2, 'Bia', null, 0), "
        "(3, 'Caio', '2012-01-31', 1)");
    host_ = std::make_unique<TestHost>(db.url());
    context_ = host_->get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  }

  moxDataSourceToProcess source(std::string const& statement, std::string const& binds = "") {
    auto const document = host_->get<moxXMLDocument>("moxXMLDocument");
    document->loadText("<moxObjectDataSource name='fonte'><Sql>" + statement + "</Sql><Binds>" +
                       binds + "</Binds></moxObjectDataSource>");
    auto const definition = host_->get<moxDataSource>("moxObjectDataSource");
    EXPECT_TRUE(definition->load(document->root()));
    return {"fonte", {false, definition->createExecution()}};
  }

  void run(std::string const& statement, std::string const& binds = "",
           Filters const& filters = {}) {
    context_->setDataSourceFilters("fonte", filters);
    context_->processDataSources(nullptr, {source(statement, binds)}, {}, 0);
  }

  template <class Filter>
  std::shared_ptr<Filter> filter(char const* className, std::string const& column) {
    auto made = host_->get<Filter>(className);
    made->setColumnName("", column);
    return made;
  }

  template <class Filter, class Value>
  std::shared_ptr<Filter> equals(char const* className, std::string const& column,
                                 Value const& value) {
    auto made = filter<Filter>(className, column);
    made->setValue(value);
    return made;
  }

  std::shared_ptr<moxDataMatrixSQLFilter> is(std::string const& column, int value) {
    return equals<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter",
                                                       column, value);
  }

  std::shared_ptr<moxDataMatrixSQLFilter> is(std::string const& column, std::string const& value) {
    return equals<moxDataMatrixSQLTextUniqueFilter>("moxDataMatrixSQLTextUniqueFilter", column,
                                                    value);
  }

  Rows students() { return db.rows("select id, nome, bloqueado from alunos order by id"); }

  std::unique_ptr<TestHost> host_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
};

MOX_ON_EVERY_DATABASE(ObjectSource);

TEST_P(ObjectSource, AStatementWithoutTokensRunsWhole) {
  run("delete from alunos where bloqueado = 1");
  EXPECT_EQ(students(), (Rows{{"1", "Ana", "0"}, {"2", "Bia", "0"}}));
}

TEST_P(ObjectSource, TheConditionBehindTheLastTokenCounts) {
  run("update alunos set nome = {{n}} where id &gt;= {{id}} and bloqueado = 0",
      text("nome") + integer("id"), {is("nome", "Nova"), is("id", 2)});
  EXPECT_EQ(students(), (Rows{{"1", "Ana", "0"}, {"2", "Nova", "0"}, {"3", "Caio", "1"}}));
}

TEST_P(ObjectSource, ParametersThatNobodyGaveAreNulls) {
  run("update alunos set nome = {{n}} where id = {{id}}", text("nome") + integer("id"),
      {is("id", 2)});
  EXPECT_EQ(students(), (Rows{{"1", "Ana", "0"}, {"2", "NULL", "0"}, {"3", "Caio", "1"}}));
}

TEST_P(ObjectSource, WithoutAnyFilterNoRowMeetsAConditionOnAParameter) {
  run("delete from alunos where id = {{id}}", integer("id"));
  EXPECT_EQ(students().size(), 3u);
}

TEST_P(ObjectSource, RangesOfDatesAndListsTakeTheirMarks) {
  auto const born =
      filter<moxDataMatrixSQLDateRangeFilter>("moxDataMatrixSQLDateRangeFilter", "nascimento");
  born->setMin(date_t(1, 1, 2012));
  born->setMax(date_t(31, 12, 2012));
  auto const ids = filter<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter", "id");
  ids->pushVal(3);
  ids->pushVal(1);
  run("delete from alunos where nascimento between {{de}} and {{ate}} and id in ({{i}}, {{j}})",
      "<moxDateRangeFilter columnName='nascimento'/><moxIntegralInFilter columnName='id'/>",
      {ids, born});
  EXPECT_EQ(students(), (Rows{{"1", "Ana", "0"}, {"2", "Bia", "0"}}));
}

TEST_P(ObjectSource, ValuesStayValuesWhateverTheyHold) {
  std::string const canary = "'); drop table alunos; -- {{id}} ? \\' \"";
  run("update alunos set nome = {{n}} where id = {{id}}", text("nome") + integer("id"),
      {is("nome", canary), is("id", 1)});
  EXPECT_EQ(students()[0], (std::vector<std::string>{"1", canary, "0"}));
  EXPECT_EQ(students().size(), 3u);
}

TEST_P(ObjectSource, MoreValuesThanMarksAreRefusedAndChangeNothing) {
  EXPECT_TRUE(failureOf([&] {
    run("delete from alunos where id = {{id}}", integer("id") + integer("bloqueado"),
        {is("id", 1), is("bloqueado", 0)});
  }));
  EXPECT_EQ(students().size(), 3u);
}

TEST_P(ObjectSource, AStatementThatTheDatabaseRefusesIsItsFailure) {
  EXPECT_TRUE(failureOf([&] { run("delete from nada"); }));
  context_ = host_->get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  EXPECT_TRUE(failureOf([&] { run(""); }));
}

TEST_P(ObjectSource, AStatementWithRowsLeavesTheConnectionFit) {
  run("select id from alunos");
  context_ = host_->get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  run("delete from alunos where id = 1");
  EXPECT_EQ(students().size(), 2u);
}

TEST_P(ObjectSource, StatementsInARowAllRun) {
  run("insert into alunos values (4, 'Davi', null, 0); delete from alunos where id = {{id}}",
      integer("id"), {is("id", 1)});
  EXPECT_EQ(db.value("select sum(id) from alunos"), "9");
}

TEST_P(ObjectSource, ARunThatOnlyShowsStatementsChangesNothing) {
  dynamic_cast<moxRunReporter&>(*context_).composeOnly();
  run("delete from alunos where id = {{id}}", integer("id"), {is("id", 1)});
  EXPECT_EQ(students().size(), 3u);
  auto const report = dynamic_cast<moxRunReporter&>(*context_).runReport();
  EXPECT_EQ(report.sources.at(0).statements.at(0).sql, "delete from alunos where id = ?");
}

}  // namespace

}  // namespace mox_test
