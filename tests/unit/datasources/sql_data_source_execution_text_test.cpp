// How a run composes its statement from the definition and the filter sources.

#include <stdexcept>

#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "unit/datasources/sql_execution_fixture.h"

namespace mox_test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

using SQLDataSourceExecutionText = SQLExecutionTest;

TEST_F(SQLDataSourceExecutionText, PlainTextWithoutFiltersIsSentUnchanged) {
  source_->setSQL("select a,  b\nfrom t /* x */ where c = '['");
  EXPECT_EQ(sent(), "select a,  b\nfrom t /* x */ where c = '['");
  EXPECT_THAT(binds(), IsEmpty());
}

TEST_F(SQLDataSourceExecutionText, PlainTextHasItsTokensTurnedIntoMarks) {
  source_->setSQL("select a from t where b = {{p_idUnidadeNegocioMatriz}}");
  useUnits({5}, 9);
  EXPECT_EQ(sent(), "select a from t where b = ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 9"));
}

TEST_F(SQLDataSourceExecutionText, PrefixAndSuffixStandAroundTheStatement) {
  source_->setSQL("select a from t");
  source_->setPrefix("create temporary table x as select 1;");
  source_->setSufix("; drop table x");
  EXPECT_EQ(sent(), "create temporary table x as select 1; select a from t ; drop table x");
}

TEST_F(SQLDataSourceExecutionText, FiltersJoinAPlainTextByItsOwnWord) {
  source_->setSQL("select a from t where b = 1");
  source_->setWhereAnd("and");
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5)});
  EXPECT_EQ(sent(), "select a from t where b = 1  and t.c = ? ");
  EXPECT_THAT(binds(), ElementsAre("0: int 5"));
}

TEST_F(SQLDataSourceExecutionText, FiltersJoinAPlainTextByWhereWhenItSaysNothing) {
  source_->setSQL("select a from t");
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5)});
  EXPECT_EQ(sent(), "select a from t  where t.c = ? ");
}

TEST_F(SQLDataSourceExecutionText, WrappedTextIsAPlainTextLikeAnyOther) {
  source_->setSQL("select * from ( select a from t where b or c ) command ");
  context_->setDataSourceFilters("fonte", {equals("", "a", 5)});
  EXPECT_EQ(sent(), "select * from ( select a from t where b or c ) command   where a = ? ");
}

TEST_F(SQLDataSourceExecutionText, ComposedStatementTakesItsColumnsAndPieces) {
  composed("alunos t", "t.ativo = 1");
  column("t", "id", "t.id", "codigo");
  column("t", "nome", "t.nome", "");
  source_->setSQLJoin("inner join turmas u on u.id = t.id_turma");
  source_->setSQLGroup("t.id");
  EXPECT_EQ(sent(),
            "select t.id as codigo,t.nome from alunos t inner join turmas u on u.id = t.id_turma "
            "where t.ativo = 1 group by t.id");
}

TEST_F(SQLDataSourceExecutionText, FiltersJoinAComposedStatementByAndBehindItsWhere) {
  composed("t", "b = 1");
  column("t", "a", "t.a");
  source_->setWhereAnd("having");
  source_->setSQLGroup("t.a");
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5), equals("t", "d", 6)});
  EXPECT_EQ(sent(), "select t.a from t where b = 1  and t.c = ?  and t.d = ?  group by t.a");
  EXPECT_THAT(binds(), ElementsAre("0: int 5", "1: int 6"));
}

TEST_F(SQLDataSourceExecutionText, FiltersJoinAComposedStatementWithoutWhereByItsOwnWord) {
  composed("t");
  column("t", "a", "t.a");
  source_->setWhereAnd("having");
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5)});
  EXPECT_EQ(sent(), "select t.a from t  having t.c = ? ");
}

TEST_F(SQLDataSourceExecutionText, ComposedWithoutAnyColumnsLeavesTheBareWord) {
  composed("x");
  EXPECT_EQ(sent(), "select from x");
}

TEST_F(SQLDataSourceExecutionText, ReplacingFilterSourceWithoutColumnsLeavesTheBareWord) {
  composed("x");
  column("t", "a", "t.a");
  filterSource()->kind = moxFilterDataSource::kSubstitui;
  EXPECT_EQ(sent(), "select from x");
}

