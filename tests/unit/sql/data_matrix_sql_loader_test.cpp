#include "zyn/sql/data_matrix_sql_loader.h"

#include <stdexcept>

#include "mox/core/error.h"
#include "support/foreign_column.h"
#include "unit/sql/loader_fixture.h"
#include "zyn/matrix/data_matrix_columns.h"

namespace mox_test {

namespace {

TEST_F(LoaderTest, SendsTheStatementAsItIsComposed) {
  loader_.setPrefixSufix("set x = 1;", "; drop y");
  loader_.setSql("select t.a from t", "inner join u", " group by t.a", kNoUnitColumn, "where",
                 false);
  loader_.addFilter(equals("a", 1));
  loader_.addFilter(equals("b", 2));
  loader_.addOrderColumn("t", "a", true);
  loader_.execute();
  EXPECT_EQ(database_.preparedTexts(),
            Texts{"set x = 1; select t.a from t inner join u where a = ?  and b = ?  group by t.a "
                  "order by t.a desc  ; drop y"});
}

TEST_F(LoaderTest, AsksThePrepareForNothingMore) {
  loader_.setSql("select 1", kNoUnitColumn, "and", false);
  loader_.execute();
  EXPECT_EQ(database_.extraWheres(), Texts{"where:"});
}

TEST_F(LoaderTest, FirstFormOfSetSqlClearsTheOtherParts) {
  loader_.setSql("select 1", "BEFORE", "AFTER", kNoUnitColumn, "and", false);
  loader_.setSql("select 2", kNoUnitColumn, "", false);
  loader_.addFilter(equals("a", 1));
  loader_.execute();
  EXPECT_EQ(database_.preparedTexts(), Texts{"select 2  where a = ? "});
}

TEST_F(LoaderTest, OrderColumnIsKeptOnce) {
  loader_.setSql("select 1", kNoUnitColumn, "", false);
  EXPECT_TRUE(loader_.addOrderColumn("a", "b", false));
  EXPECT_FALSE(loader_.addOrderColumn("a", "b", false));
  EXPECT_FALSE(loader_.addOrderColumn("a", "b", true));
  EXPECT_FALSE(loader_.addOrderColumn("", "b", false));
  EXPECT_FALSE(loader_.addOrderColumn("a", "", false));
  loader_.execute();
  loader_.clearOrderColumns();
  loader_.execute();
  EXPECT_EQ(database_.preparedTexts(), (Texts{"select 1 order by a.b asc ", "select 1"}));
}

TEST_F(LoaderTest, BindsParametersAheadOfFilters) {
  loader_.setSql("select ? from t", kNoUnitColumn, "", false);
  loader_.addFilter(among("t", "a", {8, 7}));
  loader_.addParameter(equals("{{p}}", 1));
  loader_.addFilter(equals("b", 9));
  loader_.addParameter(equals("{{q}}", 2));
  loader_.execute();
  EXPECT_EQ(database_.preparedTexts(), Texts{"select ? from t  where t.a in (?, ?) and b = ? "});
  EXPECT_EQ(database_.binds(), (Texts{"0: int 1", "1: int 2", "2: int 7", "3: int 8", "4: int 9"}));
}

// A statement's own mark is served by a filter whose column is the mark and whose table is empty.
TEST_F(LoaderTest, FilterOnAMarkBindsItsValueAndAddsNoCondition) {
  loader_.setSql("select a from t where b = ?", kNoUnitColumn, "", false);
  auto const token = equals("{{p}}", 5);
  loader_.addFilter(token);
  loader_.execute();
  EXPECT_EQ(database_.binds(), Texts{"0: int 5"});
  token->setNull();
  loader_.execute();
  EXPECT_EQ(database_.binds(), Texts{"0: null"});
  EXPECT_EQ(database_.preparedTexts(),
            (Texts{"select a from t where b = ?", "select a from t where b = ?"}));
}

TEST_F(LoaderTest, MarkThatStandsTwiceIsBoundTwice) {
  loader_.setSql("select ? + ?", kNoUnitColumn, "", false);
  auto const token = equals("{{p}}", 5);
  loader_.addParameter(token);
  loader_.addParameter(token);
  EXPECT_EQ(loader_.getParameters().size(), 2U);
  loader_.execute();
  EXPECT_EQ(database_.binds(), (Texts{"0: int 5", "1: int 5"}));
}

TEST_F(LoaderTest, RemovesTheFirstOfARepeatedParameter) {
  auto const twice = equals("{{p}}", 1);
  auto const once = equals("{{q}}", 2);
  loader_.addParameter(twice);
  loader_.addParameter(once);
  loader_.addParameter(twice);
  loader_.removeParameter(twice);
  EXPECT_EQ(loader_.getParameters(), (std::vector<DataMatrixSQLLoader::Filter>{once, twice}));
}

TEST_F(LoaderTest, SameFilterIsKeptOnce) {
  auto const first = equals("a", 1);
  auto const second = equals("a", 1);
  loader_.addFilter(first);
  loader_.addFilter(second);
  loader_.addFilter(first);
  EXPECT_EQ(loader_.getFilters(), (std::vector<DataMatrixSQLLoader::Filter>{first, second}));
  loader_.removeFilter(first);
  loader_.removeFilter(first);
  EXPECT_EQ(loader_.getFilters(), (std::vector<DataMatrixSQLLoader::Filter>{second}));
}

TEST_F(LoaderTest, ResetFiltersForgetsFiltersAndParameters) {
  loader_.addFilter(equals("a", 1));
  loader_.addParameter(equals("{{p}}", 1));
  loader_.resetFilters();
  EXPECT_TRUE(loader_.getFilters().empty());
  EXPECT_TRUE(loader_.getParameters().empty());
}

TEST_F(LoaderTest, EmptyFilterIsAMistakeOfTheProgram) {
  EXPECT_THROW(loader_.addFilter({}), std::invalid_argument);
  EXPECT_THROW(loader_.addParameter({}), std::invalid_argument);
}

TEST_F(LoaderTest, NeedsAMatrix) {
  loader_.setDataMatrix({});
  EXPECT_THROW(loader_.execute(), std::logic_error);
  EXPECT_TRUE(database_.preparedTexts().empty());
}

TEST_F(LoaderTest, WithoutAConnectionUsesTheApplications) {
  auto own = std::make_unique<FakeDatabase>();
  auto const& ownDatabase = *own;
  host_.application().setDatabase(std::move(own));
  loader_.setDBConnection(nullptr);
  loader_.setSql("select 1", kNoUnitColumn, "", false);
  loader_.execute();
  EXPECT_EQ(ownDatabase.preparedTexts(), Texts{"select 1"});
  EXPECT_TRUE(database_.preparedTexts().empty());
}

TEST_F(LoaderTest, EmptyMatrixReceivesAColumnAFieldInFieldOrder) {
  database_.result = {{{"t", FieldType::kText},
                       {"i", FieldType::kInt},
                       {"b", FieldType::kBlob},
                       {"d", FieldType::kDouble},
                       {"m", FieldType::kDate}},
                      {{"a", 1, "bytes", 2.5, moment("2024-03-05 10:20:30")},
                       {FakeCell{}, FakeCell{}, FakeCell{}, FakeCell{}, FakeCell{}}},
                      -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"t", texts("a", null)},
                                 {"i", ints(1, null)},
                                 {"b", blobs("bytes", null)},
                                 {"d", doubles(2.5, null)},
                                 {"m", dates("2024-03-05 10:20:30", null)}}));
}

