#include "core/database/sqlite_functions.h"

#include <gtest/gtest.h>

#include "core/date/clock.h"
#include "unit/core/database/memory_database.h"

namespace mox::core {
namespace {

/// Evaluates single expressions; it is 5 March 2024, 14:07:09.
struct SqliteFunctions : ::testing::Test {
  SqliteFunctions() {
    setClock([] { return datetime_t(5, 3, 2024, 14, 7, 9); });
  }
  ~SqliteFunctions() override { setClock({}); }

  std::string eval(std::string const& expression) { return data.value("select " + expression); }

  MemoryDatabase data;
};

TEST_F(SqliteFunctions, DateReadsWhatTheServerReads) {
  EXPECT_EQ(eval("date('2024-03-05 10:11:12')"), "2024-03-05");
  EXPECT_EQ(eval("date('2024-1-01')"), "2024-01-01");
  EXPECT_EQ(eval("date('2024/3/5')"), "2024-03-05");
  EXPECT_EQ(eval("date(20240305)"), "2024-03-05");
  EXPECT_EQ(eval("date('2024-02-30')"), "NULL");
  EXPECT_EQ(eval("date('abc')"), "NULL");
  EXPECT_EQ(eval("date(null)"), "NULL");
}

TEST_F(SqliteFunctions, DateKeepsItsModifierForms) {
  EXPECT_EQ(eval("date('2024-03-05', '+1 day')"), "2024-03-06");
  EXPECT_EQ(eval("date('2024-03-05', 'start of month', '-1 day')"), "2024-02-29");
}

TEST_F(SqliteFunctions, PartsOfADate) {
  EXPECT_EQ(eval("year('2024-03-05')"), "2024");
  EXPECT_EQ(eval("month('2024-03-05')"), "3");
  EXPECT_EQ(eval("day('2024-03-05 10:11:12')"), "5");
  EXPECT_EQ(eval("quarter('2024-03-31')"), "1");
  EXPECT_EQ(eval("quarter('2024-04-01')"), "2");
  EXPECT_EQ(eval("quarter('2024-12-31')"), "4");
  EXPECT_EQ(eval("year('x')"), "NULL");
  EXPECT_EQ(eval("quarter(null)"), "NULL");
}

TEST_F(SqliteFunctions, PeriodLabelsAreDates) {
  EXPECT_EQ(eval("date(concat(year('2024-08-09'),'-',quarter('2024-08-09'),'-01'))"), "2024-03-01");
  EXPECT_EQ(eval("date(concat(year('2024-08-09'),'-',01,'-01'))"), "2024-01-01");
  EXPECT_EQ(eval("date(concat(year('2024-08-09'),'-',month('2024-08-09'),'-01'))"), "2024-08-01");
}

TEST_F(SqliteFunctions, TodayAndNowAreTheClocks) {
  EXPECT_EQ(eval("curdate()"), "2024-03-05");
  EXPECT_EQ(eval("now()"), "2024-03-05 14:07:09");
  EXPECT_EQ(eval("year(curdate())"), "2024");
}

TEST_F(SqliteFunctions, IfChoosesAValueWithItsType) {
  EXPECT_EQ(eval("if(1, 'a', 'b')"), "a");
  EXPECT_EQ(eval("if(0, 'a', 'b')"), "b");
  EXPECT_EQ(eval("if(null, 'a', 'b')"), "b");
  EXPECT_EQ(eval("if('0', 'a', 'b')"), "b");
  EXPECT_EQ(eval("if(0.5, 'a', 'b')"), "a");
  EXPECT_EQ(eval("typeof(if(2 > 1, 1.5, 'b'))"), "real");
  EXPECT_EQ(eval("if(1, null, 'b')"), "NULL");
}

TEST_F(SqliteFunctions, ConcatIsNullWhenAnyValueIs) {
  EXPECT_EQ(eval("concat('a', 1, 'b')"), "a1b");
  EXPECT_EQ(eval("concat('a', null)"), "NULL");
  EXPECT_EQ(eval("concat('a')"), "a");
  EXPECT_EQ(eval("concat(1.5, '|', 2e0, '|', 1e5, '|', -0.25, '|', 1e300)"),
            "1.5|2|100000|-0.25|1e300");
  EXPECT_EQ(eval("concat('ação', '!')"), "ação!");
}

TEST_F(SqliteFunctions, LikeIgnoresCaseAndAccentsAndKnowsTheBackslash) {
  EXPECT_EQ(eval("'JOÃO DA SILVA' like '%joao%'"), "1");
  EXPECT_EQ(eval("'50%' like '50\\%'"), "1");
  EXPECT_EQ(eval("'50x' like '50\\%'"), "0");
  EXPECT_EQ(eval("'50%' like '50!%' escape '!'"), "1");
  EXPECT_EQ(eval("'abc' not like 'a%'"), "0");
  EXPECT_EQ(eval("null like 'a'"), "NULL");
  EXPECT_EQ(eval("12 like '1%'"), "1");
}

TEST_F(SqliteFunctions, LikeRefusesWhatItCannotRead) {
  auto const escape = failureOf([&] { eval("'a' like 'a' escape 'xy'"); });
  ASSERT_TRUE(escape);
  EXPECT_EQ(escape->message, "the escape of like must be one ASCII character");
  auto const statement = data.db.prepare("select 'a' like ?");
  statement->bindString(0, std::string(50001, '%'));
  auto const pattern = failureOf([&] { statement->execute(); });
  ASSERT_TRUE(pattern);
  EXPECT_EQ(pattern->message, "the pattern of like is too long");
}

TEST_F(SqliteFunctions, BetweenWithSlashDatesComparesDates) {
  data.run("create table t (d date)");
  data.run("insert into t values ('2024-03-04'), ('2024-03-05'), ('2024-12-31'), ('2025-01-01')");
  EXPECT_EQ(data.value("select count(*) from t where d between '2024/3/5' and '2024/12/31'"), "2");
}

TEST_F(SqliteFunctions, FilterFormsOfDatesWork) {
  data.run("create table t (d datetime)");
  data.run("insert into t values ('2024-03-05 10:00:00'), ('2024-03-06 00:00:00'), (null)");
  auto const range = data.db.prepare("select count(*) from t where date(t.d) between ? and ? ");
  range->bindDate(0, date_t(5, 3, 2024));
  range->bindDate(1, date_t(6, 3, 2024));
  range->execute();
  EXPECT_EQ(readAll(*range), (TextRows{{"2"}}));
  auto const unique = data.db.prepare("select count(*) from t where date(d) = ? ");
  unique->bindDate(0, date_t(5, 3, 2024));
  unique->execute();
  EXPECT_EQ(readAll(*unique), (TextRows{{"1"}}));
}

TEST_F(SqliteFunctions, EmptyConditionsAndSubqueriesAreTaken) {
  data.run("create table t (a int)");
  data.run("insert into t values (1), (2), (null)");
  EXPECT_EQ(data.value("select count(*) from t where 1=0"), "0");
  EXPECT_EQ(data.value("select count(*) from t where a not in (1, 3)"), "1");
  EXPECT_EQ(data.value("select count(*) from t where exists (select 1 from t)"), "3");
  EXPECT_EQ(data.value("select count(*) from (  select * from ( select a from t ) command  ) at"),
            "3");
}

TEST_F(SqliteFunctions, ConfigurationOfTheUnitStandsBeforeTheGeneralOne) {
  data.run(
      "create table ambiente_configuracoes (modulo varchar(50), chave varchar(50), id_unidade int, "
      "valor text)");
  data.run(
      "insert into ambiente_configuracoes values ('mox_genericos', 'dataBaseUtilizacao', null, "
      "'2020-01-01'), "
      "('mox_genericos', 'dataBaseUtilizacao', 3, '2022-02-02')");
  std::string const call =
      "date(ambiente_buscadadostringconfiguracao('mox_genericos','dataBaseUtilizacao',";
  EXPECT_EQ(eval(call + "3))"), "2022-02-02");
  EXPECT_EQ(eval(call + "4))"), "2020-01-01");
  EXPECT_EQ(eval(call + "null))"), "2020-01-01");
  EXPECT_EQ(eval("ambiente_buscadadostringconfiguracao('mox_genericos','other',3)"), "NULL");
}

TEST_F(SqliteFunctions, ConfigurationIsNullWithoutItsTable) {
  EXPECT_EQ(eval("ambiente_buscadadostringconfiguracao('mox_genericos','dataBaseUtilizacao',1)"),
            "NULL");
}

TEST_F(SqliteFunctions, ConfigurationReportsATableOfAnotherShape) {
  data.run("create table ambiente_configuracoes (modulo text)");
  auto const failure = failureOf([&] { eval("ambiente_buscadadostringconfiguracao('a','b',1)"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "no such column: valor");
}

}  // namespace
}  // namespace mox::core
