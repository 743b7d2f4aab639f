// The same definition gives the same table, whichever database it runs on.

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/databases.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "unit/datasources/fake_filter_source.h"

namespace mox_test {

namespace {

constexpr char const* kSchema[] = {
    "create table alunos (id int primary key, nome varchar(40), media double, nascimento date, "
    "id_turma int, id_unidade int)",
    "create table turmas (id int primary key, nome varchar(40), ano int)",
    "insert into turmas values (1, 'A', 2023), (2, 'B', 2024), (3, 'C', 2024)",
    "insert into alunos values (1, 'Ana', 9.5, '2010-03-05', 1, 1), (2, 'Bia', null, '2011-01-31', "
    "2, 1), (3, 'Caio', 7.25, null, 2, 2), (4, 'João', 4.0, '2010-12-24', 3, 2), (5, 'Lia', 8.0, "
    "'2009-07-01', 1, 3), (6, 'Zé', 6.5, '2010-05-17', null, null)"};

constexpr char const* kComposed =
    "<moxSQLDataSource name='fonte'><Command type='1'><from>alunos a</from>"
    "<join>left join turmas t on t.id = a.id_turma</join><where>a.id &lt; 6 or a.media is null"
    "</where></Command>"
    "<unidadeColumn tableName='a' columnName='unidade'/>"
    "<Columns>"
    "<Column tableName='a' columnName='id' columnNameOrigin='id' Type='2'>"
    "<sql alias='id' index='0'>a.id</sql></Column>"
    "<Column tableName='a' columnName='aluno' columnNameOrigin='nome' Type='1'>"
    "<sql alias='aluno' index='1'>a.nome</sql></Column>"
    "<Column tableName='a' columnName='media' columnNameOrigin='media' Type='4'>"
    "<sql alias='media' index='2'>a.media</sql></Column>"
    "<Column tableName='a' columnName='nascimento' columnNameOrigin='nascimento' Type='5'>"
    "<sql alias='nascimento' index='3'>a.nascimento</sql></Column>"
    "<Column tableName='t' columnName='turma' columnNameOrigin='nome' Type='1'>"
    "<sql alias='turma' index='4'>t.nome</sql></Column>"
    "<Column tableName='a' columnName='unidade' columnNameOrigin='id_unidade' Type='2'>"
    "<sql alias='unidade' index='5'>a.id_unidade</sql></Column>"
    "</Columns>"
    "<Order><By tableName='a' columnName='aluno' dir='Desc'/></Order></moxSQLDataSource>";

constexpr char const* kPlain =
    "<moxSQLDataSource name='fonte' whereand='and'><Command>select a.id, a.nome from alunos a "
    "where "
    "a.id_unidade in (select b.id_unidade from alunos b where b.id = {{p_id}}) and "
    "coalesce({{p_nulo}}"
    ", 1) = 1</Command>"
    "<Columns>"
    "<Column tableName='a' columnName='id' columnNameOrigin='id' Type='2'/>"
    "<Column tableName='a' columnName='nome' columnNameOrigin='nome' Type='1'/></Columns>"
    "<Order><By tableName='a' columnName='id'/></Order>"
    "<Filters><custom><moxIntegralUniqueFilter columnName='{{p_nulo}}'/></custom></Filters>"
    "</moxSQLDataSource>";

constexpr char const* kWrapped =
    "<moxSQLDataSource name='fonte'><Command>select id_turma, count(*) as n, max(id_unidade) as "
    "unidade from alunos where id = 1 or id &gt; 1 group by id_turma union select -1, 0, null"
    "</Command><unidadeColumn columnName='unidade' allownull='1'/>"
    "<Columns><moxDataMatrixIntColumn name='id_turma'/><moxDataMatrixIntColumn name='n'/>"
    "<moxDataMatrixIntColumn name='unidade'/></Columns></moxSQLDataSource>";

constexpr char const* kAround =
    "<moxSQLDataSource name='fonte'>"
    "<Prefix>create temporary table maiores as select id from alunos where media &gt; 7;</Prefix>"
    "<Sufix>; drop table maiores</Sufix>"
    "<Command>select m.id from maiores m</Command>"
    "<Columns><Column tableName='m' columnName='id' columnNameOrigin='id' Type='2'/></Columns>"
    "<Order><By tableName='m' columnName='id' dir='Desc'/></Order></moxSQLDataSource>";

/// A host on a database, and one run of one definition there.
class SourceRun {
 public:
  SourceRun(std::string const& databaseUrl, std::string const& definition) : host_(databaseUrl) {
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(definition);
    source_ = host_.get<moxSQLDataSource>("moxSQLDataSource");
    EXPECT_TRUE(source_->load(document->root()));
    execution_ = std::dynamic_pointer_cast<moxSQLDataSourceExecution>(source_->createExecution());
    context_ = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  }

