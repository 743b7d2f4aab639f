#include "core/database/database.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/temporary_directory.h"
#include "unit/core/database/memory_database.h"

namespace mox::core {
namespace {

TEST(Database, AnUnknownKindIsRefusedWithTheKnownOnes) {
  auto const failure = failureOf([] { Database(DatabaseOptions{"oracle:x", "", {}, {}}); });
  ASSERT_TRUE(failure);
  EXPECT_NE(failure->message.find("unknown kind of database \"oracle\""), std::string::npos)
      << failure->message;
  EXPECT_NE(failure->message.find("\"sqlite:\""), std::string::npos) << failure->message;
  EXPECT_NE(failure->message.find("\"mariadb://\""), std::string::npos) << failure->message;
}

TEST(Database, ThePasswordShowsInNoMessage) {
  auto const failure = failureOf([] { Database(DatabaseOptions{"nowhere", "s3cret", {}, {}}); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message.find("s3cret"), std::string::npos);
}

TEST(Database, OpensWhenAStatementNeedsIt) {
  auto const db = openDatabase(DatabaseOptions{"sqlite:missing.db", "", "/nonexistent", {}});
  auto const failure = failureOf([&] { db->prepare("select 1"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message,
            "The database file \"/nonexistent/missing.db\" does not exist; correct the path, or "
            "add \"?mode=rwc\" to "
            "make a new one");
}

TEST(Database, RelativePathsStartAtTheBaseDirectory) {
  TemporaryDirectory const directory;
  Database db(DatabaseOptions{"sqlite:escola.db?mode=rwc", "", directory.path(), {}});
  db.execute("create table t (a int)");
  EXPECT_TRUE(std::filesystem::exists(directory.path() / "escola.db"));
}

TEST(Database, AnEmptyStatementIsRefused) {
  MemoryDatabase data;
  for (char const* sql : {"", "  ", ";;", "-- nothing"}) {
    EXPECT_EQ(failureOf([&] { data.db.prepare(sql, "a = 1"); })->message, "The statement is empty")
        << sql;
  }
}

TEST(Database, TheExtraConditionStandsBehindTheMainStatement) {
  MemoryDatabase data;
  data.run("create table t (a int); insert into t values (1), (2), (3)");
  auto const count = [&](std::string const& sql, std::string const& extra,
                         std::string const& word) {
    auto const statement = data.db.prepare(sql, extra, word);
    statement->execute();
    return readAll(*statement).at(0).at(0);
  };
  EXPECT_EQ(count("select count(*) from t", "", "where"), "3");
  EXPECT_EQ(count("select count(*) from t", "a > 1", "where"), "2");
  EXPECT_EQ(count("select count(*) from t where a < 3 -- all but one", "a > 1", "and"), "1");
  EXPECT_EQ(count("select count(*) from t; delete from t where a = 9", "a > 1", ""), "2");
}

TEST(Database, StatementsAroundTheMainOneRunAheadAndAfter) {
  MemoryDatabase data;
  std::string const script =
      "create temporary table x (a int); insert into x values (7); select a from x; drop temporary "
      "table x";
  auto const statement = data.db.prepare(script);
  for (int i = 0; i < 2; ++i) {
    statement->execute();
    EXPECT_EQ(readAll(*statement), (TextRows{{"7"}}));
    EXPECT_EQ(data.value("select count(*) from sqlite_temp_schema"), "0");
  }
}

TEST(Database, AScriptWhoseMainStatementIsRefusedCleansUp) {
  MemoryDatabase data;
  EXPECT_TRUE(failureOf(
      [&] { data.db.prepare("create temporary table x (a int); select b from x; drop table x"); }));
  EXPECT_EQ(data.value("select count(*) from sqlite_temp_schema"), "0");
}

struct DatabaseForUnit : ::testing::Test {
  DatabaseForUnit() {
    db.execute("create table p (id int, id_unidadenegociomatriz int, nome varchar(20))");
    db.execute("insert into p values (1, 10, 'a'), (2, 20, 'b'), (3, 10, 'c'), (4, null, 'd')");
  }

  int headOffice = 10;
  Database db{DatabaseOptions{"sqlite::memory:", "", {}, [this] { return headOffice; }}};
};

TEST_F(DatabaseForUnit, RestrictsToTheHeadOfficeAndOrders) {
  auto const statement = db.prepareForUnit("select pi.id from p pi where pi.id > ?", "pi.nome desc",
                                           "pi", "id_unidadenegociomatriz", "and");
  statement->bindInt(0, 0);
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"3"}, {"1"}}));
}

TEST_F(DatabaseForUnit, WithoutAnAliasOrAnOrder) {
  auto const statement =
      db.prepareForUnit("select id from p", "", "", "id_unidadenegociomatriz", "where");
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"1"}, {"3"}}));
}

