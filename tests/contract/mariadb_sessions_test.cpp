// Opening lines to a MariaDB server, losing them between runs, and what a line is set to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>

#include <string>
#include <thread>

#include "contract/cutting_proxy.h"
#include "core/database/database.h"
#include "support/databases.h"

namespace {

using mox_test::failureOf;
using mox_test::TestDatabase;
using testing::HasSubstr;

using Handler = void (*)(int);

Handler brokenPipeHandler() {
  struct sigaction action {};
  ::sigaction(SIGPIPE, nullptr, &action);
  return action.sa_handler;
}

/// Before any line was opened.
Handler const kHandlerAtStart = brokenPipeHandler();

class MariadbSessions : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!mox_test::hasMariadb()) {
      GTEST_SKIP() << "MOX_TEST_MARIADB_URL names no server";
    }
    db.emplace(mox_test::DatabaseKind::kMariadb);
    other.emplace(mox_test::DatabaseKind::kMariadb);
  }

  void killLine() { mox_test::killConnection(*other, db->value("select connection_id()")); }

  std::optional<mox_test::Failure> openingFails(std::string const& url,
                                                std::string const& password = "") {
    return failureOf([&] {
      mox::core::DatabaseOptions options;
      options.url = url;
      options.password = password;
      mox::core::openDatabase(options)->execute("do 0");
    });
  }

  /// The server's URL with another user.
  std::string as(std::string const& user) {
    std::string url = db->url();
    return url.replace(url.find("root@"), 5, user + "@");
  }

  std::optional<TestDatabase> db;
  std::optional<TestDatabase> other;
};

TEST_F(MariadbSessions, WrongPasswordIsToldWithoutIt) {
  db->run("create or replace user mox_somebody@localhost identified by 'right'");
  db->run("grant all on *.* to mox_somebody@localhost");
  EXPECT_FALSE(openingFails(as("mox_somebody"), "right"));
  auto const failure = openingFails(as("mox_somebody"), "wrong-secret");
  db->run("drop user mox_somebody@localhost");
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "1045");
  EXPECT_THAT(failure->message, HasSubstr("mox_somebody"));
  EXPECT_THAT(failure->message, HasSubstr("check the user in the URL and the password"));
  EXPECT_THAT(failure->message, testing::Not(HasSubstr("wrong-secret")));
  EXPECT_THAT(failure->details, testing::IsEmpty());
}

TEST_F(MariadbSessions, UnknownDatabaseIsTold) {
  auto const failure = openingFails(mox_test::withDatabase(db->url(), "mox_no_such_database"));
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "1049");
  EXPECT_THAT(failure->message, HasSubstr("mox_no_such_database"));
}

TEST_F(MariadbSessions, MissingServerIsTold) {
  auto const failure = openingFails("mariadb://root@localhost/x?socket=/nonexistent/socket");
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "2002");
  EXPECT_THAT(failure->message, HasSubstr("/nonexistent/socket"));
}

TEST_F(MariadbSessions, PortWhereNobodyListensIsTold) {
  auto const failure = openingFails("mariadb://root@localhost:1/x?connect_timeout=5");
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->code, testing::AnyOf("2002", "2003"));
}

TEST_F(MariadbSessions, HostThatIsNotKnownIsTold) {
  auto const failure = openingFails("mariadb://root@no-such-host.invalid/x?connect_timeout=5");
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->message, HasSubstr("Cannot open the database"));
}

TEST_F(MariadbSessions, MissingCertificatesAreTold) {
  auto const failure = openingFails(db->url() + "&tls_ca=/nonexistent/ca.pem");
  ASSERT_TRUE(failure);
  EXPECT_NE(failure->code, "");
}

TEST_F(MariadbSessions, ServerWithoutEncryptionIsRefusedWhenItIsAskedFor) {
  EXPECT_TRUE(openingFails(db->url() + "&tls_ca=/etc/ssl/certs/ca-certificates.crt"));
}

TEST_F(MariadbSessions, TextsAreUtf8OfFourBytes) {
  EXPECT_EQ(db->value("select @@character_set_client"), "utf8mb4");
  EXPECT_EQ(db->value("select @@character_set_results"), "utf8mb4");
  EXPECT_EQ(db->value("select char_length('\xF0\x9F\x98\x80')"), "1");
}

TEST_F(MariadbSessions, ServersModeIsKeptButForTheWayOfReadingTexts) {
  std::string const before = other->value("select @@global.sql_mode");
  other->run("set global sql_mode = 'STRICT_ALL_TABLES,ANSI,NO_BACKSLASH_ESCAPES'");
  EXPECT_EQ(db->value("select \"a\\\"b\""), "a\"b");
  std::string const mode = db->value("select @@sql_mode");
  other->run("set global sql_mode = '" + before + "'");
  EXPECT_THAT(mode, HasSubstr("STRICT_ALL_TABLES"));
  EXPECT_THAT(mode, HasSubstr("PIPES_AS_CONCAT"));
  EXPECT_THAT(mode, testing::Not(HasSubstr("ANSI")));
}

