// A definition with a unit column never runs unrestricted.

#include "unit/datasources/sql_execution_fixture.h"

namespace mox_test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

class SQLDataSourceExecutionUnits : public SQLExecutionTest {
 protected:
  SQLDataSourceExecutionUnits() { useUnits({3, 1}, 9); }

  void plain(std::string const& sql, std::string const& whereAnd = {}) {
    source_->setSQL(sql);
    source_->setWhereAnd(whereAnd);
    if (!source_->getUnidadeColumn().first) {
      source_->setUnidadeColumn(column("t", "unid"), false);
    }
  }

  /// The statement is sent with the units among its conditions.
  void expectRestricted() {
    context_ = newContext();
    useUnits({3, 1}, 9);
    EXPECT_THAT(sent(), testing::HasSubstr("( t.unid in (?,?)  ) "));
    EXPECT_THAT(binds(), ElementsAre("0: int 1", "1: int 3"));
  }

  void expectRefused(std::string const& reason) {
    context_ = newContext();
    useUnits({3, 1}, 9);
    auto const before = database_->preparedTexts().size();
    EXPECT_THAT(
        failure(),
        Optional("A consulta fonte tem coluna de unidade e não pode ser restringida: " + reason));
    EXPECT_EQ(database_->preparedTexts().size(), before);
    EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
  }

  static constexpr char const* kOr = "há um \"or\" fora de parênteses na condição";
  static constexpr char const* kUnion =
      "há um \"union\", \"intersect\" ou \"except\" fora de parênteses";
  static constexpr char const* kNoPlace = "a condição da unidade não ficaria no \"where\"";
};

TEST_F(SQLDataSourceExecutionUnits, UnitsGoOnTheColumnsOrigin) {
  source_->setSQL("select a from t");
  source_->setUnidadeColumn(column("t", "id_unidade", "", "unidade"), false);
  EXPECT_EQ(sent(), "select a from t  where  ( t.id_unidade in (?,?)  ) ");
  EXPECT_THAT(binds(), ElementsAre("0: int 1", "1: int 3"));
}

