#include "core/database/sqlite_connection.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "core/database/statement_splitter.h"
#include "support/temporary_directory.h"
#include "unit/core/database/memory_database.h"

namespace mox::core {
namespace {

struct SqliteFileTest : ::testing::Test {
  std::filesystem::path pathOf(std::string const& name) const { return directory.path() / name; }

  std::shared_ptr<SqliteConnection> open(std::string const& name, std::string const& mode = "rw") {
    return SqliteConnection::open({pathOf(name), mode});
  }

  void write(std::string const& name, std::string const& content) const {
    std::ofstream(pathOf(name), std::ios::binary) << content;
  }

  TextRows rows(std::shared_ptr<SqliteConnection> const& line, std::string const& sql) {
    auto const statement = line->prepare(splitScript(sql));
    statement->execute();
    return readAll(*statement);
  }

  TemporaryDirectory directory;
};

TEST_F(SqliteFileTest, AMissingFileIsMadeOnlyWhenThatIsWished) {
  auto const failure = failureOf([&] { open("new.db"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message,
            "The database file \"" + pathOf("new.db").string() +
                "\" does not exist; correct the path, or add \"?mode=rwc\" to make a new one");
  EXPECT_FALSE(std::filesystem::exists(pathOf("new.db")));
  open("new.db", "rwc")->execute("create table t (a int)");
  EXPECT_EQ(rows(open("new.db"), "select count(*) from t"), (TextRows{{"0"}}));
}

TEST_F(SqliteFileTest, AFileThatIsNoDatabaseIsRefused) {
  write("text.db", std::string(5000, 'x'));
  auto const failure = failureOf([&] { open("text.db"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "The database file \"" + pathOf("text.db").string() +
                                  "\" cannot be opened: file is not a database");
  EXPECT_EQ(failure->code, "26");
}

TEST_F(SqliteFileTest, ADirectoryIsRefused) {
  std::filesystem::create_directory(pathOf("d.db"));
  EXPECT_EQ(failureOf([&] { open("d.db"); })->message,
            "The database file \"" + pathOf("d.db").string() + "\" is a directory");
}

TEST_F(SqliteFileTest, ADirectoryThatIsMissingIsReported) {
  auto const failure = failureOf([&] { open("none/x.db", "rwc"); });
  ASSERT_TRUE(failure);
  EXPECT_NE(failure->message.find("cannot be opened: unable to open database file"),
            std::string::npos)
      << failure->message;
}

TEST_F(SqliteFileTest, ACutOffDatabaseFailsInsteadOfGivingFewerRows) {
  auto line = open("cut.db", "rwc");
  line->execute("create table t (a text)");
  line->execute(
      "with recursive n (i) as (select 1 union all select i + 1 from n where i < 2000) "
      "insert into t select printf('%0200d', i) from n");
  line.reset();
  std::filesystem::resize_file(pathOf("cut.db"), std::filesystem::file_size(pathOf("cut.db")) / 2);
  auto const failure = failureOf([&] { rows(open("cut.db"), "select a from t"); });
  ASSERT_TRUE(failure);
  EXPECT_NE(failure->message.find("database disk image is malformed"), std::string::npos)
      << failure->message;
}

TEST_F(SqliteFileTest, AReadOnlyLineRefusesToWrite) {
  open("ro.db", "rwc")->execute("create table t (a int)");
  auto const failure = failureOf([&] { open("ro.db", "ro")->execute("insert into t values (1)"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "attempt to write a readonly database");
  EXPECT_EQ(failure->code, "8");
}

TEST_F(SqliteFileTest, AFullDiskIsReported) {
  auto const line = open("full.db", "rwc");
  line->execute("create table t (a text)");
  line->execute("pragma max_page_count = 4");
  auto const failure = failureOf([&] { line->execute("insert into t values (zeroblob(100000))"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "database or disk is full");
  EXPECT_EQ(failure->code, "13");
  EXPECT_EQ(rows(line, "select count(*) from t"), (TextRows{{"0"}}));
}

TEST_F(SqliteFileTest, NamesThatLookLikeUrlsAreFiles) {
  open("file:x?mode=memory", "rwc")->execute("create table t (a int)");
  EXPECT_TRUE(std::filesystem::exists(pathOf("file:x?mode=memory")));
}

TEST_F(SqliteFileTest, DatabasesInUtf16ReadTheSame) {
  auto const line = open("wide.db", "rwc");
  line->execute("pragma encoding = 'UTF-16le'");
  line->execute("create table t (c varchar(20), d date)");
  line->execute("insert into t values ('ação', '2024-03-05')");
  EXPECT_EQ(rows(line, "select c, d, c like 'ACAO', concat(c, year(d)) from t"),
            (TextRows{{"ação", "2024-03-05", "1", "ação2024"}}));
}

struct SqliteLine : ::testing::Test {
  std::shared_ptr<SqliteConnection> line = SqliteConnection::openMemory("sqlite-line-test");
};

TEST_F(SqliteLine, ARefusedStatementGivesMessageCodeAndText) {
  auto const failure = failureOf([&] { line->prepare(splitScript("select from nowhere")); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "near \"from\": syntax error");
  EXPECT_EQ(failure->code, "1");
  EXPECT_EQ(failure->details, (std::vector<std::string>{"select from nowhere"}));
  EXPECT_EQ(failureOf([&] { line->prepare(splitScript("select * from nowhere")); })->message,
            "no such table: nowhere");
}

TEST_F(SqliteLine, AFailingExecutionGivesMessageAndCode) {
  line->execute("create table t (a int primary key)");
  line->execute("insert into t values (1)");
  auto const failure = failureOf([&] { line->execute("insert into t values (1)"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "UNIQUE constraint failed: t.a");
  EXPECT_EQ(failure->code, "1555");
}

TEST_F(SqliteLine, ForeignKeysAreKept) {
  line->execute("create table a (id integer primary key)");
  line->execute("create table b (id_a int references a (id))");
  EXPECT_EQ(failureOf([&] { line->execute("insert into b values (1)"); })->message,
            "FOREIGN KEY constraint failed");
}

TEST_F(SqliteLine, ExtensionsAreNotLoaded) {
  EXPECT_EQ(failureOf([&] {
              line->prepare(splitScript("select load_extension('x')"))->execute();
            })->message,
            "not authorized");
}

TEST_F(SqliteLine, TextBehindTheStatementsEndIsRefused) {
  EXPECT_EQ(failureOf([&] { line->compile("select 1; select 2"); })->message,
            "The statement is empty, or has text behind its end");
  EXPECT_EQ(failureOf([&] { line->prepare(splitScript("select 'a\\'; drop table t")); })->message,
            "The statement ends inside a literal or a quoted name");
  EXPECT_EQ(failureOf([&] { line->compile(" "); })->message,
            "The statement is empty, or has text behind its end");
  EXPECT_EQ(failureOf([&] { line->compile(std::string("select 1\0x", 10)); })->message,
            "The statement has a zero byte");
}

TEST_F(SqliteLine, AStatementThatIsTooLongIsRefused) {
  auto const failure = failureOf(
      [&] { line->compile("select 1" + std::string(std::size_t{17} * 1024 * 1024, ' ')); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "18");
}

TEST_F(SqliteLine, AnInterruptedFetchThrows) {
  auto const statement =
      line->prepare(splitScript("with recursive n (i) as (select 1 union all select i + 1 from n "
                                "where i < 5000) select i from n"));
  statement->execute();
  int rows = 0;
  auto const failure = failureOf([&] {
    while (statement->fetch()) {
      if (++rows == 100) {
        line->interrupt();
      }
    }
  });
  ASSERT_TRUE(failure);
  EXPECT_EQ(rows, 100);
  EXPECT_EQ(failure->message, "interrupted");
  EXPECT_EQ(failure->code, "9");
}

TEST_F(SqliteLine, AnInterruptedBlockThrowsInsteadOfBeingShort) {
  auto const statement =
      line->prepare(splitScript("with recursive n (i) as (select 1 union all select i + 1 from n "
                                "where i < 5000) select i from n"));
  auto& base = dynamic_cast<LineStatement&>(*statement);
  base.setRowObserver([&](std::int64_t) { line->interrupt(); });
  statement->execute();
  std::vector<std::int32_t> values(1024);
  std::vector<std::uint8_t> nulls(1024);
  std::vector<moxFieldBlock> fields(1);
  fields[0].readAs = moxDatabaseConnection::FieldType::kInt;
  fields[0].ints = values.data();
  fields[0].nulls = nulls.data();
  EXPECT_EQ(base.fetchBlock(fields, 1024), 1024);
  EXPECT_EQ(failureOf([&] { base.fetchBlock(fields, 1024); })->message, "interrupted");
}

TEST_F(SqliteLine, AFailureInTheMiddleOfTheRowsThrows) {
  auto const statement = line->prepare(
      splitScript("select abs(case column1 when 3 then -9223372036854775807 - 1 else column1 end) "
                  "from (values (1), (2), (3), (4))"));
  statement->execute();
  EXPECT_TRUE(statement->fetch());
  EXPECT_TRUE(statement->fetch());
  EXPECT_EQ(failureOf([&] { statement->fetch(); })->message, "integer overflow");
}

}  // namespace
}  // namespace mox::core
