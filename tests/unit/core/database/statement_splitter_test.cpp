#include "core/database/statement_splitter.h"

#include <gtest/gtest.h>

#include "support/databases.h"

namespace mox::core {
namespace {

using Texts = std::vector<std::string>;
using mox_test::failureOf;

TEST(StatementSplitter, OneStatementIsTheMainOne) {
  StatementScript const script = splitScript("select 1");
  EXPECT_EQ(script.main, "select 1");
  EXPECT_TRUE(script.before.empty());
  EXPECT_TRUE(script.after.empty());
}

TEST(StatementSplitter, TheFirstWithRowsIsTheMainOne) {
  StatementScript const script = splitScript(
      "create temporary table x (a int); insert into x values (1); select a from x; drop table x");
  EXPECT_EQ(script.before, (Texts{"create temporary table x (a int)", "insert into x values (1)"}));
  EXPECT_EQ(script.main, "select a from x");
  EXPECT_EQ(script.after, (Texts{"drop table x"}));
}

TEST(StatementSplitter, WithoutRowsTheLastOneIsTheMainOne) {
  StatementScript const script = splitScript("delete from a; delete from b;");
  EXPECT_EQ(script.before, (Texts{"delete from a"}));
  EXPECT_EQ(script.main, "delete from b");
  EXPECT_TRUE(script.after.empty());
}

TEST(StatementSplitter, SemicolonsInQuotesAndCommentsPartNothing) {
  EXPECT_EQ(splitScript("select ';', \";\", `;` from t /* ; */ where a = '\\';'").main,
            "select ';', \";\", `;` from t /* ; */ where a = '\\';'");
  EXPECT_EQ(splitScript("select 'it''s;'").main, "select 'it''s;'");
  EXPECT_EQ(splitScript("select 1 -- a;b\n + 2").main, "select 1 -- a;b\n + 2");
  EXPECT_EQ(splitScript("select 1 # a;b\n + 2").main, "select 1 # a;b\n + 2");
}

TEST(StatementSplitter, EmptyPiecesAndCommentsAroundAPieceVanish) {
  StatementScript const script =
      splitScript(" ;; /* a */ ; set x = 1 ; -- b\n select 2 -- c\n ; # d\n ;");
  EXPECT_EQ(script.before, (Texts{"set x = 1"}));
  EXPECT_EQ(script.main, "select 2");
  EXPECT_TRUE(script.after.empty());
}

TEST(StatementSplitter, ATextWithoutStatementsHasNoMainOne) {
  EXPECT_EQ(splitScript("").main, "");
  EXPECT_EQ(splitScript(" ; -- nothing\n ;").main, "");
}

TEST(StatementSplitter, KnowsWhatAnswersWithRows) {
  for (char const* sql : {"select 1", "SELECT 1", "(select 1) union (select 2)",
                          "with a as (select 1) select * from a", "values (1)", "show tables",
                          "explain select 1", "describe t", "call p()", "table t",
                          "pragma table_info(t)", "insert into t values (1) returning id",
                          "with a as (select 1) delete from t returning x"}) {
    EXPECT_TRUE(hasRows(sql)) << sql;
  }
  for (char const* sql : {"insert into t values (1)", "insert into t select f(returning) from u",
                          "update t set a = 1", "delete from t", "replace into t values (1)",
                          "create table t (a int)", "drop table t", "set @a = 1",
                          "with a as (select 1) insert into t select * from a", ""}) {
    EXPECT_FALSE(hasRows(sql)) << sql;
  }
}

TEST(StatementSplitter, CountsMarksOutsideQuotesAndComments) {
  EXPECT_EQ(countMarks("select ?, '?', `?`, \"?\" /* ? */ from t where a = ? -- ?"), 2);
  EXPECT_EQ(countMarks(""), 0);
}

TEST(StatementSplitter, CommentsThatSomeServersRunAreRefused) {
  for (char const* sql : {"select 1 /*! or 1=1 */", "select 1 /*!50701 ; drop table t */",
                          "select 1 /*M! , ? */", "/*M!100100 x */"}) {
    auto const failure = failureOf([&] { splitScript(sql); });
    ASSERT_TRUE(failure) << sql;
    EXPECT_EQ(
        failure->message,
        "A comment that begins with \"/*!\" or \"/*M!\" is run by some servers only; write what "
        "it holds into the statement itself");
    EXPECT_EQ(failure->details, Texts{sql});
  }
  for (char const* sql : {"select 1 /* ! */", "select '/*! */'", "select `/*M!`", "select 1 -- /*!",
                          "select 1 /* /*! */", "select 1 /*m! */"}) {
    EXPECT_FALSE(failureOf([&] { splitScript(sql); })) << sql;
  }
}

TEST(StatementSplitter, MarksOutsideTheMainStatementAreRefused) {
  auto const before = failureOf([] { splitScript("delete from t where a = ?; select 1"); });
  ASSERT_TRUE(before);
  EXPECT_EQ(before->message, "Only the main statement of a script may have marks for values");
  EXPECT_EQ(before->details, (Texts{"delete from t where a = ?"}));
  EXPECT_TRUE(failureOf([] { splitScript("select 1; delete from t where a = ?"); }));
  EXPECT_FALSE(failureOf([] { splitScript("delete from t; select ?; delete from u"); }));
}

}  // namespace
}  // namespace mox::core
