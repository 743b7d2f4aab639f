// How statements live together on one thread's line, on every database.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "support/databases.h"

namespace {

using mox_test::failureOf;
using mox_test::OnEveryDatabase;
using testing::ElementsAre;

class DatabaseStatements : public OnEveryDatabase {
 protected:
  void SetUp() override { db.run("create table t (n int, s varchar(50))"); }

  void fill(int rows) {
    auto const insert = db.connection().prepare("insert into t values (?, ?)");
    for (int i = 1; i <= rows; ++i) {
      insert->bindInt(0, i);
      insert->bindString(1, "row " + std::to_string(i));
      insert->execute();
    }
  }
};

MOX_ON_EVERY_DATABASE(DatabaseStatements);

TEST_P(DatabaseStatements, ExecutedAgainWithOtherValues) {
  fill(3);
  auto const statement = db.connection().prepare("select s from t where n = ?");
  for (int const n : {2, 3, 1}) {
    statement->bindInt(0, n);
    statement->execute();
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getString(0), "row " + std::to_string(n));
    EXPECT_FALSE(statement->fetch());
  }
}

TEST_P(DatabaseStatements, ExecutedAgainKeepsItsValues) {
  fill(3);
  auto const statement =
      db.connection().prepare("select count(*) from t where n >= ? and s like ?");
  statement->bindInt(0, 2);
  statement->bindString(1, "row%");
  for (int round = 0; round < 3; ++round) {
    statement->execute();
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getInt(0), 2);
  }
}

TEST_P(DatabaseStatements, ExecutedAgainInTheMiddleOfItsRows) {
  fill(5);
  auto const statement = db.query("select n from t order by n");
  ASSERT_TRUE(statement->fetch());
  ASSERT_TRUE(statement->fetch());
  statement->execute();
  for (int n = 1; n <= 5; ++n) {
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getInt(0), n);
  }
  EXPECT_FALSE(statement->fetch());
}

TEST_P(DatabaseStatements, ValueChangesItsTypeBetweenExecutions) {
  db.run("create table any_value (i int, d double, s varchar(20), m datetime)");
  auto const insert = db.connection().prepare("insert into any_value values (?, ?, ?, ?)");
  insert->bindInt(0, 1);
  insert->bindDouble(1, 1.5);
  insert->bindString(2, "text");
  insert->bindDateTime(3, datetime_t(5, 3, 2024, 10, 0, 0));
  insert->execute();
  for (int i = 0; i < 4; ++i) {
    insert->bindNull(i);
  }
  insert->execute();
  insert->bindString(0, "7");
  insert->bindInt(1, 8);
  insert->bindInt(2, 9);
  insert->bindString(3, "2024-01-02 03:04:05");
  insert->execute();
  EXPECT_EQ(db.value("select count(*) from any_value where i is null and d is null and s is null "
                     "and m is null"),
            "1");
  EXPECT_EQ(db.value("select count(*) from any_value where i = 7 and d = 8 and s = '9' and m = "
                     "'2024-01-02 03:04:05'"),
            "1");
}

TEST_P(DatabaseStatements, RowsOfOneAreReadWhileAnotherInserts) {
  fill(2000);
  db.run("create table copy (n int, s varchar(50))");
  auto const reading = db.query("select n, s from t order by n");
  auto const insert = db.connection().prepare("insert into copy values (?, ?)");
  int rows = 0;
  while (reading->fetch()) {
    ++rows;
    ASSERT_EQ(reading->getInt(0), rows);
    std::string_view const text = reading->getString(1);
    insert->bindInt(0, reading->getInt(0));
    insert->bindString(1, text);
    insert->execute();
    ASSERT_EQ(text, "row " + std::to_string(rows)) << "the text changed under another statement";
  }
  EXPECT_EQ(rows, 2000);
  EXPECT_EQ(db.value("select count(*) from copy where s = concat('row ', n)"), "2000");
}

