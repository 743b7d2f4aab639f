// What goes in comes out, on every database: values of each kind, nulls, and readings of one kind
// as another.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "core/storage/blob.h"
#include "support/databases.h"

namespace {

using namespace std::string_literals;
using mox_test::OnEveryDatabase;
using FieldType = moxDatabaseConnection::FieldType;

class DatabaseValues : public OnEveryDatabase {
 protected:
  /// A statement standing on its only row.
  std::shared_ptr<moxDatabaseConnection::PreparedStatement> row(std::string const& sql) {
    auto statement = db.query(sql);
    EXPECT_TRUE(statement->fetch()) << sql;
    return statement;
  }

  std::string bytesOf(moxDatabaseConnection::PreparedStatement& statement, int field) {
    auto const blob = statement.getBlob(field);
    return {blob->data(), blob->size()};
  }
};

MOX_ON_EVERY_DATABASE(DatabaseValues);

TEST_P(DatabaseValues, DeclaredColumnsTellTheirTypeWithoutRows) {
  db.run(
      "create table t (i int, big bigint, small smallint, d double, m decimal(10,2), s "
      "varchar(20), "
      "c char(3), lt longtext, dt date, ts datetime, b blob)");
  auto const statement = db.query("select * from t");
  ASSERT_EQ(statement->fieldCount(), 11);
  FieldType const expected[] = {FieldType::kInt,    FieldType::kInt,    FieldType::kInt,
                                FieldType::kDouble, FieldType::kDouble, FieldType::kText,
                                FieldType::kText,   FieldType::kText,   FieldType::kDate,
                                FieldType::kDate,   FieldType::kBlob};
  for (int i = 0; i < 11; ++i) {
    EXPECT_EQ(statement->field(i).type, expected[i]) << statement->field(i).name;
  }
  EXPECT_FALSE(statement->fetch());
}

TEST_P(DatabaseValues, FieldTellsAliasColumnAndTable) {
  db.run("create table notas (id int, valor double)");
  auto const statement = db.query("select n.valor as nota, n.id + 1 as soma from notas n");
  auto const& column = statement->field(0);
  EXPECT_EQ(column.name, "nota");
  EXPECT_EQ(column.columnName, "valor");
  EXPECT_EQ(column.tableName, "notas");
  auto const& expression = statement->field(1);
  EXPECT_EQ(expression.name, "soma");
  EXPECT_EQ(expression.columnName, "");
  EXPECT_EQ(expression.tableName, "");
}

TEST_P(DatabaseValues, NullOfEveryTypeReadsAsNothing) {
  db.run("create table t (i int, d double, s varchar(20), dt datetime, b blob)");
  db.run("insert into t values (null, null, null, null, null)");
  auto const statement = row("select * from t");
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(statement->isNull(i)) << i;
    EXPECT_EQ(statement->getInt(i), 0) << i;
    EXPECT_EQ(statement->getDouble(i), 0) << i;
    EXPECT_EQ(statement->getString(i), "") << i;
    EXPECT_FALSE(statement->getBool(i)) << i;
    EXPECT_FALSE(statement->getDate(i)) << i;
    EXPECT_FALSE(statement->getDateTime(i)) << i;
    ASSERT_NE(statement->getBlob(i), nullptr) << i;
    EXPECT_EQ(statement->getBlob(i)->size(), 0U) << i;
  }
}

TEST_P(DatabaseValues, EmptyTextIsNoNull) {
  db.run("create table t (s varchar(20), b blob)");
  auto const insert = db.connection().prepare("insert into t values (?, ?)");
  insert->bindString(0, "");
  insert->bindBlob(1, mox::core::Blob());
  insert->execute();
  auto const statement = row("select * from t");
  EXPECT_FALSE(statement->isNull(0));
  EXPECT_FALSE(statement->isNull(1));
}

TEST_P(DatabaseValues, MarkThatWasNeverBoundIsNull) {
  db.run("create table t (a int, b varchar(20))");
  auto const insert = db.connection().prepare("insert into t values (?, ?)");
  insert->bindInt(0, 3);
  insert->execute();
  EXPECT_THAT(db.rows("select * from t"), testing::ElementsAre(testing::ElementsAre("3", "NULL")));
}

