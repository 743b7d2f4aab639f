// Which filters a run of a SQL source takes, offers and passes on.

#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/format/generic_formatter.h"
#include "unit/datasources/sql_execution_fixture.h"
#include "zyn/datasources/missing_data_filter.h"

namespace mox_test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Specification = std::shared_ptr<moxFilterSpecification const>;

class SQLDataSourceExecutionFilters : public SQLExecutionTest {
 protected:
  SQLDataSourceExecutionFilters() { source_->setSQL("select 1 from t"); }

  /// What the other source, "outra", has in its column "chave".
  void relateTo(Cells const& values) {
    EXPECT_TRUE(context_->registerDataMatrix("outra", matrix({{"chave", values}})));
    EXPECT_TRUE(execution_->setDataSourceFilterRelation("outra", "chave", "id_outra"));
  }

  Texts offeredColumns() {
    Texts columns;
    for (auto const& filter : execution_->getFilters()) {
      columns.push_back(filter->getColumn());
    }
    return columns;
  }

  /// A filter source with a condition of that kind on that column.
  std::shared_ptr<FakeFilterSource> conditionSource(
      moxFilterDataSourceSpec::Tipos kind, Origin const& origin,
      std::shared_ptr<moxDataMatrixSQLFilter> const& filter = {}) {
    auto const made = filterSource();
    made->specs.push_back(std::make_shared<FakeFilterSpec>(kind, origin, filter));
    return made;
  }
};

TEST_F(SQLDataSourceExecutionFilters, RelationKeepsTheOldValuesWhenOneIsEmpty) {
  EXPECT_TRUE(execution_->setDataSourceFilterRelation("a", "b", "c"));
  EXPECT_FALSE(execution_->setDataSourceFilterRelation("", "x", "y"));
  EXPECT_FALSE(execution_->setDataSourceFilterRelation("x", "", "y"));
  EXPECT_FALSE(execution_->setDataSourceFilterRelation("x", "y", ""));
  EXPECT_EQ(execution_->getFilterDataSource(), "a");
  EXPECT_THAT(execution_->getDataSourceFilterRelation(), Pair("c", "b"));
}

TEST_F(SQLDataSourceExecutionFilters, RelationCanBeTakenAway) {
  relateTo(ints(1));
  execution_->clearDataSourceFilter();
  EXPECT_EQ(execution_->getFilterDataSource(), "");
  EXPECT_THAT(execution_->getDataSourceFilterRelation(), Pair("", ""));
  EXPECT_EQ(sent(), "select 1 from t");
}

TEST_F(SQLDataSourceExecutionFilters, WithoutARelationThereIsNoFilter) {
  EXPECT_EQ(execution_->createDataSourceFilter(*context_), nullptr);
}

TEST_F(SQLDataSourceExecutionFilters, IntegersOfTheOtherSourceBecomeAList) {
  relateTo(ints(7, 3, 7));
  EXPECT_EQ(sent(), "select 1 from t  where id_outra in (?, ?)");
  EXPECT_THAT(binds(), ElementsAre("0: int 3", "1: int 7"));
}

TEST_F(SQLDataSourceExecutionFilters, DoublesOfTheOtherSourceBecomeAList) {
  relateTo(doubles(2.5, -1.0));
  EXPECT_EQ(sent(), "select 1 from t  where id_outra in (?, ?)");
  EXPECT_THAT(binds(), ElementsAre("0: double -1", "1: double 2.5"));
}

TEST_F(SQLDataSourceExecutionFilters, TextsOfTheOtherSourceBecomeAList) {
  relateTo(texts("b' or 1=1 --", "a"));
  EXPECT_EQ(sent(), "select 1 from t  where id_outra in (?, ?)");
  EXPECT_THAT(binds(), ElementsAre("0: text a", "1: text b' or 1=1 --"));
}

TEST_F(SQLDataSourceExecutionFilters, DatesAndBlobsOfTheOtherSourceRestrictNothing) {
  relateTo(dates("2024-03-05"));
  EXPECT_EQ(execution_->createDataSourceFilter(*context_), nullptr);
  context_ = newContext();
  relateTo(blobs("x"));
  EXPECT_EQ(sent(), "select 1 from t");
}

TEST_F(SQLDataSourceExecutionFilters, EmptyOtherSourceLetsNothingPass) {
  relateTo(ints());
  EXPECT_EQ(sent(), "select 1 from t  where 0=1");
  EXPECT_THAT(binds(), IsEmpty());
}

