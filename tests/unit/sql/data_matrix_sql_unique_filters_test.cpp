#include "zyn/sql/data_matrix_sql_unique_filters.h"

#include <gtest/gtest.h>

#include "unit/sql/filter_binds.h"

namespace mox_test {

namespace {

TEST(IntegerUniqueFilter, TestsTheColumnOfItsTable) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("t", "c");
  filter.setValue(5);
  EXPECT_EQ(filter.getSql(), "t.c = ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 5", "counter 1"}));
}

TEST(IntegerUniqueFilter, NullIsATestInTheTextAndBindsNothing) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("t", "c");
  filter.setValue(5);
  filter.setNull();
  EXPECT_EQ(filter.getSql(), "t.c is null ");
  EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
}

TEST(IntegerUniqueFilter, ValueEndsTheNull) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "c");
  filter.setNull();
  filter.setValue(-7);
  EXPECT_EQ(filter.getSql(), "c = ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int -7", "counter 1"}));
}

TEST(IntegerUniqueFilter, MarkOfTheStatementAddsNoConditionAndBindsOneValue) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "{{p}}");
  filter.setValue(5);
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 5", "counter 1"}));
}

TEST(IntegerUniqueFilter, MarkOfTheStatementBindsANullAfterSetNull) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "{{p}}");
  filter.setNull();
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: null", "counter 1"}));
}

// Two strings stand side by side in setColumnName: a mark that lands in the table's place would
// make the filter an ordinary one, and leave the statement's mark without a value.
TEST(IntegerUniqueFilter, MarkGoesIntoTheColumnNotIntoTheTable) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "{{p}}");
  EXPECT_EQ(filter.getTableName(), "");
  EXPECT_EQ(filter.getColumnName(), "{{p}}");

  filter.setColumnName("{{p}}", "c");
  EXPECT_EQ(filter.getSql(), "{{p}}.c = ? ");
}

TEST(IntegerUniqueFilter, MarkGoesBeforeThePlaceOfAnOperator) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "x = {{p}} @");
  EXPECT_EQ(filter.getSql(), "");
}

TEST(IntegerUniqueFilter, ExpressionSaysWhereTheOperatorGoes) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("t", "coalesce(x,0) @");
  filter.setValue(1);
  EXPECT_EQ(filter.getSql(), "coalesce(x,0)  = ? ");
  filter.setNull();
  EXPECT_EQ(filter.getSql(), "coalesce(x,0)  is null ");
}

TEST(IntegerUniqueFilter, OnlyTheFirstAtSignMakesRoom) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "(a @ or b = '@')");
  EXPECT_EQ(filter.getSql(), "(a  = ?  or b = '@')");
}

TEST(IntegerUniqueFilter, BindsAtTheCounter) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "c");
  filter.setValue(9);
  EXPECT_EQ(bindsOf(filter, 3), (Binds{"3: int 9", "counter 4"}));
}

TEST(IntegerUniqueFilter, WithoutAValueLooksForZero) {
  DataMatrixSQLIntegerUniqueFilter filter;
  filter.setColumnName("", "c");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 0", "counter 1"}));
}

TEST(DoubleUniqueFilter, BindsADouble) {
  DataMatrixSQLDoubleUniqueFilter filter;
  filter.setColumnName("t", "c");
  filter.setValue(2.5);
  EXPECT_EQ(filter.getSql(), "t.c = ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: double 2.5", "counter 1"}));
}

TEST(DoubleUniqueFilter, MarksOfTheStatementMeanNothingToIt) {
  DataMatrixSQLDoubleUniqueFilter filter;
  filter.setColumnName("", "{{p}}");
  EXPECT_EQ(filter.getSql(), "{{p}} = ? ");
}

TEST(TextUniqueFilter, WildcardMakesItAPattern) {
  DataMatrixSQLTextUniqueFilter filter;
  filter.setColumnName("", "c");
  filter.setValue("ab%");
  EXPECT_EQ(filter.getSql(), "c like ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: text ab%", "counter 1"}));
  EXPECT_EQ(filter.getText(), "ab");
}

TEST(TextUniqueFilter, WithoutWildcardItIsAnEquality) {
  DataMatrixSQLTextUniqueFilter filter;
  filter.setColumnName("t", "c");
  filter.setValue("ab_");
  EXPECT_EQ(filter.getSql(), "t.c = ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: text ab_", "counter 1"}));
  EXPECT_EQ(filter.getText(), "ab_");
}

