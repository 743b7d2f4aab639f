#include "zyn/datasources/object_data_source_execution.h"

#include <gmock/gmock.h>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/fake_database.h"
#include "support/test_host.h"
#include "zyn/datasources/object_data_source.h"

namespace mox_test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Texts = std::vector<std::string>;

/// A definition named "fonte" on a database that writes down what it is sent.
class ObjectExecutionTest : public testing::Test {
 protected:
  ObjectExecutionTest()
      : host_(std::unique_ptr<moxDatabaseConnection>(database_ = new FakeDatabase)),
        source_(std::make_shared<ObjectDataSource>()),
        context_(host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext")) {
    source_->setName("fonte");
  }

  void binds(std::string const& className, std::string const& column) {
    auto const made = host_.get<moxFilterSpecification>(className);
    made->setColumn(column);
    source_->filters().add(made);
  }

  std::shared_ptr<moxDataMatrixSQLFilter> integer(std::string const& column, int value) {
    auto const filter =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    filter->setColumnName("", column);
    filter->setValue(value);
    return filter;
  }

  std::shared_ptr<moxDataMatrixSQLFilter> text(std::string const& column,
                                               std::string const& value) {
    auto const filter =
        host_.get<moxDataMatrixSQLTextUniqueFilter>("moxDataMatrixSQLTextUniqueFilter");
    filter->setColumnName("", column);
    filter->setValue(value);
    return filter;
  }

  std::shared_ptr<moxDataMatrixSQLFilter> from(std::string const& column, int minimum,
                                               std::optional<int> maximum = {}) {
    auto const filter =
        host_.get<moxDataMatrixSQLIntegerRangeFilter>("moxDataMatrixSQLIntegerRangeFilter");
    filter->setColumnName("", column);
    filter->setMin(minimum, true);
    filter->setMax(maximum.value_or(0), maximum.has_value());
    return filter;
  }

  void give(std::vector<std::shared_ptr<moxDataMatrixSQLFilter>> const& filters) {
    context_->setDataSourceFilters("fonte", filters);
  }

  bool run(std::string const& target = {}) {
    return source_->createExecution()->generateDataMatrix(context_, target);
  }

  std::string failure() {
    try {
      run();
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return "no failure";
  }

  Texts const& sent() const { return database_->preparedTexts(); }
  Texts const& bound() const { return database_->binds(); }

  FakeDatabase* database_;  // the host's
  TestHost host_;
  std::shared_ptr<ObjectDataSource> source_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
};

}  // namespace

TEST_F(ObjectExecutionTest, KnowsItsName) {
  EXPECT_EQ(source_->createExecution()->name(), "moxObjectDataSourceExecution");
}

TEST_F(ObjectExecutionTest, TokensBecomeMarksAndTheTextBehindTheLastStays) {
  auto const parsed = ObjectDataSourceExecution(source_).parse(
      "update t set a={{x}} where id={{y}} and bloqueado=0");
  EXPECT_EQ(parsed.query, "update t set a=? where id=? and bloqueado=0");
  EXPECT_THAT(parsed.tokens, ElementsAre("x", "y"));
}

TEST_F(ObjectExecutionTest, AStatementWithoutTokensRunsWhole) {
  source_->setSQL("delete from t where bloqueado=1");
  EXPECT_TRUE(run());
  EXPECT_THAT(sent(), ElementsAre("delete from t where bloqueado=1"));
  EXPECT_THAT(bound(), IsEmpty());
}

TEST_F(ObjectExecutionTest, TheConnectionAddsNoConditionOfItsOwn) {
  source_->setSQL("delete from t");
  run();
  EXPECT_THAT(database_->extraWheres(), ElementsAre("where:"));
}

TEST_F(ObjectExecutionTest, WithoutFiltersEveryParameterIsNull) {
  source_->setSQL("update t set a={{a}} where b between {{b}} and {{b}} and c={{c}}");
  binds("moxIntegralUniqueFilter", "a");
  binds("moxDateRangeFilter", "b");
  binds("moxTextUniqueFilter", "c");
  EXPECT_TRUE(run());
  EXPECT_THAT(bound(), ElementsAre("0: null", "1: null", "2: null", "3: null"));
}

TEST_F(ObjectExecutionTest, ValuesAreBoundInTheOrderOfTheSpecifications) {
  source_->setSQL("update t set a={{nome}} where id={{id}} and c between {{c}} and {{c}}");
  binds("moxTextUniqueFilter", "nome");
  binds("moxIntegralUniqueFilter", "id");
  binds("moxIntegralRangeFilter", "c");
  give({from("c", 1, 9), integer("id", 7), text("nome", "Ana")});
  EXPECT_TRUE(run());
  EXPECT_THAT(sent(), ElementsAre("update t set a=? where id=? and c between ? and ?"));
  EXPECT_THAT(bound(), ElementsAre("0: text Ana", "1: int 7", "2: int 1", "3: int 9"));
}