TEST_F(SQLDataSourceExecutionFilters, EmptyOtherSourceLetsNothingPassWhateverItsKind) {
  relateTo(dates());
  EXPECT_EQ(sent(), "select 1 from t  where 0=1");
}

TEST_F(SQLDataSourceExecutionFilters, NullsOfTheOtherSourceAreNoValues) {
  relateTo(ints(null, 4, null));
  EXPECT_EQ(sent(), "select 1 from t  where id_outra in (?)");
  EXPECT_THAT(binds(), ElementsAre("0: int 4"));
}

TEST_F(SQLDataSourceExecutionFilters, NothingButNullsLetsNothingPass) {
  relateTo(texts(null, null));
  EXPECT_EQ(sent(), "select 1 from t  where 1=0");
}

TEST_F(SQLDataSourceExecutionFilters, OtherSourceThatIsNotThereRestrictsNothing) {
  execution_->setDataSourceFilterRelation("outra", "chave", "id_outra");
  EXPECT_EQ(sent(), "select 1 from t");
}

TEST_F(SQLDataSourceExecutionFilters, ColumnThatTheOtherSourceDoesNotHaveRestrictsNothing) {
  relateTo(ints(1));
  execution_->setDataSourceFilterRelation("outra", "falta", "id_outra");
  EXPECT_EQ(sent(), "select 1 from t");
}

TEST_F(SQLDataSourceExecutionFilters, MissingDataIsOnNoColumnAndBindsNothing) {
  MissingDataFilter filter;
  filter.setColumnName("t", "c");
  int counter = 3;
  filter.bind({}, &counter);
  EXPECT_EQ(filter.name(), "MissingDataFilter");
  EXPECT_EQ(filter.getSql(), "0=1");
  EXPECT_EQ(filter.getColumnName(), "");
  EXPECT_EQ(filter.getTableName(), "");
  EXPECT_EQ(counter, 3);
}

TEST_F(SQLDataSourceExecutionFilters, FiltersAndMatrixGoByTheTargetName) {
  context_->setDataSourceFilters("fonte", {equals("t", "a", 1)});
  context_->setDataSourceFilters("alvo", {equals("t", "b", 2)});
  EXPECT_EQ(sent("alvo"), "select 1 from t  where t.b = ? ");
  EXPECT_NE(context_->getDataMatrix("alvo"), nullptr);
  EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
}

TEST_F(SQLDataSourceExecutionFilters, SecondRunUnderANameGivesFalseAndKeepsTheFirstMatrix) {
  EXPECT_TRUE(run());
  auto const first = context_->getDataMatrix("fonte");
  EXPECT_FALSE(run());
  EXPECT_EQ(context_->getDataMatrix("fonte"), first);
  EXPECT_TRUE(run("outro nome"));
}

TEST_F(SQLDataSourceExecutionFilters, FailedQueryRegistersNothing) {
  database_->failAt(FakeCall::kExecute, 1);
  EXPECT_THAT(failure(), testing::Optional(std::string("fake failure")));
  EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
}

TEST_F(SQLDataSourceExecutionFilters, FailedQueryLeavesManagedFiltersRenamed) {
  execution_->addManageFiltersData({"tela", {}, {{"", "", "t", "id_turma", "turma"}}});
  auto const given = equals("", "turma", 5);
  context_->setDataSourceFilters("tela", {given});
  database_->failAt(FakeCall::kExecute, 1);
  EXPECT_TRUE(failure());
  EXPECT_EQ(given->getColumnName(), "id_turma");
}

TEST_F(SQLDataSourceExecutionFilters, ConditionsComeFromManagersThenOwnThenRelationThenSources) {
  execution_->addManageFiltersData({"tela", {}, {{"", "", "t", "a", "turma"}}});
  context_->setDataSourceFilters("tela", {equals("", "turma", 1)});
  context_->addDataSourceFixedFilter("fonte", equals("t", "c", 3));
  context_->setDataSourceFilters("fonte", {equals("t", "b", 2)});
  relateTo(ints(4));
  conditionSource(moxFilterDataSourceSpec::kValor, {}, equals("t", "d", 5));
  conditionSource(moxFilterDataSourceSpec::kSql, {}, equals("t", "e", 6));
  EXPECT_EQ(sent(),
            "select 1 from t  where t.a = ?  and t.b = ?  and t.c = ?  and id_outra in (?) and t.d "
            "= ?  and t.e = ? ");
  EXPECT_THAT(binds(),
              ElementsAre("0: int 1", "1: int 2", "2: int 3", "3: int 4", "4: int 5", "5: int 6"));
}

