// What a run of a SQL source tells those who keep a report of it.

#include "mox/zyn/datasources/run_report.h"
#include "unit/datasources/sql_execution_fixture.h"

namespace mox_test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SQLDataSourceExecutionReport : public SQLExecutionTest {
 protected:
  moxRunReporter& reporter() { return dynamic_cast<moxRunReporter&>(*context_); }

  /// The one source of the report after a run in the list.
  moxRunSource ran(std::vector<int> const& units = {}, int headOffice = 0) {
    context_->processDataSources({}, {{"fonte", {false, execution_}}}, units, headOffice);
    auto const report = reporter().runReport();
    EXPECT_THAT(report.sources, SizeIs(1));
    return report.sources.empty() ? moxRunSource() : report.sources.front();
  }

  /// "column [sql] = values; origin name", the sql only for conditions.
  static std::string textOf(moxRunPart const& part) {
    auto text = part.column + (part.sql.empty() ? "" : " [" + part.sql + "]") + " =";
    for (auto const& value : part.values) {
      text += value.type == moxBoundValue::Type::kNull ? " null" : " " + value.text;
    }
    return text + "; " + originName(part.origin) + " " + part.originName;
  }

  static Texts textsOf(std::vector<moxRunPart> const& parts) {
    Texts texts;
    for (auto const& part : parts) {
      texts.push_back(textOf(part));
    }
    return texts;
  }

  static std::string originName(moxRunOrigin origin) {
    switch (origin) {
      case moxRunOrigin::kUserFilter:
        return "user";
      case moxRunOrigin::kProgramFilter:
        return "program";
      case moxRunOrigin::kManager:
        return "manager";
      case moxRunOrigin::kFilterSource:
        return "source";
      case moxRunOrigin::kRelation:
        return "relation";
      case moxRunOrigin::kUnsetParameter:
        return "unset";
      case moxRunOrigin::kSessionToken:
        return "session";
      case moxRunOrigin::kUnitRule:
        return "unit";
    }
    return "";
  }

  /// A definition and a context with a filter of every origin.
  void giveEverything() {
    source_->setSQL(
        "select a from t where b = {{p}} and c = {{m}} and d = {{u}} and e = "
        "{{p_idUnidadeNegocioMatriz}}");
    source_->setPrefix("set @x = 1;");
    source_->setWhereAnd("and");
    source_->setUnidadeColumn(column("t", "unid"), false);
    specification("moxIntegralUniqueFilter", "", "{{u}}");
    execution_->addManageFiltersData(
        {"tela", {}, {{"", "", "", "{{m}}", "turma"}, {"", "f", "t", "", "aluno"}}});
    context_->setDataSourceFilters("tela", {equals("", "turma", 2), equals("", "aluno", 3)});
    context_->setDataSourceFilters("fonte", {equals("", "{{p}}", 1), equals("t", "g", 4)});
    context_->registerDataMatrix("outra", matrix({{"k", ints(5)}}));
    execution_->setDataSourceFilterRelation("outra", "k", "h");
    auto const filter = filterSource();
    filter->specs.push_back(std::make_shared<FakeFilterSpec>(moxFilterDataSourceSpec::kValor,
                                                             Origin{}, equals("t", "i", 6)));
  }

  static constexpr char const* kEverything =
      "set @x = 1; select a from t where b = ? and c = ? and d = ? and e = ?  and t.f = ?  and t.g "
      "= ?  and h in (?) and t.i = ?  and  ( t.unid in (?)  ) ";
};

TEST_F(SQLDataSourceExecutionReport, TellsTheOriginOfEveryValueAndCondition) {
  giveEverything();
  reporter().keepRunReport();
  auto const source = ran({7}, 9);
  EXPECT_TRUE(source.executed);
  ASSERT_THAT(source.statements, SizeIs(1));
  EXPECT_EQ(source.statements[0].sql, kEverything);
  EXPECT_THAT(textsOf(source.statements[0].parameters),
              ElementsAre("{{p}} = 1; user ", "{{m}} = 2; manager tela", "{{u}} = null; unset ",
                          "{{p_idUnidadeNegocioMatriz}} = 9; session "));
  EXPECT_THAT(textsOf(source.statements[0].conditions),
              ElementsAre("t.f [t.f = ? ] = 3; manager tela", "t.g [t.g = ? ] = 4; user ",
                          "h [h in (?)] = 5; relation outra", "t.i [t.i = ? ] = 6; source filtro",
                          "t.unid [ ( t.unid in (?)  ) ] = 7; unit "));
  EXPECT_THAT(reporter().runReport().ignoredFilters, IsEmpty());
}

TEST_F(SQLDataSourceExecutionReport, TellsTheProgramsFiltersFromTheUsers) {
  source_->setSQL("select a from t where b = {{p}}");
  source_->setWhereAnd("and");
  auto const both = equals("t", "d", 3);
  context_->setDataSourceFilters("fonte", {equals("t", "c", 2), both});
  context_->addDataSourceFixedFilter("fonte", equals("", "{{p}}", 1));
  context_->addDataSourceFixedFilter("fonte", equals("t", "e", 4));
  context_->addDataSourceFixedFilter("fonte", both);
  reporter().keepRunReport();
  auto const statement = ran().statements.at(0);
  EXPECT_THAT(textsOf(statement.parameters), ElementsAre("{{p}} = 1; program "));
  EXPECT_THAT(textsOf(statement.conditions),
              ElementsAre("t.c [t.c = ? ] = 2; user ", "t.d [t.d = ? ] = 3; user ",
                          "t.e [t.e = ? ] = 4; program "));
}

