#include "zyn/sql/select_statement.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Conditions = std::vector<std::string>;

SelectStatement statementWith(std::string const& beforeWhere, std::string const& afterWhere = "",
                              std::string const& whereWord = "") {
  SelectStatement statement;
  statement.setText("select * from t", beforeWhere, afterWhere, whereWord);
  return statement;
}

TEST(SelectStatement, WithoutFiltersKeepsTheTextBeforeWhereAndNoWhere) {
  auto const statement = statementWith(" inner join x");
  EXPECT_EQ(statement.buildWhere({}), " inner join x");
  EXPECT_EQ(statement.compose({}), "select * from t inner join x");
}

TEST(SelectStatement, WithoutFiltersNothingIsPutBetweenTheParts) {
  auto const statement = statementWith("inner join x", "group by a");
  EXPECT_EQ(statement.compose({}), "select * from tinner join xgroup by a");
}

TEST(SelectStatement, JoinsConditionsAndKeepsTheirBlanks) {
  auto const statement = statementWith("");
  EXPECT_EQ(statement.compose({"a = ? ", "b = ? "}), "select * from t  where a = ?  and b = ? ");
}

TEST(SelectStatement, EmptyConditionAddsNeitherAndNorABlank) {
  auto const statement = statementWith("inner join x");
  EXPECT_EQ(statement.buildWhere({"", "a = ? ", "", "b = ? ", ""}),
            " inner join x where a = ?  and b = ? ");
}

TEST(SelectStatement, FiltersWithoutAnyConditionDropTheTextBeforeWhere) {
  auto const statement = statementWith(" inner join x", " group by a");
  EXPECT_EQ(statement.buildWhere({""}), "");
  EXPECT_EQ(statement.compose({"", ""}), "select * from t group by a");
}

TEST(SelectStatement, WhereWordJoinsTheConditionsToATextThatHasItsOwnWhere) {
  auto const statement = statementWith("where z = 1", "", "and");
  EXPECT_EQ(statement.buildWhere({"a = ? "}), " where z = 1 and a = ? ");
}

TEST(SelectStatement, EmptyWhereWordIsWhere) {
  EXPECT_EQ(statementWith("", "", "having").buildWhere({"a"}), "  having a");
  EXPECT_EQ(statementWith("", "", "").buildWhere({"a"}), "  where a");
}

TEST(SelectStatement, WithoutOrderColumnsThereIsNoOrder) {
  EXPECT_EQ(statementWith("").buildOrderBy(), "");
}

TEST(SelectStatement, OrdersInTheOrderOfAddition) {
  auto statement = statementWith("");
  EXPECT_TRUE(statement.addOrderColumn({"b", "x"}, false));
  EXPECT_TRUE(statement.addOrderColumn({"a", "y"}, true));
  EXPECT_EQ(statement.buildOrderBy(), " order by b.x asc , a.y desc ");
  statement.clearOrderColumns();
  EXPECT_EQ(statement.buildOrderBy(), "");
}

TEST(SelectStatement, FirstOrderOfAColumnStands) {
  auto statement = statementWith("");
  EXPECT_TRUE(statement.addOrderColumn({"a", "b"}, false));
  EXPECT_FALSE(statement.addOrderColumn({"a", "b"}, false));
  EXPECT_FALSE(statement.addOrderColumn({"a", "b"}, true));
  EXPECT_EQ(statement.buildOrderBy(), " order by a.b asc ");
}

TEST(SelectStatement, OrderNeedsTableAndColumn) {
  auto statement = statementWith("");
  EXPECT_FALSE(statement.addOrderColumn({"", "b"}, false));
  EXPECT_FALSE(statement.addOrderColumn({"a", ""}, false));
  EXPECT_EQ(statement.buildOrderBy(), "");
}

TEST(SelectStatement, SameColumnNameOfTwoTablesIsTwoOrders) {
  auto statement = statementWith("");
  EXPECT_TRUE(statement.addOrderColumn({"a", "b"}, false));
  EXPECT_TRUE(statement.addOrderColumn({"c", "b"}, false));
}

TEST(SelectStatement, PrefixAndSuffixArePartedByABlank) {
  auto statement = statementWith("");
  statement.setPrefixSuffix("set x = 1;", "; drop y");
  EXPECT_EQ(statement.compose({}), "set x = 1; select * from t ; drop y");
  statement.setPrefixSuffix("", "");
  EXPECT_EQ(statement.compose({}), "select * from t");
}

TEST(SelectStatement, WholeStatementInItsOrder) {
  auto statement = statementWith("inner join x on x.id = t.id", " group by t.a", "where");
  statement.setPrefixSuffix("P", "S");
  statement.addOrderColumn({"t", "a"}, false);
  statement.addOrderColumn({"t", "b"}, true);
  EXPECT_EQ(statement.compose({"t.c = ? ", "t.d in (?, ?)"}),
            "P select * from t inner join x on x.id = t.id where t.c = ?  and t.d in (?, ?) "
            "group by t.a order by t.a asc , t.b desc  S");
}

TEST(SelectStatement, NewTextReplacesAllPartsButOrderPrefixAndSuffix) {
  auto statement = statementWith("inner join x", " group by a", "and");
  statement.setPrefixSuffix("P", "S");
  statement.addOrderColumn({"t", "a"}, false);
  statement.setText("select 1", "", "", "");
  EXPECT_EQ(statement.compose({"z"}), "P select 1  where z order by t.a asc  S");
}

}  // namespace