TEST_F(SQLDataSourceExecutionFilters, SwitchedOffAndEmptyConditionsOfSourcesAddNothing) {
  conditionSource(moxFilterDataSourceSpec::kSemFiltro, {}, equals("t", "d", 5));
  conditionSource(moxFilterDataSourceSpec::kValor, {});
  EXPECT_EQ(sent(), "select 1 from t");
}

TEST_F(SQLDataSourceExecutionFilters, ManagersFilterGoesOnTheOriginsColumnForTheTimeOfTheQuery) {
  execution_->addManageFiltersData(
      {"tela", {}, {{"alunos", "id_turma", "t", "turma_aluno", "turma"}}});
  auto const given = equals("x", "turma", 5);
  context_->setDataSourceFilters("tela", {given});
  EXPECT_EQ(sent(), "select 1 from t  where t.id_turma = ? ");
  EXPECT_EQ(given->getColumnName(), "turma");
  EXPECT_EQ(given->getTableName(), "t");
}

TEST_F(SQLDataSourceExecutionFilters, ManagersFilterTakesTheQuerysNameWithoutAnOrigin) {
  execution_->addManageFiltersData({"tela", {}, {{"", "", "t", "turma_aluno", "turma"}}});
  context_->setDataSourceFilters("tela", {equals("", "turma", 5)});
  EXPECT_EQ(sent(), "select 1 from t  where t.turma_aluno = ? ");
}

TEST_F(SQLDataSourceExecutionFilters, ManagersFilterTakesTheTableOfTheDefinitionsFilter) {
  auto const bound = specification("moxIntegralUniqueFilter", "z", "id_turma");
  bound->setSQLDataSourceColumn(column("u", "id_turma"));
  execution_->addManageFiltersData({"tela", {}, {{"", "id_turma", "", "", "turma"}}});
  context_->setDataSourceFilters("tela", {equals("", "turma", 5)});
  EXPECT_EQ(sent(), "select 1 from t  where u.id_turma = ? ");
}

TEST_F(SQLDataSourceExecutionFilters, ManagersFilterStaysBareWhereNobodyKnowsTheTable) {
  specification("moxIntegralUniqueFilter", "z", "id_turma");
  execution_->addManageFiltersData({"tela", {}, {{"", "id_turma", "", "", "turma"}}});
  context_->setDataSourceFilters("tela", {equals("y", "turma", 5)});
  EXPECT_EQ(sent(), "select 1 from t  where id_turma = ? ");
}

TEST_F(SQLDataSourceExecutionFilters, ManagerPassesOnOnlyWhatItSpeaksOf) {
  execution_->addManageFiltersData({"tela", {{"c"}}, {{"", "", "t", "a", "turma"}}});
  context_->setDataSourceFilters(
      "tela", {equals("", "outra", 1), equals("", "c", 2), equals("", "turma", 3)});
  EXPECT_EQ(sent(), "select 1 from t  where t.a = ? ");
  EXPECT_THAT(binds(), ElementsAre("0: int 3"));
}

TEST_F(SQLDataSourceExecutionFilters, ManagersRelationToATokenIsNoCondition) {
  execution_->addManageFiltersData({"tela", {}, {{"", "", "", "{{p}}", "turma"}}});
  context_->setDataSourceFilters("tela", {equals("", "turma", 3)});
  EXPECT_EQ(sent(), "select 1 from t");
}

TEST_F(SQLDataSourceExecutionFilters, OneFilterForTwoColumnsIsKeptOnceUnderTheLastName) {
  execution_->addManageFiltersData(
      {"tela", {}, {{"", "", "t", "a", "turma"}, {"", "", "t", "b", "turma"}}});
  auto const given = equals("", "turma", 3);
  context_->setDataSourceFilters("tela", {given});
  EXPECT_EQ(sent(), "select 1 from t  where t.b = ? ");
  EXPECT_EQ(given->getColumnName(), "turma");
}

TEST_F(SQLDataSourceExecutionFilters, WithoutManagersAllFiltersOfTheDefinitionAreOffered) {
  specification("moxIntegralUniqueFilter", "t", "a");
  specification("moxTextUniqueFilter", "t", "b");
  EXPECT_THAT(offeredColumns(), ElementsAre("a", "b"));
}

TEST_F(SQLDataSourceExecutionFilters, ManagersOfferWhatTheyMakeAvaliableOnceEach) {
  specification("moxIntegralUniqueFilter", "t", "a");
  specification("moxTextUniqueFilter", "t", "b");
  specification("moxTextUniqueFilter", "t", "c");
  execution_->setManageFiltersData({{"x", {{"c"}, {"a"}, {"c"}}, {}}, {"y", {{"a"}}, {}}});
  EXPECT_THAT(offeredColumns(), ElementsAre("a", "c", "a"));
}