TEST_F(MariadbSessions, StatementsAreCommittedAtOnce) {
  other->run("set global autocommit = 0");
  db->run("create table t (n int)");
  db->run("insert into t values (1)");
  other->run("set global autocommit = 1");
  EXPECT_EQ(other->value("select count(*) from " + db->value("select database()") + ".t"), "1");
}

TEST_F(MariadbSessions, BrokenPipeSignalIsLeftAlone) {
  db->run("do 0");
  EXPECT_EQ(brokenPipeHandler(), kHandlerAtStart);
}

TEST_F(MariadbSessions, WritingToALostLineRaisesNoSignal) {
  db->run("create table t (s longtext)");
  auto const insert = db->connection().prepare("insert into t values (?)");
  killLine();
  for (int round = 0; round < 3; ++round) {
    insert->bindString(0, std::string(1000000, 'x'));
    EXPECT_TRUE(failureOf([&] { insert->execute(); }));
  }
}

TEST_F(MariadbSessions, LineLostBetweenRunsIsOpenedAnew) {
  std::string const before = db->value("select connection_id()");
  killLine();
  std::string const after = db->value("select connection_id()");
  EXPECT_NE(after, before);
}

TEST_F(MariadbSessions, LineIsNotOpenedAnewUnderALivingStatement) {
  auto statement = db->query("select 1");
  statement->fetch();
  mox_test::killConnection(*other, db->value("select connection_id()"));
  for (int round = 0; round < 2; ++round) {
    auto const failure = failureOf([&] { db->value("select 1"); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, "2013");
  }
  EXPECT_TRUE(failureOf([&] { statement->execute(); }));
  statement.reset();
  EXPECT_EQ(db->value("select 1"), "1");
}

class MariadbLostState : public MariadbSessions,
                         public ::testing::WithParamInterface<char const*> {};

TEST_P(MariadbLostState, IsToldOnceWhenTheLineIsOpenedAnew) {
  db->run("create procedure leaves_a_table() create temporary table left_behind (n int)");
  db->run("create table locked (n int)");
  db->run(GetParam());
  killLine();
  auto const failure = failureOf([&] { db->value("select 1"); });
  ASSERT_TRUE(failure) << GetParam();
  EXPECT_EQ(failure->code, "2013");
  EXPECT_THAT(failure->message, HasSubstr("temporary tables"));
  EXPECT_EQ(db->value("select 1"), "1");
}

INSTANTIATE_TEST_SUITE_P(
    After, MariadbLostState,
    ::testing::Values("create temporary table mine (n int)",
                      "create or replace temporary table T (a int , b double )", "set @total = 1",
                      "call leaves_a_table()", "start transaction", "lock tables locked write"));

TEST_F(MariadbSessions, VariableSetAheadOfEachExecutionIsNoLoss) {
  EXPECT_EQ(db->value("set @n = 5; select @n"), "5");
  killLine();
  EXPECT_EQ(db->value("set @n = 5; select @n"), "5");
}

TEST_F(MariadbSessions, LineThatCannotBeOpenedAnewKeepsTellingWhy) {
  mox_test::CuttingProxy proxy(db->url());
  mox::core::DatabaseOptions options;
  options.url = proxy.url();
  auto const database = mox::core::openDatabase(options);
  database->execute("create temporary table mine (n int)");
  proxy.setLimit(0);
  EXPECT_EQ(failureOf([&] { database->execute("do 0"); })->code, "2013");
  for (int round = 0; round < 2; ++round) {
    auto const failure = failureOf([&] { database->execute("do 0"); });
    ASSERT_TRUE(failure);
    EXPECT_THAT(failure->message, HasSubstr("Cannot open the database"));
  }
  proxy.setLimit(mox_test::CuttingProxy::kNoLimit);
  EXPECT_THAT(failureOf([&] { database->execute("do 0"); })->message,
              HasSubstr("temporary tables"));
  database->execute("do 0");
}

TEST_F(MariadbSessions, EndedThreadsLineIsLentOutAsNew) {
  std::string first;
  std::thread([&] {
    first = db->value("select connection_id()");
    db->run("create temporary table mine (n int)");
    db->run("set @total = 1, sql_mode = 'ANSI_QUOTES'");
    db->run("start transaction");
  }).join();
  std::string second;
  std::thread([&] {
    second = db->value("select connection_id()");
    EXPECT_TRUE(failureOf([&] { db->query("select * from mine"); }));
    EXPECT_EQ(db->value("select @total"), "NULL");
    EXPECT_EQ(db->value("select @@in_transaction"), "0");
    EXPECT_EQ(db->value("select \"text\""), "text");
    EXPECT_EQ(db->value("select @@character_set_client"), "utf8mb4");
  }).join();
  EXPECT_EQ(first, second);
}

TEST_F(MariadbSessions, ServerMayNotAskForLocalFiles) {
  auto const failure = failureOf([&] {
    db->run("create table t (s text)");
    db->run("load data local infile '/etc/hostname' into table t");
  });
  EXPECT_TRUE(failure);
  EXPECT_EQ(db->value("select count(*) from t"), "0");
}

}  // namespace