TEST_P(DatabaseValues, TextsOfEveryLengthComeBack) {
  db.run("create table t (n int, s longtext)");
  std::string const texts[] = {"",
                               "a",
                               std::string(12, 'x'),
                               std::string(13, 'y'),
                               std::string(200, 'z'),
                               std::string(255, '1'),
                               std::string(256, '2'),
                               std::string(257, '3'),
                               std::string(70000, 'w'),
                               std::string(3000000, 'v'),
                               "zero\0inside"s,
                               "\0"s,
                               "ação, coração",
                               "emoji \xF0\x9F\x98\x80 end",
                               "quote ' double \" back \\ line\n"};
  auto const insert = db.connection().prepare("insert into t values (?, ?)");
  int number = 0;
  for (auto const& text : texts) {
    insert->bindInt(0, number++);
    insert->bindString(1, text);
    insert->execute();
  }
  auto const statement = db.query("select s from t order by n");
  for (auto const& text : texts) {
    ASSERT_TRUE(statement->fetch());
    EXPECT_TRUE(statement->getString(0) == text) << "of " << text.size() << " bytes";
  }
  EXPECT_FALSE(statement->fetch());
}

TEST_P(DatabaseValues, BlobsKeepEveryByte) {
  db.run("create table t (b longblob)");
  std::string bytes;
  for (int i = 0; i < 100000; ++i) {
    bytes += static_cast<char>(i * 7);
  }
  auto const insert = db.connection().prepare("insert into t values (?)");
  insert->bindBlob(0, mox::core::Blob(bytes));
  insert->execute();
  auto const statement = row("select b from t");
  EXPECT_EQ(statement->field(0).type, FieldType::kBlob);
  EXPECT_TRUE(bytesOf(*statement, 0) == bytes);
}

TEST_P(DatabaseValues, BlobOutlivesItsRow) {
  db.run("create table t (n int, b blob)");
  db.run("insert into t values (1, 'first'), (2, 'second')");
  auto const statement = db.query("select b from t order by n");
  ASSERT_TRUE(statement->fetch());
  auto const blob = statement->getBlob(0);
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(std::string(blob->data(), blob->size()), "first");
}

TEST_P(DatabaseValues, DatesAndTimesComeBack) {
  db.run("create table t (d date, m datetime)");
  auto const insert = db.connection().prepare("insert into t values (?, ?)");
  datetime_t const moments[] = {datetime_t(1, 1, 1000),      datetime_t(29, 2, 2024, 23, 59, 59),
                                datetime_t(31, 12, 9999),    datetime_t(1, 1, 1970, 0, 0, 0),
                                datetime_t(28, 2, 1900, 12), datetime_t(5, 3, 2024, 1, 2, 3)};
  for (auto const& moment : moments) {
    insert->bindDate(0, date_t(moment));
    insert->bindDateTime(1, moment);
    insert->execute();
  }
  auto const statement = db.query("select d, m from t");
  for (auto const& moment : moments) {
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getDate(0), date_t(moment));
    EXPECT_EQ(statement->getDateTime(0), datetime_t(date_t(moment)));
    EXPECT_EQ(statement->getDateTime(1), moment);
    EXPECT_EQ(statement->getDate(1), date_t(moment));
  }
}

TEST_P(DatabaseValues, EmptyDateIsBoundAsNull) {
  db.run("create table t (d date, m datetime)");
  auto const insert = db.connection().prepare("insert into t values (?, ?)");
  insert->bindDate(0, date_t());
  insert->bindDateTime(1, datetime_t());
  insert->execute();
  EXPECT_EQ(db.value("select count(*) from t where d is null and m is null"), "1");
}

TEST_P(DatabaseValues, DateReadsAsIsoText) {
  db.run("create table t (d date, m datetime)");
  db.run("insert into t values ('2024-03-05', '2024-03-05 10:11:12')");
  EXPECT_THAT(db.rows("select d, m from t"),
              testing::ElementsAre(testing::ElementsAre("2024-03-05", "2024-03-05 10:11:12")));
}

TEST_P(DatabaseValues, DoublesComeBackBitByBit) {
  db.run("create table t (n int, d double)");
  double const values[] = {0.0,
                           1.0 / 3,
                           -2.5,
                           1e300,
                           -1e-300,
                           std::numeric_limits<double>::max(),
                           std::numeric_limits<double>::min(),
                           123456789.123456789};
  auto const insert = db.connection().prepare("insert into t values (?, ?)");
  int number = 0;
  for (double const value : values) {
    insert->bindInt(0, number++);
    insert->bindDouble(1, value);
    insert->execute();
  }
  auto const statement = db.query("select d from t order by n");
  for (double const value : values) {
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getDouble(0), value);
  }
}

TEST_P(DatabaseValues, NotANumberIsStoredAsNull) {
  db.run("create table t (d double)");
  auto const insert = db.connection().prepare("insert into t values (?)");
  insert->bindDouble(0, std::numeric_limits<double>::quiet_NaN());
  insert->execute();
  EXPECT_EQ(db.value("select d from t"), "NULL");
}

