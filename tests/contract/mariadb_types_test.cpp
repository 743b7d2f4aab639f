// How MariaDB's own column types are read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "core/database/mariadb_connection.h"
#include "support/databases.h"

namespace {

using mox_test::TestDatabase;
using FieldType = moxDatabaseConnection::FieldType;
using Statement = moxDatabaseConnection::PreparedStatement;

class MariadbTypes : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!mox_test::hasMariadb()) {
      GTEST_SKIP() << "MOX_TEST_MARIADB_URL names no server";
    }
    db.emplace(mox_test::DatabaseKind::kMariadb);
  }

  /// A statement standing on the one value that a column of that type holds.
  std::shared_ptr<Statement> column(std::string const& type, std::string const& value) {
    db->run("create or replace table t (c " + type + ")");
    db->run("insert into t values (" + value + ")");
    auto statement = db->query("select c from t");
    EXPECT_TRUE(statement->fetch());
    return statement;
  }

  void expectInt(std::string const& type, std::string const& value, int number) {
    auto const statement = column(type, value);
    EXPECT_EQ(statement->field(0).type, FieldType::kInt) << type;
    EXPECT_EQ(statement->getInt(0), number) << type;
    EXPECT_EQ(statement->getDouble(0), number) << type;
    EXPECT_EQ(statement->getString(0), std::to_string(number)) << type;
  }

  void expectText(std::string const& type, std::string const& value, std::string const& text) {
    auto const statement = column(type, value);
    EXPECT_EQ(statement->field(0).type, FieldType::kText) << type;
    EXPECT_EQ(statement->getString(0), text) << type;
  }

  /// By a line of its own, on which semicolons do not part statements.
  void makeProcedure(std::string const& body) {
    auto const line = mox::core::openMariadb(mox::core::parseDatabaseUrl(db->url()), "");
    line->execute("create procedure p() begin " + body + " end");
  }

  std::optional<TestDatabase> db;
};

TEST_F(MariadbTypes, IntegersOfEveryWidth) {
  expectInt("tinyint", "-128", -128);
  expectInt("tinyint unsigned", "255", 255);
  expectInt("smallint", "-32768", -32768);
  expectInt("smallint unsigned", "65535", 65535);
  expectInt("mediumint", "-8388608", -8388608);
  expectInt("mediumint unsigned", "16777215", 16777215);
  expectInt("int", "-2147483648", std::numeric_limits<int>::min());
  expectInt("int unsigned", "2147483647", 2147483647);
  expectInt("bigint", "-77", -77);
  expectInt("bigint unsigned", "77", 77);
  expectInt("year", "2024", 2024);
  expectInt("bit(12)", "b'101000000001'", 2561);
  expectInt("bit(1)", "b'1'", 1);
  expectInt("boolean", "true", 1);
}

TEST_F(MariadbTypes, LargestUnsignedKeepsItsSize) {
  auto const statement = column("bigint unsigned", "18446744073709551615");
  EXPECT_EQ(statement->getString(0), "18446744073709551615");
  EXPECT_EQ(statement->getDouble(0), 18446744073709551615.0);
  EXPECT_EQ(statement->getInt(0), -1);
}

TEST_F(MariadbTypes, DecimalIsADoubleThatKeepsItsDigitsAsText) {
  auto const statement = column("decimal(30,10)", "-12345678901234567890.0123456789");
  EXPECT_EQ(statement->field(0).type, FieldType::kDouble);
  EXPECT_EQ(statement->getString(0), "-12345678901234567890.0123456789");
  EXPECT_EQ(statement->getDouble(0), -12345678901234567890.0123456789);
}

TEST_F(MariadbTypes, DecimalOfTheGreatestLength) {
  std::string const digits = std::string(35, '9') + "." + std::string(30, '8');
  EXPECT_EQ(column("decimal(65,30)", "-" + digits)->getString(0), "-" + digits);
}