TEST_F(SQLDataSourceExecutionUnits, RowsWithoutAUnitPassWhereTheDefinitionAllowsIt) {
  source_->setSQL("select a from t");
  source_->setUnidadeColumn(column("t", "id_unidade"), true);
  EXPECT_EQ(sent(), "select a from t  where  ( t.id_unidade in (?,?)  or t.id_unidade is null  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, HeadOfficesColumnTakesTheHeadOffice) {
  source_->setSQL("select a from t");
  source_->setUnidadeColumn(column("t", "id_unidadematriz"), false);
  EXPECT_EQ(sent(), "select a from t  where  ( t.id_unidadematriz in (?)  ) ");
  EXPECT_THAT(binds(), ElementsAre("0: int 9"));
}

TEST_F(SQLDataSourceExecutionUnits, ColumnWithoutAnOriginGoesByItsNameInTheResult) {
  source_->setSQL("select * from ( select a, unidade from t ) command ");
  auto const unit = source_->createColumn(nullptr);
  unit->setColumnName("unidade");
  source_->setUnidadeColumn(unit, false);
  EXPECT_EQ(sent(),
            "select * from ( select a, unidade from t ) command   where  ( unidade in (?,?)  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, ColumnWithoutAnyNameIsRefused) {
  source_->setSQL("select a from t");
  source_->setUnidadeColumn(source_->createColumn(nullptr), false);
  expectRefused("a coluna não tem nome");
}

TEST_F(SQLDataSourceExecutionUnits, NoUnitsMeanNoRows) {
  context_ = newContext();
  plain("select a from t");
  EXPECT_EQ(sent(), "select a from t  where 1=0");
  EXPECT_THAT(binds(), IsEmpty());
}

TEST_F(SQLDataSourceExecutionUnits, UnitsComeLastAmongTheConditions) {
  plain("select a from t");
  context_->setDataSourceFilters("fonte", {equals("t", "c", 5)});
  EXPECT_EQ(sent(), "select a from t  where t.c = ?  and  ( t.unid in (?,?)  ) ");
  EXPECT_THAT(binds(), ElementsAre("0: int 5", "1: int 1", "2: int 3"));
}

TEST_F(SQLDataSourceExecutionUnits, OwnOrOfAComposedStatementIsPutInParentheses) {
  composed("t", "a = 1 or b = 2");
  source_->setUnidadeColumn(column("t", "unid", "t.unid"), false);
  EXPECT_EQ(sent(), "select t.unid from t where (a = 1 or b = 2)  and  ( t.unid in (?,?)  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, OrOfAFilterSourceIsPutInParenthesesWithTheRest) {
  composed("t", "a = 1");
  source_->setUnidadeColumn(column("t", "unid", "t.unid"), false);
  filterSource()->where = "b = 2 OR c = 3";
  EXPECT_EQ(sent(),
            "select t.unid from t where (a = 1 and b = 2 OR c = 3)  and  ( t.unid in (?,?)  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, OrOfAFilterSourceOnAPlainStatementIsPutInParentheses) {
  plain("select a from t");
  filterSource()->where = "b = 2 or c = 3";
  EXPECT_EQ(sent(), "select a from t where (b = 2 or c = 3)  and  ( t.unid in (?,?)  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, OrThatWeakensNothingLeavesTheTextAsItIs) {
  composed("t", "(a = 1 or b = 2) and c = 'x or y' /* or */");
  source_->setUnidadeColumn(column("t", "unid", "t.unid"), false);
  EXPECT_EQ(sent(),
            "select t.unid from t where (a = 1 or b = 2) and c = 'x or y' /* or */  and  ( t.unid "
            "in (?,?)  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, OrWithoutAUnitColumnLeavesTheTextAsItIs) {
  composed("t", "a = 1 or b = 2");
  column("t", "a", "t.a");
  EXPECT_EQ(sent(), "select t.a from t where a = 1 or b = 2");
}

TEST_F(SQLDataSourceExecutionUnits, PlainStatementWithAnOrInItsConditionIsRefused) {
  plain("select a from t where a = 1 or b = 2", "and");
  expectRefused(kOr);
}

TEST_F(SQLDataSourceExecutionUnits, PlainStatementWithASetOperationIsRefused) {
  for (auto const* const operation : {"union", "UNION ALL", "intersect", "except"}) {
    plain(std::string("select a from t ") + operation + " select a from u");
    expectRefused(kUnion);
  }
}

TEST_F(SQLDataSourceExecutionUnits, WrappedStatementIsRestrictedWhateverItHolds) {
  plain("select * from ( select a from t where a or b union select c from u ) command ");
  EXPECT_EQ(sent(),
            "select * from ( select a from t where a or b union select c from u ) command   where  "
            "( t.unid in (?,?)  ) ");
}

TEST_F(SQLDataSourceExecutionUnits, PlainStatementWithoutAUnitColumnIsNeverRefused) {
  source_->setSQL("select a from t where a or b union select 1 -- x");
  EXPECT_EQ(sent(), "select a from t where a or b union select 1 -- x");
}

TEST_F(SQLDataSourceExecutionUnits, OrElsewhereThanInTheConditionIsNoObstacle) {
  plain("select a or b from t join u on u.a or u.b where c = 1", "and");
  expectRestricted();
  plain("select case when a or b then 1 end from t where (c or d)", "and");
  expectRestricted();
}

TEST_F(SQLDataSourceExecutionUnits, JoiningWordThatWidensIsRefused) {
  plain("select a from t where c = 1", "or");
  expectRefused(kOr);
  plain("select a from t", "where 1 = 1 or");
  expectRefused(kOr);
}

TEST_F(SQLDataSourceExecutionUnits, ConditionBehindAJoinMustRestrictIt) {
  plain("select a from t join u on t.a = u.a", "and");
  expectRestricted();
  plain("select a from t left join u on t.a = u.a", "and");
  expectRefused(kNoPlace);
  plain("select a from t join u on t.a = u.a or t.b = u.b", "and");
  expectRefused(kOr);
}

TEST_F(SQLDataSourceExecutionUnits, ConditionBehindGroupOrOrderIsRefused) {
  plain("select a from t where b = 1 group by a", "and");
  expectRefused(kNoPlace);
  plain("select a from t where b = 1 order by a", "and");
  expectRefused(kNoPlace);
  plain("select a, unid from t group by a, unid", "having");
  expectRestricted();
}

TEST_F(SQLDataSourceExecutionUnits, ConditionThatWouldBelongToACommentIsRefused) {
  plain("select a from t -- todas");
  expectRefused("o texto termina dentro de um comentário ou de aspas");
  plain("select a from t -- todas\n");
  expectRestricted();
}

TEST_F(SQLDataSourceExecutionUnits, SeveralStatementsAreRefused) {
  plain("select a from t; select 1");
  expectRefused("há mais de uma instrução no texto");
}

TEST_F(SQLDataSourceExecutionUnits, ConditionThatBreaksOutOfItsParenthesesIsRefused) {
  composed("t", "a = 1) or (b = 2");
  source_->setUnidadeColumn(column("t", "unid", "t.unid"), false);
  expectRefused("há um parêntese sem par");
}

TEST_F(SQLDataSourceExecutionUnits, RowsAddedAroundTheStatementAreRefused) {
  plain("select a from t");
  source_->setSufix("union select a from u");
  expectRefused(kUnion);
  source_->setSufix("");
  source_->setPrefix("create table x as select 1 union select 2; select a from u union");
  expectRefused(kUnion);
  source_->setPrefix("create table x as select 1 union select 2;");
  source_->setSufix("; insert into x select 1 union select 2");
  expectRestricted();
  source_->setSufix("");
  filterSource()->order = "a union select a from u";
  expectRefused(kUnion);
}

TEST_F(SQLDataSourceExecutionUnits, ManagedFilterOnTheUnitColumnTakesTheUnitsInItsCharge) {
  plain("select a from t");
  execution_->addManageFiltersData({"tela", {}, {{"", "unid", "t", "", "unidade"}}});
  context_->setDataSourceFilters("tela", {equals("", "unidade", 5)});
  EXPECT_EQ(sent(), "select a from t  where t.unid = ? ");
}

}  // namespace

}  // namespace mox_test
