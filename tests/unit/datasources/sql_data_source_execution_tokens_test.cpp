// Where a run takes the values of its tokens from.

#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/filters/filter_specification.h"
#include "unit/datasources/sql_execution_fixture.h"

namespace mox_test {

namespace {

using testing::ElementsAre;
using testing::Optional;

class SQLDataSourceExecutionTokens : public SQLExecutionTest {
 protected:
  /// A statement whose tokens are these.
  void tokens(Texts const& names) {
    std::string text = "select 1 where 1";
    for (auto const& name : names) {
      text += " in {{" + name + "}}";
    }
    source_->setSQL(text);
  }

  std::shared_ptr<moxDataMatrixSQLTextUniqueFilter> text(std::string const& column,
                                                         std::string const& value) {
    auto const filter =
        host_.get<moxDataMatrixSQLTextUniqueFilter>("moxDataMatrixSQLTextUniqueFilter");
    filter->setColumnName("", column);
    filter->setValue(value);
    return filter;
  }
};

TEST_F(SQLDataSourceExecutionTokens, FilterGivenForTheSourceIsTheValueAndNoCondition) {
  tokens({"p"});
  context_->setDataSourceFilters("fonte", {text("{{p}}", "x' or 1=1 -- {{q}}")});
  EXPECT_EQ(sent(), "select 1 where 1 in ?");
  EXPECT_THAT(binds(), ElementsAre("0: text x' or 1=1 -- {{q}}"));
}

TEST_F(SQLDataSourceExecutionTokens, TokenThatStandsTwiceIsBoundTwiceInOrder) {
  tokens({"p", "q", "p"});
  context_->setDataSourceFilters("fonte", {equals("", "{{q}}", 2), equals("", "{{p}}", 1)});
  EXPECT_EQ(sent(), "select 1 where 1 in ? in ? in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 1", "1: int 2", "2: int 1"));
}

TEST_F(SQLDataSourceExecutionTokens, TokenThatStandsTwiceTakesOneFilterOutForEach) {
  tokens({"p", "p"});
  context_->setDataSourceFilters("fonte",
                                 {text("{{p}}", "a"), text("{{p}}", "b"), equals("t", "c", 3)});
  EXPECT_EQ(sent(), "select 1 where 1 in ? in ?  where t.c = ? ");
  EXPECT_THAT(binds(), ElementsAre("0: text a", "1: text a", "2: int 3"));
}

TEST_F(SQLDataSourceExecutionTokens, OnlyTheFirstFilterOfATokenIsTakenOutForIt) {
  tokens({"p"});
  context_->setDataSourceFilters("fonte", {text("{{p}}", "a"), text("{{p}}", "b")});
  EXPECT_EQ(sent(), "select 1 where 1 in ?  where {{p}} = ? ");
}

TEST_F(SQLDataSourceExecutionTokens, ValueForATokenThatIsNotThereTakesNoOthersMark) {
  tokens({"p"});
  auto const reporter = std::dynamic_pointer_cast<moxRunReporter>(context_);
  reporter->keepRunReport();
  context_->setDataSourceFilters(
      "fonte", {equals("", "{{q}}", 7), equals("", "{{p}}", 1), equals("t", "c", 3)});
  EXPECT_EQ(sent(), "select 1 where 1 in ?  where t.c = ? ");
  EXPECT_THAT(binds(), ElementsAre("0: int 1", "1: int 3"));
  auto const ignored = reporter->runReport().ignoredFilters;
  ASSERT_EQ(ignored.size(), 1U);
  EXPECT_EQ(ignored.front().column, "{{q}}");
  EXPECT_EQ(ignored.front().reason, "no token of the statement takes its value");
}

TEST_F(SQLDataSourceExecutionTokens, ProgramsOwnFilterServesAToken) {
  tokens({"p"});
  context_->addDataSourceFixedFilter("fonte", equals("", "{{p}}", 4));
  EXPECT_EQ(sent(), "select 1 where 1 in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 4"));
}