TEST_F(LoaderTest, SecondExecutionReusesTheColumnsAndReplacesTheRows) {
  database_.result = {{{"a", FieldType::kInt}}, {{1}, {2}, {3}}, -1};
  loader_.execute();
  auto const column = matrix_->columnAt(0);
  database_.result = {{{"renamed", FieldType::kText}}, {{7}}, -1};
  loader_.execute();
  EXPECT_EQ(matrix_->columnAt(0), column);
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(7)}}));
}

TEST_F(LoaderTest, NewSqlLooksForItsFieldsAmongTheColumns) {
  database_.result = {{{"a", FieldType::kInt}, {"b", FieldType::kInt}}, {{1, 2}}, -1};
  loader_.execute();
  loader_.setSql("select b, a", kNoUnitColumn, "", false);
  database_.result = {{{"b", FieldType::kInt}, {"a", FieldType::kInt}}, {{20, 10}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(10)}, {"b", ints(20)}}));
}

TEST_F(LoaderTest, NewMatrixReceivesTheRows) {
  database_.result = {{{"a", FieldType::kInt}}, {{1}}, -1};
  loader_.execute();
  auto const second = matrix({});
  loader_.setDataMatrix(second);
  loader_.execute();
  EXPECT_THAT(second, isMatrix({{"a", ints(1)}}));
}

TEST_F(LoaderTest, NoRowsStillMakeTheColumns) {
  database_.result = {{{"a", FieldType::kInt}}, {}, 0};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints()}}));
}

TEST_F(LoaderTest, StatementWithoutFieldsLoadsNothing) {
  loader_.execute();
  EXPECT_EQ(matrix_->columnCount(), 0U);
}

TEST_F(LoaderTest, FieldOfNoKnownTypeIsLeftOut) {
  database_.result = {{{"x", static_cast<FieldType>(9)}, {"a", FieldType::kInt}}, {{1, 2}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(2)}}));
}

TEST_F(LoaderTest, GivenLayoutTakesOnlyTheFieldsItNames) {
  loader_.setDataMatrix(matrix_ = matrix({{"b", ints()}}));
  database_.result = {{{"a", FieldType::kInt}, {"b", FieldType::kInt}}, {{1, 2}, {3, 4}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"b", ints(2, 4)}}));
}