  moxDataSourceExecutionContext& context() { return *context_; }
  moxSQLDataSourceExecution& execution() { return *execution_; }

  template <class Filter>
  std::shared_ptr<Filter> filter(char const* className, std::string const& table,
                                 std::string const& column) {
    auto const made = host_.get<Filter>(className);
    made->setColumnName(table, column);
    return made;
  }

  std::shared_ptr<moxDataMatrixSQLFilter> equals(std::string const& table,
                                                 std::string const& column, int value) {
    auto const made = filter<moxDataMatrixSQLIntegerUniqueFilter>(
        "moxDataMatrixSQLIntegerUniqueFilter", table, column);
    made->setValue(value);
    return made;
  }

  std::shared_ptr<moxDataMatrix> table(std::vector<int> const& units) {
    context_->processDataSources({}, {{"fonte", {false, execution_}}}, units, 1);
    return context_->getDataMatrix("fonte");
  }

 private:
  TestHost host_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
  std::shared_ptr<moxSQLDataSource> source_;
  std::shared_ptr<moxSQLDataSourceExecution> execution_;
};

class SQLSource : public OnEveryDatabase {
 protected:
  SQLSource() {
    for (auto const* const statement : kSchema) {
      db.run(statement);
    }
  }
};

MOX_ON_EVERY_DATABASE(SQLSource);

TEST_P(SQLSource, ComposedStatementIsKeptToTheUnitsDespiteItsOr) {
  SourceRun run(db.url(), kComposed);
  EXPECT_THAT(run.table({1, 2}),
              isMatrix({{"id", ints(4, 3, 2, 1)},
                        {"aluno", texts("João", "Caio", "Bia", "Ana")},
                        {"media", doubles(4.0, 7.25, null, 9.5)},
                        {"nascimento", dates("2010-12-24", null, "2011-01-31", "2010-03-05")},
                        {"turma", texts("C", "B", "B", "A")},
                        {"unidade", ints(2, 2, 1, 1)}}));
}

TEST_P(SQLSource, NoUnitsLoadNoRows) {
  SourceRun run(db.url(), kComposed);
  EXPECT_EQ(run.table({})->rowCount(), 0U);
}

TEST_P(SQLSource, UsersFiltersNarrowTheUnitsRows) {
  SourceRun run(db.url(), kComposed);
  auto const born = run.filter<moxDataMatrixSQLDateRangeFilter>("moxDataMatrixSQLDateRangeFilter",
                                                                "a", "nascimento");
  born->setMin(date_t(1, 1, 2010));
  born->setMax(date_t(24, 12, 2010));
  auto const named =
      run.filter<moxDataMatrixSQLTextUniqueFilter>("moxDataMatrixSQLTextUniqueFilter", "a", "nome");
  named->setValue("%o%");
  run.context().setDataSourceFilters("fonte", {born, named});
  auto const found = run.table({1, 2, 3});
  ASSERT_EQ(found->rowCount(), 1U) << asText(*found);
  EXPECT_EQ(cellAt(*found->columnByName("aluno"), 0), Cell(std::string("João")));
}

TEST_P(SQLSource, FilterSourceReplacesColumnsGroupsAndOrders) {
  SourceRun run(db.url(), kComposed);
  auto const filter = std::make_shared<FakeFilterSource>();
  filter->kind = moxFilterDataSource::kSubstitui;
  filter->addColumn("[turma]", "turma", {moxSQLDataSourceColumn::SQLColum{"", "", "t", "turma"}});
  filter->addColumn("max([m])", "maior", {moxSQLDataSourceColumn::SQLColum{"", "", "a", "media"}});
  filter->addColumn("count(*)", "n");
  filter->where = "t.ano = 2024 or t.ano = 2023";
  filter->group = "t.nome";
  filter->order = "t.nome desc";
  run.execution().addFiltersDataSource(filter);
  EXPECT_THAT(run.table({1, 2}), isMatrix({{"turma", texts("C", "B", "A")},
                                           {"maior", doubles(4.0, 7.25, 9.5)},
                                           {"n", ints(1, 2, 1)}}));
}

TEST_P(SQLSource, TokensTakeValuesAndNulls) {
  SourceRun run(db.url(), kPlain);
  run.context().setDataSourceFilters("fonte", {run.equals("", "{{p_id}}", 3)});
  EXPECT_THAT(run.table({}), isMatrix({{"id", ints(3, 4)}, {"nome", texts("Caio", "João")}}));
}

TEST_P(SQLSource, ManagerGivesTokenAndCondition) {
  SourceRun run(db.url(), kPlain);
  run.execution().addManageFiltersData(
      {"tela", {}, {{"", "", "", "{{p_id}}", "aluno"}, {"", "id", "a", "", "outro"}}});
  run.context().setDataSourceFilters("tela",
                                     {run.equals("", "aluno", 3), run.equals("", "outro", 4)});
  EXPECT_THAT(run.table({}), isMatrix({{"id", ints(4)}, {"nome", texts("João")}}));
}

TEST_P(SQLSource, OtherSourcesValuesRestrict) {
  SourceRun run(db.url(), kPlain);
  run.context().setDataSourceFilters("fonte", {run.equals("", "{{p_id}}", 3)});
  run.context().registerDataMatrix("outra", matrix({{"nome", texts("João", null, "Ana")}}));
  run.execution().setDataSourceFilterRelation("outra", "nome", "a.nome");
  EXPECT_THAT(run.table({}), isMatrix({{"id", ints(4)}, {"nome", texts("João")}}));
}

TEST_P(SQLSource, OtherSourceWithoutRowsLetsNothingPass) {
  SourceRun run(db.url(), kPlain);
  run.context().setDataSourceFilters("fonte", {run.equals("", "{{p_id}}", 3)});
  run.context().registerDataMatrix("outra", matrix({{"nome", texts()}}));
  run.execution().setDataSourceFilterRelation("outra", "nome", "a.nome");
  EXPECT_EQ(run.table({})->rowCount(), 0U);
}

TEST_P(SQLSource, HundredThousandValuesOfAnotherSourceRestrict) {
  constexpr int kIds = 100'000;
  SourceRun run(db.url(), kPlain);
  run.context().setDataSourceFilters("fonte", {run.equals("", "{{p_id}}", 3)});
  std::vector<std::optional<int>> ids;
  for (int i = 0; i < kIds; ++i) {
    ids.emplace_back(4 + i);
  }
  run.context().registerDataMatrix("outra", matrix({{"id", ints(ids)}}));
  run.execution().setDataSourceFilterRelation("outra", "id", "a.id");
  auto& reporter = dynamic_cast<moxRunReporter&>(run.context());
  reporter.keepRunReport();
  EXPECT_THAT(run.table({}), isMatrix({{"id", ints(4)}, {"nome", texts("João")}}));
  auto const statement = reporter.runReport().sources.at(0).statements.at(0);
  EXPECT_EQ(statement.conditions.at(0).values.size(), std::size_t{kIds});
  EXPECT_EQ(statement.sending.rfind("100002 values are more than the ", 0), 0U)
      << statement.sending;
}

TEST_P(SQLSource, SeventyThousandTextsOfAnotherSourceRestrict) {
  SourceRun run(db.url(), kPlain);
  run.context().setDataSourceFilters("fonte", {run.equals("", "{{p_id}}", 3)});
  std::vector<std::optional<std::string>> names = {"João"};
  for (int i = 1; i < 70'000; ++i) {
    names.emplace_back("nobody " + std::to_string(i));
  }
  run.context().registerDataMatrix("outra", matrix({{"nome", texts(names)}}));
  run.execution().setDataSourceFilterRelation("outra", "nome", "a.nome");
  EXPECT_THAT(run.table({}), isMatrix({{"id", ints(4)}, {"nome", texts("João")}}));
}

TEST_P(SQLSource, WrappedStatementIsKeptToTheUnitsByItsResult) {
  SourceRun run(db.url(), kWrapped);
  auto const found = run.table({2});
  auto const rows = [&](char const* name) {
    std::multiset<int> values;
    for (unsigned int row = 0; row < found->rowCount(); ++row) {
      values.insert(std::get<int>(cellAt(*found->columnByName(name), row)));
    }
    return values;
  };
  // The class of those without one, the two of unit 2, and the row that belongs to no unit.
  EXPECT_EQ(rows("n"), (std::multiset<int>{0, 1, 1, 2})) << asText(*found);
}

TEST_P(SQLSource, StatementsAroundAreRun) {
  for (int round = 0; round < 2; ++round) {
    SourceRun run(db.url(), kAround);
    EXPECT_THAT(run.table({}), isMatrix({{"id", ints(5, 3, 1)}}));
  }
}

}  // namespace

}  // namespace mox_test