TEST_F(MariadbTypes, FloatReadsAsItsShortestText) {
  auto const statement = column("float", "0.1");
  EXPECT_EQ(statement->field(0).type, FieldType::kDouble);
  EXPECT_EQ(statement->getString(0), "0.1");
  EXPECT_EQ(statement->getDouble(0), static_cast<double>(0.1F));
}

TEST_F(MariadbTypes, FractionsOfASecondAreDroppedFromMomentsAndKeptInTexts) {
  auto const statement = column("datetime(3)", "'1999-12-31 23:59:59.987'");
  EXPECT_EQ(statement->field(0).type, FieldType::kDate);
  EXPECT_EQ(statement->getDateTime(0), datetime_t(31, 12, 1999, 23, 59, 59));
  EXPECT_EQ(statement->getString(0), "1999-12-31 23:59:59.987");
  EXPECT_EQ(column("datetime(6)", "'2024-01-01'")->getString(0), "2024-01-01 00:00:00.000000");
}

TEST_F(MariadbTypes, TimestampIsAMoment) {
  auto const statement = column("timestamp null", "'2020-02-29 01:02:03'");
  EXPECT_EQ(statement->field(0).type, FieldType::kDate);
  EXPECT_EQ(statement->getDateTime(0), datetime_t(29, 2, 2020, 1, 2, 3));
}

TEST_F(MariadbTypes, ZeroDatesAreEmptyButNoNulls) {
  db->run("set session sql_mode = ''");
  for (char const* const value :
       {"'0000-00-00 00:00:00'", "'2024-00-10 10:00:00'", "'2024-05-00'"}) {
    auto const statement = column("datetime", value);
    EXPECT_FALSE(statement->isNull(0)) << value;
    EXPECT_FALSE(statement->getDateTime(0)) << value;
    EXPECT_FALSE(statement->getDate(0)) << value;
  }
  EXPECT_EQ(column("date", "'0000-00-00'")->getString(0), "0000-00-00");
}

TEST_F(MariadbTypes, DateReadAsANumberIsItsDigits) {
  EXPECT_EQ(column("date", "'2024-03-05'")->getInt(0), 20240305);
  EXPECT_EQ(column("datetime", "'2024-03-05 10:11:12'")->getDouble(0), 20240305101112.0);
}

TEST_F(MariadbTypes, TextsOfEveryKind) {
  expectText("char(10)", "'ab'", "ab");
  expectText("varchar(10)", "'ação'", "ação");
  expectText("varchar(10) character set latin1", "'ação'", "ação");
  expectText("tinytext", "'x'", "x");
  expectText("text", "'x'", "x");
  expectText("mediumtext", "'x'", "x");
  expectText("longtext", "repeat('x', 1000)", std::string(1000, 'x'));
  expectText("enum('x', 'y')", "'y'", "y");
  expectText("set('p', 'q')", "'p,q'", "p,q");
  expectText("json", "'{\"a\": 1}'", "{\"a\": 1}");
  expectText("uuid", "'123e4567-e89b-12d3-a456-426655440000'",
             "123e4567-e89b-12d3-a456-426655440000");
  expectText("inet6", "'::1'", "::1");
}

TEST_F(MariadbTypes, TimesOfDayAreTexts) {
  expectText("time", "'10:11:12'", "10:11:12");
  expectText("time", "'-838:59:59'", "-838:59:59");
  expectText("time(2)", "'10:11:12.5'", "10:11:12.50");
}

TEST_F(MariadbTypes, BytesOfEveryKind) {
  for (std::string const type :
       {"binary(4)", "varbinary(10)", "tinyblob", "blob", "mediumblob", "longblob"}) {
    auto const statement = column(type, "x'00ff0041'");
    EXPECT_EQ(statement->field(0).type, FieldType::kBlob) << type;
    EXPECT_EQ(statement->getString(0), std::string("\0\xff\0A", 4)) << type;
  }
}

TEST_F(MariadbTypes, NullWithoutATypeIsAText) {
  auto const statement = db->query("select null");
  EXPECT_EQ(statement->field(0).type, FieldType::kText);
  ASSERT_TRUE(statement->fetch());
  EXPECT_TRUE(statement->isNull(0));
}