TEST_F(SQLDataSourceExecutionFilters, ManagersWithoutAvaliableFiltersOfferNone) {
  specification("moxIntegralUniqueFilter", "t", "a");
  execution_->addManageFiltersData({"x", {}, {{"", "", "t", "a", "a"}}});
  EXPECT_THAT(offeredColumns(), IsEmpty());
}

TEST_F(SQLDataSourceExecutionFilters, FirstFilterSourceAnswersItsColumnsItself) {
  auto const bind = [&](std::string const& name) {
    specification("moxIntegralUniqueFilter", "t", name)->setSQLDataSourceColumn(column("t", name));
  };
  bind("a");
  bind("b");
  specification("moxIntegralUniqueFilter", "t", "c");
  conditionSource(moxFilterDataSourceSpec::kSemFiltro, Origin{"x", "x", "t", "a"});
  conditionSource(moxFilterDataSourceSpec::kSemFiltro, Origin{"", "", "t", "b"});
  EXPECT_THAT(offeredColumns(), ElementsAre("b", "c"));
}

TEST_F(SQLDataSourceExecutionFilters, FilterSourceDoesNotAnswerAFilterWithoutAColumn) {
  specification("moxIntegralUniqueFilter", "t", "c");
  conditionSource(moxFilterDataSourceSpec::kSemFiltro, Origin{"", "", "t", "c"});
  EXPECT_THAT(offeredColumns(), ElementsAre("c"));
}

TEST_F(SQLDataSourceExecutionFilters, SettingFilterSourcesAndManagersReplacesThem) {
  filterSource()->where = "a = 1";
  execution_->setFiltersDataSource({});
  execution_->addManageFiltersData({"x", {}, {}});
  execution_->setManageFiltersData({});
  specification("moxIntegralUniqueFilter", "t", "a");
  EXPECT_EQ(sent(), "select 1 from t");
  EXPECT_THAT(offeredColumns(), ElementsAre("a"));
}

TEST_F(SQLDataSourceExecutionFilters, EmptyFilterSourceIsAMistakeOfTheProgram) {
  EXPECT_THROW(execution_->addFiltersDataSource({}), std::invalid_argument);
  EXPECT_THROW(execution_->setFiltersDataSource({nullptr}), std::invalid_argument);
}

TEST_F(SQLDataSourceExecutionFilters, MatrixTakesTheFormattersOfTheDefinitionsColumns) {
  auto const formatter = host_.get<moxGenericFormatter>("moxDecimalFormatter");
  column("t", "nota")->setFormatter(formatter);
  column("t", "nota")->setFormatter(host_.get<moxGenericFormatter>("moxTextFormatter"));
  column("t", "nome");
  database_->result = {.fields = {{"nome", moxDatabaseConnection::FieldType::kText},
                                  {"nota", moxDatabaseConnection::FieldType::kDouble},
                                  {"NOTA", moxDatabaseConnection::FieldType::kDouble}},
                       .rows = {{std::string("Ana"), 9.5, 8.0}}};
  EXPECT_TRUE(run());
  auto const filled = context_->getDataMatrix("fonte");
  EXPECT_EQ(filled->rowCount(), 1U);
  EXPECT_EQ(filled->columnAt(0)->getFormatter(), nullptr);
  EXPECT_EQ(filled->columnAt(1)->getFormatter(), formatter);
  EXPECT_EQ(filled->columnAt(2)->getFormatter(), nullptr);
}

TEST_F(SQLDataSourceExecutionFilters, FirstColumnOfANameCountsThoughItHasNoFormatter) {
  column("t", "nota");
  column("u", "nota")->setFormatter(host_.get<moxGenericFormatter>("moxDecimalFormatter"));
  database_->result = {.fields = {{"nota", moxDatabaseConnection::FieldType::kDouble}}, .rows = {}};
  EXPECT_TRUE(run());
  EXPECT_EQ(context_->getDataMatrix("fonte")->columnAt(0)->getFormatter(), nullptr);
}

TEST_F(SQLDataSourceExecutionFilters, ExternalNamesMeanNothingToASourceWithoutInputs) {
  execution_->setDataSourceExternalRelation({{"a", "b"}});
  EXPECT_EQ(sent(), "select 1 from t");
  EXPECT_EQ(execution_->name(), "moxSQLDataSourceExecution");
}

}  // namespace

}  // namespace mox_test