TEST_P(DatabaseStatements, ManyOpenResultsAdvanceInTurn) {
  fill(50);
  std::vector<std::shared_ptr<moxDatabaseConnection::PreparedStatement>> open;
  for (int i = 0; i < 5; ++i) {
    open.push_back(db.query("select n + " + std::to_string(i * 1000) + " as m from t order by n"));
  }
  for (int n = 1; n <= 50; ++n) {
    for (int i = 0; i < 5; ++i) {
      ASSERT_TRUE(open[static_cast<std::size_t>(i)]->fetch());
      ASSERT_EQ(open[static_cast<std::size_t>(i)]->getInt(0), n + i * 1000);
    }
  }
  for (auto const& statement : open) {
    EXPECT_FALSE(statement->fetch());
  }
}

TEST_P(DatabaseStatements, StatementLetGoInTheMiddleHarmsNoOther) {
  fill(100);
  auto const kept = db.query("select n from t order by n");
  ASSERT_TRUE(kept->fetch());
  {
    auto const dropped = db.query("select n from t order by n desc");
    ASSERT_TRUE(dropped->fetch());
  }
  auto finished = db.query("select 1 as one");
  ASSERT_TRUE(finished->fetch());
  auto const later = db.query("select n from t order by n");
  ASSERT_TRUE(later->fetch());
  EXPECT_FALSE(finished->fetch());
  finished.reset();
  for (int n = 2; n <= 100; ++n) {
    ASSERT_TRUE(kept->fetch());
    ASSERT_TRUE(later->fetch());
    ASSERT_EQ(kept->getInt(0), n);
    ASSERT_EQ(later->getInt(0), n);
  }
  EXPECT_FALSE(kept->fetch());
  EXPECT_FALSE(later->fetch());
}

TEST_P(DatabaseStatements, RefusedStatementHarmsNoOther) {
  fill(10);
  auto const reading = db.query("select n from t order by n");
  ASSERT_TRUE(reading->fetch());
  EXPECT_TRUE(failureOf([&] { db.run("select nonsense from nowhere"); }));
  for (int n = 2; n <= 10; ++n) {
    ASSERT_TRUE(reading->fetch());
    ASSERT_EQ(reading->getInt(0), n);
  }
  EXPECT_FALSE(reading->fetch());
}

TEST_P(DatabaseStatements, RefusedStatementTellsMessageCodeAndText) {
  std::string const sql = "select missing_column from t";
  auto const failure = failureOf([&] { db.query(sql); });
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->message, testing::HasSubstr("missing_column"));
  EXPECT_EQ(failure->code, db.isMariadb() ? "1054" : "1");
  EXPECT_THAT(failure->details, testing::Contains(sql));
}

TEST_P(DatabaseStatements, SyntaxErrorIsRefusedWhenPrepared) {
  auto const failure = failureOf([&] { db.connection().prepare("select from nowhere"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, db.isMariadb() ? "1064" : "1");
}

TEST_P(DatabaseStatements, ConstraintThatFailsWhenExecutedTellsItsCode) {
  db.run("create table k (n int not null primary key)");
  auto const insert = db.connection().prepare("insert into k values (?)");
  insert->bindInt(0, 1);
  insert->execute();
  auto const failure = failureOf([&] { insert->execute(); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, db.isMariadb() ? "1062" : "1555");
  insert->bindInt(0, 2);
  insert->execute();
  EXPECT_EQ(db.value("select count(*) from k"), "2");
}

TEST_P(DatabaseStatements, EmptyStatementIsRefused) {
  EXPECT_TRUE(failureOf([&] { db.connection().prepare(""); }));
  EXPECT_TRUE(failureOf([&] { db.connection().prepare(" ; -- nothing\n"); }));
}

TEST_P(DatabaseStatements, StatementWithoutRowsHasNoFields) {
  auto const insert = db.query("insert into t values (1, 'x')");
  EXPECT_EQ(insert->fieldCount(), 0);
  EXPECT_LE(insert->rowCount(), 0);
}

TEST_P(DatabaseStatements, EmptyResultHasItsFields) {
  auto const statement = db.query("select n, s from t");
  EXPECT_EQ(statement->fieldCount(), 2);
  EXPECT_FALSE(statement->fetch());
}

TEST_P(DatabaseStatements, StatementsAheadAndBehindRunAroundTheRows) {
  auto const statement = db.connection().prepare(
      "insert into t values (1, 'ahead'); select s from t order by n; insert into t values (2, "
      "'behind');");
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getString(0), "ahead");
  EXPECT_FALSE(statement->fetch());
  EXPECT_THAT(db.rows("select s from t order by n"),
              ElementsAre(ElementsAre("ahead"), ElementsAre("behind")));
}

TEST_P(DatabaseStatements, StatementsAroundRunForEachExecution) {
  auto const statement = db.connection().prepare(
      "insert into t values (1, 'ahead'); select count(*) from t; insert into t values (2, "
      "'behind')");
  for (int const expected : {1, 3, 5}) {
    statement->execute();
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getInt(0), expected);
    EXPECT_FALSE(statement->fetch());
  }
}

TEST_P(DatabaseStatements, StatementsBehindRunWhenTheStatementIsLetGo) {
  fill(10);
  {
    auto const statement = db.query("select n from t; insert into t values (99, 'behind')");
    ASSERT_TRUE(statement->fetch());
  }
  EXPECT_EQ(db.value("select count(*) from t where n = 99"), "1");
}

TEST_P(DatabaseStatements, MarksBelongToTheStatementWithRows) {
  auto const statement = db.connection().prepare(
      "insert into t values (1, 'a?b'); select ? as v, s from t; insert into t values (2, '?')");
  statement->bindInt(0, 7);
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 7);
  EXPECT_EQ(statement->getString(1), "a?b");
}