TEST_P(DatabaseValues, IntegersBeyond32BitsWrap) {
  db.run("create table t (b bigint)");
  db.run(
      "insert into t values (4294967296 + 7), (2147483648), (-2147483649), (9223372036854775807)");
  auto const statement = db.query("select b from t");
  int const expected[] = {7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), -1};
  for (int const value : expected) {
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getInt(0), value);
  }
}

TEST_P(DatabaseValues, IntegersBeyond32BitsKeepTheirTextAndSize) {
  db.run("create table t (b bigint)");
  db.run("insert into t values (4294967303)");
  auto const statement = row("select b from t");
  EXPECT_EQ(statement->getString(0), "4294967303");
  EXPECT_EQ(statement->getDouble(0), 4294967303.0);
  EXPECT_TRUE(statement->getBool(0));
}

TEST_P(DatabaseValues, UnsignedColumnReadsBeyondTheSignedRange) {
  db.run("create table t (u int unsigned)");
  db.run("insert into t values (4000000000)");
  auto const statement = row("select u from t");
  EXPECT_EQ(statement->field(0).type, FieldType::kInt);
  EXPECT_EQ(statement->getDouble(0), 4000000000.0);
  EXPECT_EQ(statement->getInt(0), static_cast<int>(4000000000U));
}

TEST_P(DatabaseValues, ExtremeIntsAreBound) {
  db.run("create table t (n int)");
  auto const insert = db.connection().prepare("insert into t values (?)");
  for (int const value :
       {std::numeric_limits<int>::min(), -1, 0, std::numeric_limits<int>::max()}) {
    insert->bindInt(0, value);
    insert->execute();
  }
  EXPECT_THAT(db.rows("select n from t order by n"),
              testing::ElementsAre(testing::ElementsAre("-2147483648"), testing::ElementsAre("-1"),
                                   testing::ElementsAre("0"), testing::ElementsAre("2147483647")));
}

TEST_P(DatabaseValues, TextsReadAsTheNumberTheyBeginWith) {
  auto const statement =
      row("select '12abc' as a, ' -7.9' as b, 'abc' as c, '' as d, '+3' as e, 'nan' as f");
  int const ints[] = {12, -7, 0, 0, 3, 0};
  double const doubles[] = {12, -7.9, 0, 0, 3, 0};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(statement->getInt(i), ints[i]) << i;
    EXPECT_EQ(statement->getDouble(i), doubles[i]) << i;
    EXPECT_EQ(statement->getBool(i), ints[i] != 0) << i;
  }
}

TEST_P(DatabaseValues, TextsReadAsDatesWhereTheyAreSome) {
  auto const statement =
      row("select '2024-03-05' as a, '2024-03-05 10:11:12' as b, 'abc' as c, '2024-02-30' as d");
  EXPECT_EQ(statement->getDate(0), date_t(5, 3, 2024));
  EXPECT_EQ(statement->getDateTime(1), datetime_t(5, 3, 2024, 10, 11, 12));
  EXPECT_FALSE(statement->getDate(2));
  EXPECT_FALSE(statement->getDate(3));
}

TEST_P(DatabaseValues, FractionsAreCutOffWhenReadAsInt) {
  db.run("create table t (m decimal(10,2), d double)");
  db.run("insert into t values (12.75, -12.75)");
  auto const statement = row("select m, d from t");
  EXPECT_EQ(statement->getInt(0), 12);
  EXPECT_EQ(statement->getDouble(0), 12.75);
  EXPECT_EQ(statement->getInt(1), -12);
  EXPECT_TRUE(statement->getBool(0));
}

TEST_P(DatabaseValues, HalfIsTrueAsABool) {
  auto const statement = row("select 0.5 as a, 0 as b, 2 as c");
  EXPECT_TRUE(statement->getBool(0));
  EXPECT_FALSE(statement->getBool(1));
  EXPECT_TRUE(statement->getBool(2));
}

TEST_P(DatabaseValues, PositionBeyondTheMarksIsRefused) {
  auto const statement = db.connection().prepare("select ? as a");
  for (int const position : {-1, 1, 1000}) {
    auto const failure = mox_test::failureOf([&] { statement->bindInt(position, 1); });
    ASSERT_TRUE(failure) << position;
    EXPECT_THAT(failure->message, testing::HasSubstr(std::to_string(position)));
  }
}

TEST_P(DatabaseValues, IndexBeyondTheFieldsIsOutOfRange) {
  auto const statement = row("select 1 as a");
  EXPECT_THROW(statement->getInt(1), std::out_of_range);
  EXPECT_THROW(statement->getString(-1), std::out_of_range);
  EXPECT_THROW(statement->isNull(7), std::out_of_range);
  EXPECT_THROW(statement->field(1), std::out_of_range);
}

}  // namespace