TEST_F(SQLDataSourceExecutionTokens, FilterGivenForTheSourceComesBeforeTheManagers) {
  tokens({"p"});
  execution_->addManageFiltersData({"tela", {{"{{p}}"}}, {}});
  context_->setDataSourceFilters("tela", {equals("", "{{p}}", 1)});
  context_->setDataSourceFilters("fonte", {equals("", "{{p}}", 2)});
  EXPECT_EQ(sent(), "select 1 where 1 in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 2"));
}

TEST_F(SQLDataSourceExecutionTokens, ManagersRelatedFilterIsRenamedForTheTimeOfTheQuery) {
  tokens({"p"});
  execution_->addManageFiltersData({"tela", {}, {{"", "", "", "{{p}}", "turma"}}});
  auto const given = equals("t", "turma", 8);
  context_->setDataSourceFilters("tela", {given});
  EXPECT_EQ(sent(), "select 1 where 1 in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 8"));
  EXPECT_EQ(given->getColumnName(), "turma");
  EXPECT_EQ(given->getTableName(), "");
}

TEST_F(SQLDataSourceExecutionTokens, ManagersAvaliableFilterServesItsToken) {
  tokens({"p"});
  execution_->addManageFiltersData({"tela", {{"{{p}}"}}, {}});
  context_->setDataSourceFilters("tela", {equals("", "{{p}}", 8)});
  EXPECT_EQ(sent(), "select 1 where 1 in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 8"));
}

TEST_F(SQLDataSourceExecutionTokens, EveryManagerThatSpeaksOfATokenGivesItsValue) {
  tokens({"p"});
  execution_->setManageFiltersData(
      {{"a", {}, {{"", "", "", "{{p}}", "x"}}}, {"b", {}, {{"", "", "", "{{p}}", "y"}}}});
  context_->setDataSourceFilters("a", {equals("", "x", 1)});
  context_->setDataSourceFilters("b", {equals("", "y", 2)});
  run();
  EXPECT_THAT(binds(), ElementsAre("0: int 1", "1: int 2"));
}

TEST_F(SQLDataSourceExecutionTokens, OneFilterMayServeTwoTokensAndKeepsItsOwnName) {
  tokens({"p", "q"});
  execution_->addManageFiltersData(
      {"tela", {}, {{"", "", "", "{{p}}", "turma"}, {"", "", "", "{{q}}", "turma"}}});
  auto const given = equals("", "turma", 8);
  context_->setDataSourceFilters("tela", {given});
  EXPECT_EQ(sent(), "select 1 where 1 in ? in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 8", "1: int 8"));
  EXPECT_EQ(given->getColumnName(), "turma");
}

TEST_F(SQLDataSourceExecutionTokens, ManagerThatHasNoFilterForATokenLeavesItToTheOthers) {
  tokens({"p"});
  specification("moxIntegralUniqueFilter", "", "{{p}}");
  execution_->addManageFiltersData({"tela", {}, {{"", "", "", "{{p}}", "turma"}}});
  EXPECT_EQ(sent(), "select 1 where 1 in ?");
  EXPECT_THAT(binds(), ElementsAre("0: null"));
}

TEST_F(SQLDataSourceExecutionTokens, DeclaredParametersWithoutAValueAreNulls) {
  tokens({"i", "d", "l"});
  specification("moxIntegralUniqueFilter", "", "{{i}}");
  specification("moxDateUniqueFilter", "", "{{d}}");
  specification("moxIntegralInFilter", "", "{{l}}");
  EXPECT_EQ(sent(), "select 1 where 1 in ? in ? in ?");
  EXPECT_THAT(binds(), ElementsAre("0: null", "1: null", "2: null"));
}

