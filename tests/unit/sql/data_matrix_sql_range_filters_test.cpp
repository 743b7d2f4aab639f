#include "zyn/sql/data_matrix_sql_range_filters.h"

#include <gtest/gtest.h>

#include "unit/sql/filter_binds.h"

namespace mox_test {

namespace {

date_t const kFirst(1, 3, 2024);
date_t const kLast(31, 3, 2024);

TEST(IntegerRangeFilter, BothBoundsMakeABetween) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("t", "c");
  filter.setMax(9, true);
  filter.setMin(2, true);
  EXPECT_EQ(filter.getSql(), "t.c between ? and ? ");
  EXPECT_EQ(bindsOf(filter, 1), (Binds{"1: int 2", "2: int 9", "counter 3"}));
}

TEST(IntegerRangeFilter, MinimumAlone) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("t", "c");
  filter.setMin(0, true);
  EXPECT_EQ(filter.getSql(), "t.c >= ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 0", "counter 1"}));
}

TEST(IntegerRangeFilter, MaximumAlone) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("", "c");
  filter.setMax(0, true);
  EXPECT_EQ(filter.getSql(), "c <= ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 0", "counter 1"}));
}

// Odd, but definitions rely on it: a bare column of truth values is a condition by itself.
TEST(IntegerRangeFilter, WithoutBoundsIsTheBareColumn) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("t", "c");
  EXPECT_EQ(filter.getSql(), "t.c");
  EXPECT_EQ(bindsOf(filter), (Binds{"counter 0"}));
}

TEST(IntegerRangeFilter, BoundCanBeTakenAway) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("", "c");
  filter.setMin(1, true);
  filter.setMax(2, true);
  filter.setMin(1, false);
  EXPECT_EQ(filter.getSql(), "c <= ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: int 2", "counter 1"}));
}

TEST(IntegerRangeFilter, ExpressionSaysWhereTheOperatorGoes) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("t", "coalesce(a,0) @");
  filter.setMin(1, true);
  filter.setMax(2, true);
  EXPECT_EQ(filter.getSql(), "coalesce(a,0)  between ? and ? ");
}

TEST(IntegerRangeFilter, ExpressionWithoutBoundsLosesItsSign) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("t", "coalesce(a,0) @");
  EXPECT_EQ(filter.getSql(), "coalesce(a,0) ");
}

TEST(IntegerRangeFilter, MarksOfTheStatementMeanNothingToIt) {
  DataMatrixSQLIntegerRangeFilter filter;
  filter.setColumnName("", "{{p}}");
  filter.setMin(1, true);
  EXPECT_EQ(filter.getSql(), "{{p}} >= ? ");
}

TEST(DoubleRangeFilter, BindsDoubles) {
  DataMatrixSQLDoubleRangeFilter filter;
  filter.setColumnName("t", "v");
  filter.setMin(-0.5, true);
  filter.setMax(10.25, true);
  EXPECT_EQ(filter.getSql(), "t.v between ? and ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: double -0.5", "1: double 10.25", "counter 2"}));
}

TEST(TextRangeFilter, BindsTextsEmptyOnesIncluded) {
  DataMatrixSQLTextRangeFilter filter;
  filter.setColumnName("t", "nome");
  filter.setMin("", true);
  filter.setMax("Zé", true);
  EXPECT_EQ(filter.getSql(), "t.nome between ? and ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: text ", "1: text Zé", "counter 2"}));
}

TEST(DateRangeFilter, ComparesWholeDays) {
  DataMatrixSQLDateRangeFilter filter;
  filter.setColumnName("t", "d");
  filter.setMin(kFirst);
  filter.setMax(kLast);
  EXPECT_EQ(filter.getSql(), "date(t.d) between ? and ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: date 2024-03-01", "1: date 2024-03-31", "counter 2"}));
}

TEST(DateRangeFilter, EmptyDateIsNoBound) {
  DataMatrixSQLDateRangeFilter filter;
  filter.setColumnName("t", "d");
  filter.setMin(kFirst);
  filter.setMax(date_t());
  EXPECT_EQ(filter.getSql(), "date(t.d) >= ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: date 2024-03-01", "counter 1"}));
  filter.setMin(date_t());
  filter.setMax(kLast);
  EXPECT_EQ(filter.getSql(), "date(t.d) <= ? ");
  EXPECT_EQ(bindsOf(filter), (Binds{"0: date 2024-03-31", "counter 1"}));
}

TEST(DateRangeFilter, WithoutBoundsIsTheBareDay) {
  DataMatrixSQLDateRangeFilter filter;
  filter.setColumnName("", "d");
  EXPECT_EQ(filter.getSql(), "date(d)");
}

TEST(DateRangeFilter, ExpressionIsNotWrapped) {
  DataMatrixSQLDateRangeFilter filter;
  filter.setColumnName("t", "d @");
  filter.setMin(kFirst);
  EXPECT_EQ(filter.getSql(), "d  >= ? ");
}

TEST(RangeFilters, AreCalledAsTheyAreRegistered) {
  EXPECT_EQ(DataMatrixSQLIntegerRangeFilter().name(), "moxDataMatrixSQLIntegerRangeFilter");
  EXPECT_EQ(DataMatrixSQLDoubleRangeFilter().name(), "moxDataMatrixSQLDoubleRangeFilter");
  EXPECT_EQ(DataMatrixSQLTextRangeFilter().name(), "moxDataMatrixSQLTextRangeFilter");
  EXPECT_EQ(DataMatrixSQLDateRangeFilter().name(), "moxDataMatrixSQLDateRangeFilter");
}

}  // namespace

}  // namespace mox_test