TEST_F(DatabaseForUnit, TheUnitIsOutOfTheCallersReach) {
  auto const statement =
      db.prepareForUnit("select id from p where id > ?", "", "", "id_unidadenegociomatriz", "and");
  EXPECT_FALSE(failureOf([&] { statement->bindInt(0, 0); }));
  EXPECT_TRUE(failureOf([&] { statement->bindInt(1, 20); }));
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"1"}, {"3"}}));
}

TEST_F(DatabaseForUnit, WithoutAHeadOfficeThereAreNoRows) {
  headOffice = 0;
  auto const statement =
      db.prepareForUnit("select id from p", "", "", "id_unidadenegociomatriz", "where");
  statement->execute();
  EXPECT_EQ(readAll(*statement), TextRows{});
  MemoryDatabase other;
  other.run("create table p (u int); insert into p values (1), (null)");
  auto const nobody = other.db.prepareForUnit("select u from p", "", "", "u", "where");
  nobody->execute();
  EXPECT_EQ(readAll(*nobody), TextRows{});
}

TEST(Database, ADatabaseInMemoryIsSharedByThreadsAndItsTemporaryTablesAreNot) {
  MemoryDatabase data;
  data.run("create table t (a int)");
  data.run("create temporary table mine (a int)");
  std::thread([&] {
    data.run("insert into t values (5)");
    EXPECT_TRUE(failureOf([&] { data.rows("select * from mine"); }));
    data.run("create or replace temporary table mine (a int , b double )");
  }).join();
  EXPECT_EQ(data.value("select a from t"), "5");
  EXPECT_EQ(data.query("select * from mine")->fieldCount(), 1);
}

TEST(Database, DatabasesInMemoryAreSeparate) {
  MemoryDatabase first;
  MemoryDatabase second;
  first.run("create table t (a int)");
  EXPECT_TRUE(failureOf([&] { second.rows("select * from t"); }));
}

TEST(Database, ADatabaseInMemoryOutlivesTheLinesOfItsThreads) {
  MemoryDatabase data;
  data.run("create table t (a int); create temporary table x (a int)");
  data.db.releaseThisThread();
  EXPECT_EQ(data.rows("select * from t"), TextRows{});
  EXPECT_TRUE(failureOf([&] { data.rows("select * from x"); }));
}

TEST(Database, ThreadsMayWriteAtTheSameTime) {
  MemoryDatabase data;
  data.run("create table t (a int)");
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      auto const insert = data.db.prepare("insert into t values (?)");
      for (int value = 0; value < 50; ++value) {
        insert->bindInt(0, value);
        insert->execute();
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(data.value("select count(*) from t"), "400");
}

TEST(Database, AStatementOutlivesItsDatabase) {
  auto db = std::make_unique<Database>(DatabaseOptions{"sqlite::memory:", "", {}, {}});
  auto const statement = db->prepare("select 1");
  db.reset();
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"1"}}));
}

TEST(Database, TheObserverHearsOfTheRowsOfEveryStatement) {
  MemoryDatabase data;
  std::vector<std::int64_t> heard;
  data.db.setRowObserver([&](std::int64_t rows) { heard.push_back(rows); });
  std::string const sql =
      "with recursive n (i) as (select 1 union all select i + 1 from n where i < 2500) select i "
      "from n";
  data.rows(sql);
  EXPECT_EQ(heard, (std::vector<std::int64_t>{1024, 2048}));
  data.db.setRowObserver({});
  data.rows(sql);
  EXPECT_EQ(heard.size(), 2u);
}

}  // namespace
}  // namespace mox::core
