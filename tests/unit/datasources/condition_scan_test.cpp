#include "zyn/datasources/condition_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Clause = StatementShape::Clause;

bool hasWeakOperator(std::string_view condition) {
  return shapeOf(condition).weakOperator;
}

TEST(ConditionScan, FindsAnOrInAnyCaseAndPlace) {
  for (auto const* const condition :
       {"a or b", "a OR b", "a=1\nOr\tb=2", "(a)or(b)", "'a'or'b'", "a=1or b", "a=1.or b", "or",
        "a xor b", "a || b", "a=?or b"}) {
    EXPECT_TRUE(hasWeakOperator(condition)) << condition;
  }
}

TEST(ConditionScan, PassesOverAnOrThatIsNoOperatorOfTheWhole) {
  for (auto const* const condition :
       {"(a or b)", "a = 'x or y'", "a = \"x or y\"", "`a or b` = 1", "ordem = 1", "valor = 1",
        "a_or = 1", "t.or = 1", "a /* or b */", "a -- or b\n", "a # or b\n", "a = {{b or c}}",
        "case when a or b then 1 else 0 end = 1", "a = 'it''s or'", "a = 'it\\' or b'", "a | b",
        "coração = 1", "f(a, (b or c))", "a = '{{x}} or'"}) {
    EXPECT_FALSE(hasWeakOperator(condition)) << condition;
  }
}

TEST(ConditionScan, CountsWhatTheServerMayRunOrReadOtherwise) {
  EXPECT_TRUE(hasWeakOperator("a /*! or 1=1 */"));
  EXPECT_TRUE(hasWeakOperator("a /*M! or 1=1 */"));
  EXPECT_TRUE(hasWeakOperator("a = b--1 or c"));
  EXPECT_TRUE(hasWeakOperator("a = 1) or (b = 2"));
}

TEST(ConditionScan, TellsTheClauseThatATextBehindItWouldBelongTo) {
  EXPECT_EQ(shapeOf("select a from t").lastClause, Clause::kNone);
  EXPECT_EQ(shapeOf("select a from t join u on t.a = u.a").lastClause, Clause::kOn);
  EXPECT_EQ(shapeOf("select a from t join u on 1 where x").lastClause, Clause::kWhere);
  EXPECT_EQ(shapeOf("select a from (select b from c where d) x").lastClause, Clause::kNone);
  EXPECT_EQ(shapeOf("select a from t where x group by a").lastClause, Clause::kOther);
  EXPECT_EQ(shapeOf("select a from t group by a having x").lastClause, Clause::kWhere);
  EXPECT_EQ(shapeOf("select a from t where x order by a").lastClause, Clause::kOther);
  EXPECT_EQ(shapeOf("select a from t where x limit 1").lastClause, Clause::kOther);
}

TEST(ConditionScan, TellsInWhichClauseAnOrStands) {
  auto const inJoin = shapeOf("select a from t join u on x or y where z");
  EXPECT_FALSE(inJoin.weakOperatorInCondition);
  EXPECT_FALSE(inJoin.weakOperatorInLastClause);
  auto const inLastJoin = shapeOf("select a from t join u on x or y");
  EXPECT_FALSE(inLastJoin.weakOperatorInCondition);
  EXPECT_TRUE(inLastJoin.weakOperatorInLastClause);
  EXPECT_TRUE(shapeOf("select a from t where x or y group by a").weakOperatorInCondition);
}

TEST(ConditionScan, FindsSetOperationsOutsideOfParentheses) {
  EXPECT_TRUE(shapeOf("select a union select b").setOperation);
  EXPECT_TRUE(shapeOf("(select a) Except (select b)").setOperation);
  EXPECT_TRUE(shapeOf("select a intersect all select b").setOperation);
  EXPECT_FALSE(shapeOf("select * from ( select a union select b ) command ").setOperation);
  EXPECT_FALSE(shapeOf("select reunion, 'union' from t").setOperation);
}

TEST(ConditionScan, TellsFirstAndLastStatementApart) {
  auto const first = shapeOf("select a union select b; select c");
  EXPECT_TRUE(first.severalStatements);
  EXPECT_TRUE(first.setOperationAtFirst);
  EXPECT_FALSE(first.setOperation);
  auto const last = shapeOf("select a; select b union select c");
  EXPECT_FALSE(last.setOperationAtFirst);
  EXPECT_TRUE(last.setOperation);
}

TEST(ConditionScan, TellsAnOuterJoinFromAFunctionOfThatName) {
  EXPECT_TRUE(shapeOf("select a from t left join u on x").outerJoin);
  EXPECT_FALSE(shapeOf("select left(a, 2), right(a, 2) from t").outerJoin);
}

TEST(ConditionScan, TellsAnEndInACommentOrQuote) {
  for (auto const* const text : {"a -- b", "a --b", "a # b", "a /* b", "a 'b", "a \"b", "a `b"}) {
    EXPECT_TRUE(shapeOf(text).openEnd) << text;
  }
  for (auto const* const text : {"a -- b\n", "a # b\n", "a /* b */", "a 'b'", "a - b", ""}) {
    EXPECT_FALSE(shapeOf(text).openEnd) << text;
  }
}

TEST(ConditionScan, TellsParenthesesWithoutTheirOtherHalf) {
  EXPECT_TRUE(shapeOf("f(a, (b))").balanced);
  EXPECT_FALSE(shapeOf("f(a").balanced);
  EXPECT_FALSE(shapeOf("a)").balanced);
  EXPECT_FALSE(shapeOf("a) or (b").balanced);
  EXPECT_TRUE(shapeOf("')' -- )\n").balanced);
}

TEST(ConditionScan, WhatFollowsATextIsSeenUnlessTheTextIsOpen) {
  std::mt19937 random(7);
  std::string const characters = "ab or('\"`)-#/*!\\;|.1\n\x80";
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (auto length = random() % 24; length > 0; --length) {
      text += characters[random() % characters.size()];
    }
    auto const shape = shapeOf(text + "\nunion");
    EXPECT_TRUE(shapeOf("a or b " + text).weakOperator) << text;
    EXPECT_TRUE(shape.setOperation || shape.openEnd || !shape.balanced) << text;
  }
}

}  // namespace