TEST_F(MariadbTypes, LongAndShortTextsInTurn) {
  db->run("create table t (n int, s longtext, z longblob)");
  db->run(
      "insert into t select seq, repeat('s', (seq * 7919) % 3000), repeat('z', if(seq % 10 = 0, "
      "100000, seq)) "
      "from seq_1_to_200");
  auto const statement = db->query("select n, s, z from t order by n");
  for (int n = 1; n <= 200; ++n) {
    ASSERT_TRUE(statement->fetch());
    ASSERT_EQ(statement->getInt(0), n);
    ASSERT_TRUE(statement->getString(1) ==
                std::string(static_cast<std::size_t>(n * 7919 % 3000), 's'))
        << n;
    ASSERT_TRUE(statement->getString(2) ==
                std::string(n % 10 == 0 ? 100000U : static_cast<unsigned>(n), 'z'))
        << n;
  }
}

TEST_F(MariadbTypes, ProcedureGivesItsFirstRows) {
  makeProcedure("do 1; select 1 as one union all select 11; select 2 as two; do 2;");
  EXPECT_THAT(db->rows("call p()"),
              testing::ElementsAre(testing::ElementsAre("1"), testing::ElementsAre("11")));
  EXPECT_EQ(db->value("select 5"), "5");
}

TEST_F(MariadbTypes, ProcedureThatFailsBehindItsRowsIsAnError) {
  makeProcedure("select 1 as one; select * from no_such_table;");
  auto const statement = db->query("call p()");
  ASSERT_TRUE(statement->fetch());
  auto const failure = mox_test::failureOf([&] { statement->fetch(); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "1146");
  EXPECT_EQ(db->value("select 5"), "5");
}

TEST_F(MariadbTypes, ProcedureWithoutRowsHasNoFields) {
  makeProcedure("do 1; do 2;");
  EXPECT_EQ(db->query("call p()")->fieldCount(), 0);
  EXPECT_EQ(db->value("select 5"), "5");
}

TEST_F(MariadbTypes, ProcedureLetGoAmongItsResults) {
  makeProcedure("select seq from seq_1_to_1000; select 2 as two; select seq from seq_1_to_1000;");
  ASSERT_TRUE(db->query("call p()")->fetch());
  EXPECT_EQ(db->value("select 5"), "5");
}

TEST_F(MariadbTypes, ProceduresRowsAreKeptAsideForAnotherStatement) {
  makeProcedure("select seq from seq_1_to_10; select 2 as two;");
  auto const statement = db->query("call p()");
  for (int n = 1; n <= 10; ++n) {
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getInt(0), n);
    EXPECT_EQ(db->value("select 5"), "5");
  }
  EXPECT_FALSE(statement->fetch());
}

TEST_F(MariadbTypes, ColumnThatChangesItsTypeUnderAPreparedStatement) {
  db->run("create table t (c int, e varchar(20))");
  db->run("insert into t values (7, '2024-03-05')");
  auto const statement = db->query("select * from t");
  ASSERT_TRUE(statement->fetch());
  EXPECT_FALSE(statement->fetch());
  db->run("alter table t modify c varchar(20), modify e datetime");
  statement->execute();
  EXPECT_EQ(statement->field(0).type, FieldType::kText);
  EXPECT_EQ(statement->field(1).type, FieldType::kDate);
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getString(0), "7");
  EXPECT_EQ(statement->getDate(1), date_t(5, 3, 2024));
}

TEST_F(MariadbTypes, ColumnThatIsAddedUnderAPreparedStatementIsAnError) {
  db->run("create table t (c int)");
  db->run("insert into t values (7)");
  auto statement = db->query("select * from t");
  ASSERT_TRUE(statement->fetch());
  EXPECT_FALSE(statement->fetch());
  db->run("alter table t add e int");
  auto const failure = mox_test::failureOf([&] { statement->execute(); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "2057");
  statement.reset();
  EXPECT_EQ(db->rows("select * from t"), (std::vector<std::vector<std::string>>{{"7", "NULL"}}));
}

}  // namespace