TEST_F(SQLDataSourceExecutionText, FilterSourceAddsItsColumnsBehindTheDefinitions) {
  composed("t");
  column("t", "a", "t.a");
  filterSource()->addColumn("count(*)", "n");
  EXPECT_EQ(sent(), "select t.a,count(*) as n from t");
}

TEST_F(SQLDataSourceExecutionText, ReplacingFilterSourceTakesAllEarlierColumnsAway) {
  composed("t");
  column("t", "a", "t.a");
  filterSource()->addColumn("1", "um");
  auto const replacing = filterSource();
  replacing->kind = moxFilterDataSource::kSubstitui;
  replacing->addColumn("2", "dois");
  filterSource()->addColumn("3", "tres");
  EXPECT_EQ(sent(), "select 2 as dois,3 as tres from t");
}

TEST_F(SQLDataSourceExecutionText, SecondReplacingFilterSourceIsRefused) {
  composed("t");
  filterSource()->kind = moxFilterDataSource::kSubstitui;
  filterSource()->kind = moxFilterDataSource::kSubstitui;
  EXPECT_THAT(failure(),
              Optional(std::string(
                  "Não é permitido mais uma fonte de dados que não permita retorno das colunas")));
  EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
}

TEST_F(SQLDataSourceExecutionText, SecondReplacingFilterSourceIsReadBeforeItIsRefused) {
  composed("t");
  filterSource()->kind = moxFilterDataSource::kSubstitui;
  auto const second = filterSource();
  second->kind = moxFilterDataSource::kSubstitui;
  second->addColumn("[x]", "", {Origin{"", "", "t", "falta"}});
  EXPECT_THAT(failure(),
              Optional(std::string("Não localizado a coluna t.falta no source de origem fonte")));
}

TEST_F(SQLDataSourceExecutionText, MarksStandForTheOriginsInTheirOrderWhateverTheySay) {
  composed("t");
  column("t", "a", "t.a + 0", "a");
  column("u", "b", "u.b", "b");
  auto const filter = filterSource();
  filter->kind = moxFilterDataSource::kSubstitui;
  filter->addColumn("sum([x]+[y])", "soma", {Origin{"", "", "u", "b"}, Origin{"", "", "t", "a"}});
  filter->addColumn("max([z])", "maior", {Origin{"", "", "t", "a"}});
  EXPECT_EQ(sent(), "select sum(u.b+t.a + 0) as soma,max(t.a + 0) as maior from t");
}

TEST_F(SQLDataSourceExecutionText, MarkBeyondTheOriginsIsARangeError) {
  composed("t");
  column("t", "a", "t.a");
  filterSource()->addColumn("[x]+[y]+[z]", "",
                            {Origin{"", "", "t", "a"}, Origin{"", "", "t", "a"}});
  EXPECT_THROW(run(), std::out_of_range);
}

TEST_F(SQLDataSourceExecutionText, OpenBracketWithoutItsOtherHalfTakesTheRestAway) {
  composed("t");
  filterSource()->addColumn("1 + [x", "um");
  filterSource()->addColumn("2", "dois");
  EXPECT_EQ(sent(), "select 1 + ,2 as dois from t");
}

TEST_F(SQLDataSourceExecutionText, ClosingBracketWithoutItsOtherHalfIsCopied) {
  composed("t");
  filterSource()->addColumn("1] + 2", "tres");
  EXPECT_EQ(sent(), "select 1] + 2 as tres from t");
}

TEST_F(SQLDataSourceExecutionText, MissingOriginOfAMarkIsNamed) {
  composed("t");
  column("t", "a", "t.a");
  filterSource()->addColumn("[x]", "", {Origin{"t", "a", "u", "a"}});
  EXPECT_THAT(failure(),
              Optional(std::string("Não localizado a coluna u.a no source de origem fonte")));
}

TEST_F(SQLDataSourceExecutionText, FilterSourceAddsItsTextsToAComposedStatement) {
  composed("t", "t.a = 1");
  column("t", "a", "t.a");
  source_->setSQLJoin("join u on 1");
  source_->setSQLGroup("t.a");
  auto const filter = filterSource();
  filter->join = "join v on 2";
  filter->where = "v.b = 2";
  filter->group = "v.b";
  filter->order = "v.c desc";
  EXPECT_EQ(sent(),
            "select t.a from t join u on 1 join v on 2 where t.a = 1 and v.b = 2 group by t.a,v.b "
            "order by v.c desc");
}

