#include "zyn/sql/data_matrix_sql_in_filters.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "unit/sql/filter_binds.h"

namespace mox_test {

namespace {

TEST(IntegerInFilter, KeepsEachValueOnceAndBindsInAscendingOrder) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("", "c");
  for (int const value : {2, 1, 2}) {
    filter.pushVal(value);
  }
  EXPECT_EQ(filter.getSql(), "c in (?, ?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 1", "1: int 2", "counter 2"}));
  EXPECT_EQ(filter.getValues(), (std::set<int>{1, 2}));
}

TEST(IntegerInFilter, NotTurnsItIntoAnExclusion) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("", "c");
  filter.pushVal(2);
  filter.pushVal(1);
  EXPECT_FALSE(filter.getNot());
  filter.setNot(true);
  EXPECT_TRUE(filter.getNot());
  EXPECT_EQ(filter.getSql(), "c not in (?, ?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 1", "1: int 2", "counter 2"}));
  filter.setNot(false);
  EXPECT_EQ(filter.getSql(), "c in (?, ?)");
}

TEST(IntegerInFilter, OneValueOnTheColumnOfATable) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("t", "c");
  filter.pushVal(-3);
  EXPECT_EQ(filter.getSql(), "t.c in (?)");
  EXPECT_EQ(bindsOf(filter, 5), (Binds{"5: int -3", "counter 6"}));
}

TEST(IntegerInFilter, ExpressionSaysWhereTheOperatorGoes) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("t", "coalesce(x,0) @");
  filter.pushVal(1);
  EXPECT_EQ(filter.getSql(), "coalesce(x,0)  in (?)");
  filter.setNot(true);
  EXPECT_EQ(filter.getSql(), "coalesce(x,0)  not in (?)");
}

TEST(IntegerInFilter, WithoutValuesSelectsNothing) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("t", "c");
  EXPECT_EQ(filter.getSql(), "1=0");
  EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
}

TEST(IntegerInFilter, WithoutValuesSelectsNothingEvenNegatedOrInAnExpression) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("t", "coalesce(x,0) @");
  filter.setNot(true);
  EXPECT_EQ(filter.getSql(), "1=0");
}

TEST(IntegerInFilter, MarkOfTheStatementTakesItsSmallestValueAndNoCondition) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("", "{{p_turma}}");
  filter.pushVal(9);
  filter.pushVal(4);
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter, 2), (Binds{"2: int 4", "counter 3"}));
}

TEST(IntegerInFilter, MarkOfTheStatementIsNullWithoutValues) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("", "{{p_turma}}");
  EXPECT_EQ(filter.getSql(), "");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: null", "counter 1"}));
}

TEST(IntegerInFilter, CanBeUsedAgainAfterClear) {
  DataMatrixSQLIntegerInFilter filter;
  filter.setColumnName("", "c");
  filter.pushVal(1);
  filter.clear();
  EXPECT_EQ(filter.getSql(), "1=0");
  filter.pushVal(7);
  EXPECT_EQ(filter.getSql(), "c in (?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 7", "counter 1"}));
}

TEST(DoubleInFilter, BindsEachDoubleInAscendingOrder) {
  DataMatrixSQLDoubleInFilter filter;
  filter.setColumnName("t", "v");
  for (double const value : {2.5, -1.0, 2.5}) {
    filter.pushVal(value);
  }
  EXPECT_EQ(filter.getSql(), "t.v in (?, ?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: double -1", "1: double 2.5", "counter 2"}));
}

TEST(DoubleInFilter, WithoutValuesSelectsNothing) {
  DataMatrixSQLDoubleInFilter filter;
  filter.setColumnName("t", "v");
  EXPECT_EQ(filter.getSql(), "1=0");
  EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
}

TEST(DoubleInFilter, NotANumberIsIgnored) {
  DataMatrixSQLDoubleInFilter filter;
  filter.setColumnName("", "v");
  filter.pushVal(std::nan(""));
  EXPECT_EQ(filter.getSql(), "1=0");
  for (double const value : {3.0, std::nan(""), 1.0, std::numeric_limits<double>::infinity()}) {
    filter.pushVal(value);
  }
  EXPECT_EQ(bindsOf(filter), (Binds{"0: double 1", "1: double 3", "2: double inf", "counter 3"}));
}

TEST(DoubleInFilter, CanBeUsedAgainAfterClear) {
  DataMatrixSQLDoubleInFilter filter;
  filter.setColumnName("", "v");
  filter.pushVal(1.0);
  filter.clear();
  EXPECT_EQ(filter.getSql(), "1=0");
}

TEST(TextInFilter, BindsEachTextInOrderOfItsBytes) {
  DataMatrixSQLTextInFilter filter;
  filter.setColumnName("t", "nome");
  for (char const* const value : {"b", "", "B", "b"}) {
    filter.pushVal(value);
  }
  EXPECT_EQ(filter.getSql(), "t.nome in (?, ?, ?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: text ", "1: text B", "2: text b", "counter 3"}));
}

TEST(TextInFilter, WithoutValuesSelectsNothing) {
  DataMatrixSQLTextInFilter filter;
  filter.setColumnName("t", "nome");
  EXPECT_EQ(filter.getSql(), "1=0");
  EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
}

TEST(TextInFilter, CanBeUsedAgainAfterClear) {
  DataMatrixSQLTextInFilter filter;
  filter.setColumnName("", "nome");
  filter.pushVal("a");
  filter.clear();
  filter.pushVal("b");
  EXPECT_EQ(filter.getSql(), "nome in (?)");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: text b", "counter 1"}));
}

TEST(InFilters, AreCalledAsTheyAreRegistered) {
  EXPECT_EQ(DataMatrixSQLIntegerInFilter().name(), "moxDataMatrixSQLIntegerInFilter");
  EXPECT_EQ(DataMatrixSQLDoubleInFilter().name(), "moxDataMatrixSQLDoubleInFilter");
  EXPECT_EQ(DataMatrixSQLTextInFilter().name(), "moxDataMatrixSQLTextInFilter");
}

}  // namespace

}  // namespace mox_test