TEST_F(SQLDataSourceExecutionTokens, DeclaredParametersOfOtherKindsCannotBeLeftOut) {
  for (auto const* const className :
       {"moxTextUniqueFilter", "moxDoubleUniqueFilter", "moxIntegralRangeFilter",
        "moxDateRangeFilter", "moxTextInFilter", "moxDoubleInFilter",
        "moxIntegralUniqueSQLFilter"}) {
    auto const declared = specification(className, "", "{{p}}");
    tokens({"p"});
    EXPECT_THAT(failure(), Optional(std::string("Formato de parâmetro não implementado")))
        << className;
    source_->removeFilter(declared);
  }
}

TEST_F(SQLDataSourceExecutionTokens, ListGivenForADeclaredParameterBindsOneValue) {
  tokens({"l", "p_idUnidadeNegocioMatriz"});
  specification("moxIntegralInFilter", "", "{{l}}");
  auto const given = host_.get<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter");
  given->setColumnName("", "{{l}}");
  given->pushVal(6);
  given->pushVal(4);
  context_->setDataSourceFilters("fonte", {given});
  useUnits({}, 3);
  EXPECT_EQ(sent(), "select 1 where 1 in ? in ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 4", "1: int 3"));
}

TEST_F(SQLDataSourceExecutionTokens, DefaultUnitIsTheRunsWhenItHasOne) {
  host_.logIn({.id = 7, .units = {{3, 1}}, .worksByUnits = true});
  tokens({"p_idUnidadeNegocioPadrao"});
  useUnits({8}, 1);
  run();
  EXPECT_THAT(binds(), ElementsAre("0: int 8"));
}

TEST_F(SQLDataSourceExecutionTokens, DefaultUnitIsTheSessionsWhenTheRunHasTwo) {
  host_.logIn({.id = 7, .units = {{3, 1}}, .worksByUnits = true});
  tokens({"p_idUnidadeNegocioPadrao"});
  useUnits({8, 9}, 1);
  run();
  EXPECT_THAT(binds(), ElementsAre("0: int 3"));
}

TEST_F(SQLDataSourceExecutionTokens, DefaultUnitIsNoneWithoutASession) {
  tokens({"p_idUnidadeNegocioPadrao"});
  useUnits({8, 9}, 1);
  run();
  EXPECT_THAT(binds(), ElementsAre("0: int 0"));
}

TEST_F(SQLDataSourceExecutionTokens, HeadOfficeIsTheRuns) {
  tokens({"p_idUnidadeNegocioMatriz"});
  useUnits({8}, 12);
  run();
  EXPECT_THAT(binds(), ElementsAre("0: int 12"));
}

TEST_F(SQLDataSourceExecutionTokens, UserIsTheSessions) {
  host_.logIn({.id = 7, .units = {{3, 1}}});
  tokens({"p_idUsuario"});
  run();
  EXPECT_THAT(binds(), ElementsAre("0: int 7"));
}

TEST_F(SQLDataSourceExecutionTokens, UserWithoutASessionIsAFailure) {
  tokens({"p_idUsuario"});
  EXPECT_THAT(
      failure(),
      Optional(std::string("Não foi possível filtrar o usuário pois não existe sessão ativa")));
  EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
}

TEST_F(SQLDataSourceExecutionTokens, DeclaredParameterComesBeforeTheSessions) {
  specification("moxIntegralUniqueFilter", "", "{{p_idUsuario}}");
  tokens({"p_idUsuario"});
  run();
  EXPECT_THAT(binds(), ElementsAre("0: null"));
}

TEST_F(SQLDataSourceExecutionTokens, UnknownTokenIsNamed) {
  tokens({"p x"});
  EXPECT_THAT(failure(), Optional(std::string("Filtro com token p x não localizado")));
}

TEST_F(SQLDataSourceExecutionTokens, NamesOfTokensCountToTheByte) {
  tokens({"P"});
  context_->setDataSourceFilters("fonte", {equals("", "{{p}}", 1)});
  EXPECT_THAT(failure(), Optional(std::string("Filtro com token P não localizado")));
}

}  // namespace

}  // namespace mox_test