TEST_F(SQLDataSourceExecutionText, FilterSourceBringsTheWordsThatAreMissing) {
  composed("t");
  column("t", "a", "t.a");
  auto const filter = filterSource();
  filter->where = "t.b = 2";
  filter->group = "t.b";
  EXPECT_EQ(sent(), "select t.a from t where t.b = 2 group by t.b");
}

TEST_F(SQLDataSourceExecutionText, FilterSourceAddsItsTextsToAPlainStatement) {
  source_->setSQL("select a from t");
  source_->setWhereAnd("having");
  auto const filter = filterSource();
  filter->join = "join v on 2";
  filter->where = "v.b = 2";
  filter->group = "v.b";
  filter->order = "v.c";
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5)});
  EXPECT_EQ(sent(),
            "select a from t join v on 2 where v.b = 2  and t.c = ?  group by v.b order by v.c");
}

TEST_F(SQLDataSourceExecutionText, FilterSourcesColumnsAreNotForAPlainStatement) {
  source_->setSQL("select a from t");
  filterSource()->addColumn("1", "um");
  EXPECT_EQ(sent(), "select a from t");
}

TEST_F(SQLDataSourceExecutionText, GroupsOfAllFilterSourcesGoAheadOfTheirOrders) {
  composed("t");
  column("t", "a", "t.a");
  auto const first = filterSource();
  first->group = "t.a";
  first->order = "t.b";
  auto const second = filterSource();
  second->group = "t.c";
  second->order = "t.d desc";
  EXPECT_EQ(sent(), "select t.a from t group by t.a,t.c order by t.b,t.d desc");
}

TEST_F(SQLDataSourceExecutionText, DefinitionOrdersByItsColumnsOrigins) {
  source_->setSQL("select a, b from t");
  source_->addOrderColumn(column("t", "a", "", "outro"), true);
  source_->addOrderColumn(column("t", "b"), false);
  EXPECT_EQ(sent(), "select a, b from t order by t.a desc , t.b asc ");
}

TEST_F(SQLDataSourceExecutionText, OrderOfAFilterSourceStandsInThePlaceOfTheDefinitions) {
  source_->setSQL("select a, b from t");
  source_->addOrderColumn(column("t", "a"), true);
  filterSource()->order = "t.b";
  EXPECT_EQ(sent(), "select a, b from t order by t.b");
}

TEST_F(SQLDataSourceExecutionText, DefinitionsOrderStaysWithAFilterSourceThatHasNone) {
  source_->setSQL("select a, b from t");
  source_->addOrderColumn(column("t", "a"), false);
  filterSource()->group = "t.b";
  EXPECT_EQ(sent(), "select a, b from t group by t.b order by t.a asc ");
}

TEST_F(SQLDataSourceExecutionText, TokenInAGroupIsNotReplaced) {
  composed("t");
  column("t", "a", "t.a");
  source_->setSQLGroup("{{p_idUnidadeNegocioMatriz}}");
  filterSource()->order = "{{x}}";
  EXPECT_EQ(sent(), "select t.a from t group by {{p_idUnidadeNegocioMatriz}} order by {{x}}");
}

TEST_F(SQLDataSourceExecutionText, TokensInEveryOtherPieceAreReplacedInOrder) {
  composed("f({{a}})", "t.c = {{c}}");
  column("t", "a", "{{e}}", "x");
  source_->setSQLJoin("join u on {{b}}");
  filterSource()->where = "t.d = {{d}}";
  context_->setDataSourceFilters(
      "fonte", {equals("", "{{a}}", 1), equals("", "{{b}}", 2), equals("", "{{c}}", 3),
                equals("", "{{d}}", 4), equals("", "{{e}}", 5)});
  EXPECT_EQ(sent(), "select ? as x from f(?) join u on ? where t.c = ? and t.d = ?");
  EXPECT_THAT(binds(), ElementsAre("0: int 5", "1: int 1", "2: int 2", "3: int 3", "4: int 4"));
}

TEST_F(SQLDataSourceExecutionText, OldFormRunsAsAPlainStatement) {
  auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
  document->loadText(
      "<moxSQLDataSource name=\"fonte\"><Sql>select a from t</Sql></moxSQLDataSource>");
  ASSERT_TRUE(source_->load(document->root()));
  EXPECT_TRUE(source_->getModoCompatibilidade());
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5)});
  EXPECT_EQ(sent(), "select a from t  where t.c = ? ");
}

}  // namespace

}  // namespace mox_test