TEST_F(SQLDataSourceExecutionReport, TellsWhatTheDatabaseIsSent) {
  giveEverything();
  reporter().keepRunReport();
  auto const source = ran({7}, 9);
  EXPECT_EQ(database_->preparedTexts().back(), source.statements.at(0).sql);
  EXPECT_THAT(binds(), ElementsAre("0: int 1", "1: int 2", "2: null", "3: int 9", "4: int 3",
                                   "5: int 4", "6: int 5", "7: int 6", "8: int 7"));
}

TEST_F(SQLDataSourceExecutionReport, ComposingAloneAsksNothingAndRegistersAnEmptyMatrix) {
  giveEverything();
  reporter().composeOnly();
  auto const source = ran({7}, 9);
  EXPECT_FALSE(source.executed);
  ASSERT_THAT(source.statements, SizeIs(1));
  EXPECT_EQ(source.statements[0].sql, kEverything);
  EXPECT_THAT(database_->preparedTexts(), IsEmpty());
  ASSERT_NE(context_->getDataMatrix("fonte"), nullptr);
  EXPECT_EQ(context_->getDataMatrix("fonte")->rowCount(), 0U);
}

TEST_F(SQLDataSourceExecutionReport, ComposingAloneGivesFiltersTheirNamesBack) {
  source_->setSQL("select a from t");
  execution_->addManageFiltersData({"tela", {}, {{"", "f", "t", "", "aluno"}}});
  auto const given = equals("", "aluno", 3);
  context_->setDataSourceFilters("tela", {given});
  reporter().composeOnly();
  EXPECT_EQ(ran().statements.at(0).sql, "select a from t  where t.f = ? ");
  EXPECT_EQ(given->getColumnName(), "aluno");
}

TEST_F(SQLDataSourceExecutionReport, EmptyRelatedSourceIsACondition) {
  source_->setSQL("select a from t");
  context_->registerDataMatrix("outra", matrix({{"k", ints()}}));
  execution_->setDataSourceFilterRelation("outra", "k", "h");
  reporter().keepRunReport();
  EXPECT_THAT(textsOf(ran().statements.at(0).conditions), ElementsAre("h [0=1] =; relation outra"));
}

TEST_F(SQLDataSourceExecutionReport, ManagersFilterThatGoesNowhereIsToldWithTheReason) {
  source_->setSQL("select a from t");
  execution_->addManageFiltersData({"tela", {{"aluno"}}, {}});
  context_->setDataSourceFilters("tela", {equals("", "aluno", 3)});
  reporter().keepRunReport();
  EXPECT_THAT(ran().statements.at(0).conditions, IsEmpty());
  auto const ignored = reporter().runReport().ignoredFilters;
  ASSERT_THAT(ignored, SizeIs(1));
  EXPECT_EQ(ignored[0].source, "tela");
  EXPECT_EQ(ignored[0].column, "aluno");
  EXPECT_EQ(ignored[0].reason,
            "the filter manager relates it to no column and no token of the source");
}

/// As a filter of another module may be.
class SilentFilter final : public virtual moxDataMatrixSQLFilter {
 public:
  std::string name() const override { return "silentFilter"; }
  std::string getSql() const override { return {}; }
  void bind(std::shared_ptr<moxDatabaseConnection::PreparedStatement> const&, int*) const override {
  }
  void setColumnName(std::string const&, std::string const&) override {}
  std::string getColumnName() const override { return "calado"; }
  std::string getTableName() const override { return {}; }
};

TEST_F(SQLDataSourceExecutionReport, FilterThatSaysNothingIsToldWithTheReason) {
  source_->setSQL("select a from t");
  context_->setDataSourceFilters("fonte", {std::make_shared<SilentFilter>()});
  reporter().keepRunReport();
  EXPECT_THAT(ran().statements.at(0).conditions, IsEmpty());
  auto const ignored = reporter().runReport().ignoredFilters;
  ASSERT_THAT(ignored, SizeIs(1));
  EXPECT_EQ(ignored[0].column, "calado");
  EXPECT_EQ(ignored[0].reason, "it has neither a condition nor a value");
}

TEST_F(SQLDataSourceExecutionReport, FailedQueryLeavesItsStatementInTheReport) {
  source_->setSQL("select a from t");
  reporter().keepRunReport();
  database_->failAt(FakeCall::kExecute, 1);
  EXPECT_ANY_THROW(ran());
  auto const report = reporter().runReport();
  ASSERT_THAT(report.sources, SizeIs(1));
  ASSERT_THAT(report.sources[0].statements, SizeIs(1));
  EXPECT_EQ(report.sources[0].statements[0].sql, "select a from t");
}

}  // namespace

}  // namespace mox_test