TEST_F(LoaderTest, ColumnWithoutAFieldLeavesTheMatrixWithoutRows) {
  loader_.setDataMatrix(matrix_ = matrix({{"a", ints(9, 9)}, {"extra", ints(1, 2)}}));
  database_.result = {{{"a", FieldType::kInt}}, {{5}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(5)}, {"extra", ints()}}));
  EXPECT_EQ(matrix_->rowCount(), 0U);
}

TEST_F(LoaderTest, ColumnsKindDecidesHowAFieldIsRead) {
  loader_.setDataMatrix(matrix_ = matrix({{"v", ints()}, {"n", doubles()}}));
  database_.result = {{{"v", FieldType::kDouble}, {"n", FieldType::kInt}}, {{2.75, 3}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"v", ints(2)}, {"n", doubles(3.0)}}));
}

TEST_F(LoaderTest, EmptyTextIsNoNull) {
  database_.result = {{{"t", FieldType::kText}}, {{""}, {FakeCell{}}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"t", texts("", null)}}));
}

TEST_F(LoaderTest, ColumnDroppedBetweenExecutionsLeavesNothingDangling) {
  database_.result = {{{"a", FieldType::kInt}, {"b", FieldType::kText}},
                      {{1, "a text that is too long to stand in a cell itself"}},
                      -1};
  loader_.execute();
  matrix_->dropColumn(matrix_->columnByName("b"));
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(1)}}));
}

TEST_F(LoaderTest, FieldsThatComeOrGoBetweenExecutionsAreReadByName) {
  database_.result = {{{"a", FieldType::kInt}, {"b", FieldType::kInt}}, {{1, 2}}, -1};
  loader_.execute();
  database_.result = {{{"b", FieldType::kInt}}, {{7}}, -1};
  loader_.execute();
  EXPECT_EQ(matrix_->columnByName("b")->numRows(), 1U);
  database_.result = {
      {{"c", FieldType::kInt}, {"b", FieldType::kInt}, {"a", FieldType::kInt}}, {{1, 2, 3}}, -1};
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(3)}, {"b", ints(2)}}));
}

TEST_F(LoaderTest, ReservesWhatTheStatementReports) {
  database_.result = {{{"a", FieldType::kInt}}, {}, 5000};
  loader_.execute();
  auto& column = dynamic_cast<CommonColumn<int>&>(*matrix_->columnAt(0));
  EXPECT_GE(column.storage().values.array().capacity(), 5000U);
}

TEST_F(LoaderTest, DoesNotReserveForAnUnknownOrUnlikelyNumberOfRows) {
  for (std::int64_t const reported :
       {std::int64_t{-1}, std::int64_t{0}, std::int64_t{1'000'001}, std::int64_t{1} << 40}) {
    database_.result = {{{"a", FieldType::kInt}}, {}, reported};
    loader_.execute();
    auto& column = dynamic_cast<CommonColumn<int>&>(*matrix_->columnAt(0));
    EXPECT_EQ(column.storage().values.array().capacity(), 0U) << reported;
  }
}

struct FailingCall {
  FakeCall call;
  int n;
};

class LoaderFailureTest : public LoaderTest, public testing::WithParamInterface<FailingCall> {};

TEST_P(LoaderFailureTest, PassesThroughUnchanged) {
  database_.result = {{{"a", FieldType::kInt}}, {{1}, {2}, {3}}, -1};
  loader_.addFilter(equals("a", 1));
  database_.failAt(GetParam().call, GetParam().n);
  try {
    loader_.execute();
    FAIL() << "the failure was swallowed";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "fake failure");
  }
}

TEST_P(LoaderFailureTest, LeavesTheLoaderFitForTheNextRun) {
  database_.result = {{{"a", FieldType::kInt}}, {{1}, {2}, {3}}, -1};
  loader_.addFilter(equals("a", 1));
  database_.failAt(GetParam().call, GetParam().n);
  EXPECT_THROW(loader_.execute(), moxError);
  loader_.execute();
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(1, 2, 3)}}));
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, LoaderFailureTest,
    testing::Values(FailingCall{FakeCall::kPrepare, 1}, FailingCall{FakeCall::kBind, 1},
                    FailingCall{FakeCall::kExecute, 1}, FailingCall{FakeCall::kFetch, 1},
                    FailingCall{FakeCall::kFetch, 3}, FailingCall{FakeCall::kFetch, 4}));

TEST_F(LoaderTest, FailureOnTheWayMayLeaveAPartOfTheRows) {
  database_.result = {{{"a", FieldType::kInt}}, {{1}, {2}, {3}}, -1};
  database_.failAt(FakeCall::kFetch, 3);
  EXPECT_THROW(loader_.execute(), moxError);
  EXPECT_THAT(matrix_, isMatrix({{"a", ints(1, 2)}}));
}

}  // namespace

}  // namespace mox_test
