#include "core/database/sqlite_rewriter.h"

#include <gtest/gtest.h>

#include "support/databases.h"

namespace mox::core {
namespace {

using Texts = std::vector<std::string>;
using mox_test::failureOf;

std::string rewritten(std::string_view sql) {
  SqliteText const text = rewriteForSqlite(sql);
  EXPECT_TRUE(text.ahead.empty()) << sql;
  return text.statement;
}

TEST(SqliteRewriter, WhatBothReadTheSameStaysByteByByte) {
  for (char const* sql :
       {"select  t.a , `b`, \"c\" from t\n\twhere date(t.d) between ? and ?  and c like ? ",
        "select 'it''s' /* a comment */ -- and another\n from t", "", " ", "select 1 as `x y`;"}) {
    EXPECT_EQ(rewritten(sql), sql);
  }
}

TEST(SqliteRewriter, ReplacingATemporaryTableDropsItAhead) {
  SqliteText const text = rewriteForSqlite(
      "create or replace temporary table T (a int , b double , c varchar(200) , d datetime )");
  EXPECT_EQ(text.ahead, (Texts{"drop table if exists temp.T"}));
  EXPECT_EQ(text.statement,
            "create temporary table T (a int , b double , c varchar(200) , d datetime )");
}

TEST(SqliteRewriter, ReplacingATemporaryTableKeepsAQuotedName) {
  SqliteText const text =
      rewriteForSqlite("CREATE OR  REPLACE TEMPORARY TABLE `Total ``Geral` (a int)");
  EXPECT_EQ(text.ahead, (Texts{"drop table if exists temp.`Total ``Geral`"}));
  EXPECT_EQ(text.statement, "create temporary table `Total ``Geral` (a int)");
}

TEST(SqliteRewriter, OtherReplacementsAreLeftToTheDatabase) {
  EXPECT_EQ(rewritten("create or replace table t (a int)"), "create or replace table t (a int)");
  EXPECT_EQ(rewritten("create or replace temporary table x.t (a int)"),
            "create or replace temporary table x.t (a int)");
  EXPECT_EQ(rewritten("create or replace temporary table"), "create or replace temporary table");
}

TEST(SqliteRewriter, DropsATemporaryTable) {
  EXPECT_EQ(rewritten("drop temporary table t"), "drop table temp.t");
  EXPECT_EQ(rewritten("drop temporary table if exists `a b`"), "drop table if exists temp.`a b`");
  EXPECT_EQ(rewritten("drop table t"), "drop table t");
}

TEST(SqliteRewriter, DatesWithSlashesDirectlyInsideBetweenBecomeIso) {
  EXPECT_EQ(rewritten("select c between '2024/3/5' and '2024/12/31' from t"),
            "select c between '2024-03-05' and '2024-12-31' from t");
  EXPECT_EQ(rewritten("c between ? and '2024/12/31'"), "c between ? and '2024-12-31'");
  EXPECT_EQ(rewritten("c not between '2024/1/1' and ?"), "c not between '2024-01-01' and ?");
  EXPECT_EQ(rewritten("(a between (b between '2024/1/1' and 2) and '2024/1/2')"),
            "(a between (b between '2024-01-01' and 2) and '2024-01-02')");
}

TEST(SqliteRewriter, DatesWithSlashesElsewhereStayTexts) {
  for (char const* sql :
       {"c = '2024/3/5'", "c in ('2024/3/5')", "c between 1 and 2 and d = '2024/3/5'",
        "c between 1 and 2 and '2024/3/5'", "c between lower('2024/3/5') and ?", "a and '2024/3/5'",
        "c between '2024/2/30' and '2024/13/1'", "c between '2024-3-5' and '2024/3'",
        "c between ' 2024/3/5' and '2024/3/5x'", "(c between 1) and '2024/3/5'",
        "c between `2024/3/5` and \"2024/3/5\""}) {
    EXPECT_EQ(rewritten(sql), sql);
  }
}

TEST(SqliteRewriter, ReadsTheBackslashesOfLiterals) {
  EXPECT_EQ(rewritten(R"(select 'it\'s', 'a\nb', 'c\\d', 'e\xf')"),
            "select 'it''s', 'a\nb', 'c\\d', 'exf'");
  EXPECT_EQ(rewritten(R"(a like '10\%\_')"), R"(a like '10\%\_')");
  EXPECT_EQ(rewritten(R"(select "say \"it's\"")"), "select 'say \"it''s\"'");
  EXPECT_EQ(rewritten(R"(select 'a''b\\')"), "select 'a''b\\'");
  EXPECT_EQ(rewritten(R"(select 'a\0b')"), "select ('a'||char(0)||'b')");
}

TEST(SqliteRewriter, CommentsFromANumberSignOnBecomeABlank) {
  EXPECT_EQ(rewritten("select 1 # one\n+ 2"), "select 1 + 2");
  EXPECT_EQ(rewritten("select '#' # x"), "select '#' ");
}

TEST(SqliteRewriter, TwoMinusSignsStayTwo) {
  EXPECT_EQ(rewritten("select 3--1"), "select 3- -1");
}

TEST(SqliteRewriter, AStatementCutOffInsideALiteralIsRefused) {
  // SQLite would see the literals of the first two end, and read on behind them.
  for (char const* sql : {R"(select 'a\'; drop table t)", R"(select 1 where 'a\' or 1=1)",
                          "select `a", "select \"a"}) {
    auto const failure = failureOf([&] { rewriteForSqlite(sql); });
    ASSERT_TRUE(failure) << sql;
    EXPECT_EQ(failure->message, "The statement ends inside a literal or a quoted name");
    EXPECT_EQ(failure->details, Texts{sql});
  }
}

TEST(SqliteRewriter, ATextInTheNamesPlaceIsNoTemporaryTable) {
  EXPECT_EQ(rewritten("drop temporary table \"t\""), "drop temporary table \"t\"");
}

}  // namespace
}  // namespace mox::core