TEST_F(ObjectExecutionTest, NamesOfTokensMeanNothing) {
  source_->setSQL("update t set a={{um}} where id={{outro}}");
  binds("moxIntegralUniqueFilter", "id");
  binds("moxIntegralUniqueFilter", "a");
  give({integer("a", 1), integer("id", 7)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 7", "1: int 1"));
}

TEST_F(ObjectExecutionTest, UnsetAmongSetParametersKeepsItsPlace) {
  source_->setSQL("update t set a={{a}}, b={{b}} where id={{id}}");
  binds("moxIntegralUniqueFilter", "a");
  binds("moxTextUniqueFilter", "b");
  binds("moxIntegralUniqueFilter", "id");
  give({integer("id", 7), integer("a", 1)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 1", "1: null", "2: int 7"));
}

TEST_F(ObjectExecutionTest, TheFirstFilterOnTheColumnCounts) {
  source_->setSQL("delete from t where id={{id}}");
  binds("moxIntegralUniqueFilter", "id");
  give({integer("id", 7), integer("id", 8)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 7"));
}

TEST_F(ObjectExecutionTest, TwoSpecificationsOnOneColumnTakeTheSameFilter) {
  source_->setSQL("delete from t where id={{id}} or pai={{id}}");
  binds("moxIntegralUniqueFilter", "id");
  auto const second = host_.get<moxFilterSpecification>("moxIntegralUniqueFilter");
  second->setColumn("id");
  source_->filters().add(second);
  give({integer("id", 7)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 7", "1: int 7"));
}

TEST_F(ObjectExecutionTest, FilterThatNoSpecificationNamesIsIgnored) {
  source_->setSQL("delete from t where id={{id}}");
  binds("moxIntegralUniqueFilter", "id");
  give({integer("outro", 8), integer("ID", 9)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: null"));
}

TEST_F(ObjectExecutionTest, ListWithoutAFilterBindsNothing) {
  source_->setSQL("delete from t where id={{id}}");
  binds("moxIntegralInFilter", "lista");
  binds("moxIntegralUniqueFilter", "id");
  give({integer("id", 7)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 7"));
}

TEST_F(ObjectExecutionTest, ListBindsAsManyValuesAsItHas) {
  source_->setSQL("delete from t where id in ({{a}}, {{b}}, {{c}})");
  binds("moxIntegralInFilter", "id");
  auto const list = host_.get<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter");
  list->setColumnName("", "id");
  for (int const id : {3, 1, 2}) {
    list->pushVal(id);
  }
  give({list});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 1", "1: int 2", "2: int 3"));
}

TEST_F(ObjectExecutionTest, RangeWithAnOpenEndIsRefusedAheadOfTheExecution) {
  source_->setSQL("delete from t where c between {{c}} and {{c}} and id={{id}}");
  binds("moxIntegralRangeFilter", "c");
  binds("moxIntegralUniqueFilter", "id");
  give({from("c", 1), integer("id", 7)});
  database_->failAt(FakeCall::kExecute, 1);
  EXPECT_EQ(failure(), "Quantidade de valores inválida para o filtro c");
}

TEST_F(ObjectExecutionTest, FiltersAreThoseOfItsNameInTheRun) {
  source_->setSQL("delete from t where id={{id}}");
  binds("moxIntegralUniqueFilter", "id");
  give({integer("id", 7)});
  context_->setDataSourceFilters("alvo", {integer("id", 8)});
  run("alvo");
  EXPECT_THAT(bound(), ElementsAre("0: int 8"));
}

TEST_F(ObjectExecutionTest, FixedFiltersOfTheProgramAreBoundToo) {
  source_->setSQL("delete from t where id={{id}}");
  binds("moxIntegralUniqueFilter", "id");
  context_->addDataSourceFixedFilter("fonte", integer("id", 5));
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 5"));
}

TEST_F(ObjectExecutionTest, EmptyEntriesInTheListCountForNothing) {
  source_->setSQL("delete from t where id={{id}}");
  source_->filters().add(nullptr);
  binds("moxIntegralUniqueFilter", "id");
  give({integer("id", 7)});
  run();
  EXPECT_THAT(bound(), ElementsAre("0: int 7"));
}

TEST_F(ObjectExecutionTest, ValuesNeverReachTheText) {
  std::string const canary = "'; drop table alunos; -- {{x}} ?";
  source_->setSQL("update t set a={{a}} where b={{b}} and c=0");
  binds("moxTextUniqueFilter", "a");
  binds("moxTextUniqueFilter", "{{b}}");
  give({text("a", canary), text("{{b}}", canary)});
  run();
  EXPECT_THAT(sent(), ElementsAre("update t set a=? where b=? and c=0"));
  EXPECT_THAT(bound(), ElementsAre("0: text " + canary, "1: text " + canary));
}

TEST_F(ObjectExecutionTest, LaterConsumersFindNoMatrixUnderItsName) {
  source_->setSQL("delete from t");
  EXPECT_TRUE(run());
  EXPECT_TRUE(run("alvo"));
  EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
  EXPECT_EQ(context_->getDataMatrix("alvo"), nullptr);
}

TEST_F(ObjectExecutionTest, MayRunSeveralTimesInOneRun) {
  source_->setSQL("delete from t");
  context_->processDataSources(
      nullptr,
      {{"a", {false, source_->createExecution()}}, {"a", {false, source_->createExecution()}}}, {},
      0);
  EXPECT_THAT(sent(), SizeIs(2));
}

TEST_F(ObjectExecutionTest, NoResultIsRead) {
  database_->result.fields = {{"a", moxDatabaseConnection::FieldType::kInt}};
  database_->result.rows = {{1}, {2}};
  source_->setSQL("select f()");
  EXPECT_TRUE(run());
  EXPECT_EQ(database_->fetchCalls(), 0);
}

TEST_F(ObjectExecutionTest, FailuresOfTheDatabasePassThrough) {
  source_->setSQL("delete from t where id={{id}}");
  binds("moxIntegralUniqueFilter", "id");
  for (auto const call : {FakeCall::kPrepare, FakeCall::kBind, FakeCall::kExecute}) {
    database_->failAt(call, 1);
    EXPECT_EQ(failure(), "fake failure");
  }
}

// Reports, and runs that only put statements together.

class ObjectReportTest : public ObjectExecutionTest {
 protected:
  ObjectReportTest() {
    source_->setSQL("update t set a={{a}} where id={{id}} and b={{b}}");
    binds("moxTextUniqueFilter", "a");
    binds("moxIntegralUniqueFilter", "id");
    binds("moxIntegralUniqueFilter", "b");
    give({text("a", "Ana"), integer("outro", 1)});
    context_->addDataSourceFixedFilter("fonte", integer("b", 0));
  }

  moxRunReporter& reporter() { return dynamic_cast<moxRunReporter&>(*context_); }

  void process() {
    context_->processDataSources(nullptr, {{"fonte", {false, source_->createExecution()}}}, {}, 0);
  }

  /// "column origin values" of each value.
  Texts parameters() {
    Texts texts;
    auto const report = reporter().runReport();
    for (auto const& part : report.sources.at(0).statements.at(0).parameters) {
      texts.push_back(part.column + " " + std::to_string(static_cast<int>(part.origin)));
      for (auto const& value : part.values) {
        texts.back() += " " + (value.type == moxBoundValue::Type::kNull ? "null" : value.text);
      }
    }
    return texts;
  }

  static std::string numbered(std::string const& column, moxRunOrigin origin,
                              std::string const& value) {
    return column + " " + std::to_string(static_cast<int>(origin)) + " " + value;
  }
};

TEST_F(ObjectReportTest, TellsTheStatementItsValuesAndWhereTheyCameFrom) {
  reporter().keepRunReport();
  process();
  auto const ran = reporter().runReport().sources.at(0);
  EXPECT_TRUE(ran.executed);
  ASSERT_THAT(ran.statements, SizeIs(1));
  EXPECT_EQ(ran.statements[0].sql, sent().at(0));
  EXPECT_THAT(ran.statements[0].conditions, IsEmpty());
  EXPECT_THAT(parameters(), ElementsAre(numbered("a", moxRunOrigin::kUserFilter, "Ana"),
                                        numbered("id", moxRunOrigin::kUnsetParameter, "null"),
                                        numbered("b", moxRunOrigin::kProgramFilter, "0")));
  EXPECT_THAT(bound(), ElementsAre("0: text Ana", "1: null", "2: int 0"));
}

TEST_F(ObjectReportTest, TellsTheFilterThatNoSpecificationNames) {
  reporter().keepRunReport();
  process();
  auto const ignored = reporter().runReport().ignoredFilters;
  ASSERT_THAT(ignored, SizeIs(1));
  EXPECT_EQ(ignored[0].column, "outro");
  EXPECT_EQ(ignored[0].reason, "no statement of source \"fonte\" takes it");
}

TEST_F(ObjectReportTest, ComposingAloneExecutesNothingAndTellsAllTheSame) {
  reporter().composeOnly();
  process();
  auto const ran = reporter().runReport().sources.at(0);
  EXPECT_FALSE(ran.executed);
  ASSERT_THAT(ran.statements, SizeIs(1));
  EXPECT_EQ(ran.statements[0].sql, "update t set a=? where id=? and b=?");
  EXPECT_THAT(parameters(), SizeIs(3));
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_EQ(context_->getDataMatrix("fonte"), nullptr);
}

TEST_F(ObjectReportTest, ComposingAloneExecutesNothingOutsideAListEither) {
  reporter().composeOnly();
  EXPECT_TRUE(run());
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_FALSE(reporter().runReport().sources.at(0).executed);
}

}  // namespace mox_test