TEST(TextUniqueFilter, GetTextDropsEveryWildcard) {
  DataMatrixSQLTextUniqueFilter filter;
  filter.setValue("%a%%b%");
  EXPECT_EQ(filter.getText(), "ab");
  filter.setValue("%");
  EXPECT_EQ(filter.getText(), "");
}

TEST(TextUniqueFilter, ValueNeverEntersTheText) {
  DataMatrixSQLTextUniqueFilter filter;
  filter.setColumnName("t", "c");
  filter.setValue("' or 1=1 -- @ {{p}}");
  EXPECT_EQ(filter.getSql(), "t.c = ? ");
}

TEST(DateUniqueFilter, ComparesWholeDays) {
  DataMatrixSQLDateUniqueFilter filter;
  filter.setColumnName("t", "d");
  filter.setValue(date_t(5, 3, 2024));
  EXPECT_EQ(filter.getSql(), "date(t.d) = ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: date 2024-03-05", "counter 1"}));
}

TEST(DateUniqueFilter, WithoutATableWrapsTheBareColumn) {
  DataMatrixSQLDateUniqueFilter filter;
  filter.setColumnName("", "d");
  EXPECT_EQ(filter.getSql(), "date(d) = ? ");
}

TEST(DateUniqueFilter, NullChangesNotTheTextAndBindsNothing) {
  DataMatrixSQLDateUniqueFilter filter;
  filter.setColumnName("t", "d");
  filter.setValue(date_t(5, 3, 2024));
  filter.setNull();
  EXPECT_EQ(filter.getSql(), "date(t.d) = ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
}

TEST(DateUniqueFilter, MarkOfTheStatementBindsTheDateOrANull) {
  DataMatrixSQLDateUniqueFilter filter;
  filter.setColumnName("", "{{inicio}}");
  filter.setValue(date_t(5, 3, 2024));
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: date 2024-03-05", "counter 1"}));
  filter.setNull();
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: null", "counter 1"}));
  filter.setValue(date_t(6, 3, 2024));
  EXPECT_EQ(bindsOf(filter), (Binds{"0: date 2024-03-06", "counter 1"}));
}

TEST(DateUniqueFilter, ExpressionIsNotWrapped) {
  DataMatrixSQLDateUniqueFilter filter;
  filter.setColumnName("t", "coalesce(d, e) @");
  EXPECT_EQ(filter.getSql(), "coalesce(d, e)  = ? ");
}

TEST(IntegerUniqueSQLFilter, SubqueryStandsInTheColumnsPlace) {
  DataMatrixSQLIntegerUniqueSQLFilter filter;
  filter.setColumnName("t", "select 1 from x where x.id = ?");
  filter.setValue(4);
  EXPECT_EQ(filter.getSql(), "exists (select 1 from x where x.id = ?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 4", "counter 1"}));
}

TEST(IntegerUniqueSQLFilter, AtSignHasNoMeaning) {
  DataMatrixSQLIntegerUniqueSQLFilter filter;
  filter.setColumnName("", "select 1 from x where mail like '%@%' and id = ?");
  EXPECT_EQ(filter.getSql(), "exists (select 1 from x where mail like '%@%' and id = ?)");
}

TEST(IntegerUniqueSQLFilter, MarkOfTheStatementAddsNoCondition) {
  DataMatrixSQLIntegerUniqueSQLFilter filter;
  filter.setColumnName("", "{{p}}");
  filter.setValue(4);
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 4", "counter 1"}));
}

TEST(UniqueFilters, AreCalledAsTheyAreRegistered) {
  EXPECT_EQ(DataMatrixSQLIntegerUniqueFilter().name(), "moxDataMatrixSQLIntegerUniqueFilter");
  EXPECT_EQ(DataMatrixSQLDoubleUniqueFilter().name(), "moxDataMatrixSQLDoubleUniqueFilter");
  EXPECT_EQ(DataMatrixSQLTextUniqueFilter().name(), "moxDataMatrixSQLTextUniqueFilter");
  EXPECT_EQ(DataMatrixSQLDateUniqueFilter().name(), "moxDataMatrixSQLDateUniqueFilter");
  EXPECT_EQ(DataMatrixSQLIntegerUniqueSQLFilter().name(), "moxDataMatrixSQLIntegerUniqueSQLFilter");
}

}  // namespace

}  // namespace mox_test