TEST_P(DatabaseStatements, ExtraWhereIsAppended) {
  fill(5);
  auto const first = db.connection().prepare("select count(*) from t", "n > 2");
  first->execute();
  ASSERT_TRUE(first->fetch());
  EXPECT_EQ(first->getInt(0), 3);
  auto const second = db.connection().prepare("select count(*) from t where n < 5", "n > 2", "and");
  second->execute();
  ASSERT_TRUE(second->fetch());
  EXPECT_EQ(second->getInt(0), 2);
}

TEST_P(DatabaseStatements, ValueReadAsTextStaysUntilTheNextRow) {
  fill(2);
  auto const statement = db.query("select n, s from t order by n");
  ASSERT_TRUE(statement->fetch());
  std::string_view const number = statement->getString(0);
  std::string_view const text = statement->getString(1);
  statement->getDouble(0);
  statement->getInt(1);
  EXPECT_EQ(number, "1");
  EXPECT_EQ(text, "row 1");
}

TEST_P(DatabaseStatements, ThreadsHaveLinesOfTheirOwn) {
  fill(3);
  db.run("create temporary table mine (n int)");
  bool isSeen = true;
  std::thread([&] {
    isSeen = !failureOf([&] { db.query("select * from mine"); });
    EXPECT_EQ(db.value("select count(*) from t"), "3");
  }).join();
  EXPECT_FALSE(isSeen) << "a temporary table is seen by another thread";
  EXPECT_EQ(db.value("select count(*) from mine"), "0");
}

TEST_P(DatabaseStatements, LineOfAnEndedThreadComesBackAsNew) {
  for (int round = 0; round < 3; ++round) {
    std::thread([&] { db.run("create temporary table mine (n int)"); }).join();
  }
}

class DatabaseUnits : public ::testing::TestWithParam<mox_test::DatabaseKind> {
 protected:
  mox_test::TestDatabase db{GetParam(), 2};
};

MOX_ON_EVERY_DATABASE(DatabaseUnits);

TEST_P(DatabaseUnits, SelectIsRestrictedToTheHeadOffice) {
  db.run("create table p (id int, kind int, id_unidadenegociomatriz int)");
  db.run("insert into p values (1, 1, 1), (2, 1, 2), (3, 1, 2), (4, 2, 2), (5, 1, null)");
  auto const statement =
      db.connection().prepareForUnit("select pi.id from p pi where pi.kind = ?", "pi.id desc", "pi",
                                     "id_unidadenegociomatriz", "and");
  statement->bindInt(0, 1);
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 3);
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 2);
  EXPECT_FALSE(statement->fetch());
}

TEST_P(DatabaseUnits, HeadOfficeIsOutOfTheCallersReach) {
  db.run("create table p (id int, unit int)");
  auto const statement =
      db.connection().prepareForUnit("select id from p", "", "", "unit", "where");
  EXPECT_TRUE(failureOf([&] { statement->bindInt(0, 1); }));
}

}  // namespace
