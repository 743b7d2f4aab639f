// Statements of the one dialect in which definitions are written give equal answers on every
// database.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/databases.h"

namespace {

using mox_test::failureOf;
using mox_test::OnEveryDatabase;
using testing::ElementsAre;
using FieldType = moxDatabaseConnection::FieldType;

class DatabaseDialect : public OnEveryDatabase {
 protected:
  void SetUp() override {
    db.run("create table t (n int, v decimal(10,2), s varchar(50), d datetime)");
    db.run(
        "insert into t values (1, 10.50, 'Ana', '2024-03-05 10:11:12'), (2, 0, 'bruno', "
        "'2024-12-31'), "
        "(3, null, '100%', '2023-01-15'), (4, -3.25, null, null)");
  }

  std::string numbersWhere(std::string const& condition) {
    std::string result;
    for (auto const& row : db.rows("select n from t where " + condition + " order by n")) {
      result += row[0];
    }
    return result;
  }

  FieldType typeOf(std::string const& expression) {
    return db.query("select " + expression + " as x from t")->field(0).type;
  }
};

MOX_ON_EVERY_DATABASE(DatabaseDialect);

TEST_P(DatabaseDialect, TemporaryTableIsMadeAndReplaced) {
  std::string const make =
      "create or replace temporary table T (a int , b double , c varchar(200) , d datetime )";
  for (int round = 0; round < 2; ++round) {
    db.run(make);
    auto const insert = db.connection().prepare("insert into T (a,b,c,d) values (?,?,?,?)");
    for (int row = 0; row < 3; ++row) {
      insert->bindInt(0, row);
      insert->bindDouble(1, row / 2.0);
      insert->bindString(2, "text " + std::to_string(row));
      insert->bindDate(3, date_t(5 + row, 3, 2024));
      insert->execute();
    }
    for (int position = 0; position < 4; ++position) {
      insert->bindNull(position);
    }
    insert->execute();
    EXPECT_EQ(db.value("select count(*) from T"), "4");
  }
  auto const statement = db.query("select a, b, c, d from T where a = 1");
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 1);
  EXPECT_EQ(statement->getDouble(1), 0.5);
  EXPECT_EQ(statement->getString(2), "text 1");
  EXPECT_EQ(statement->getDateTime(3), datetime_t(6, 3, 2024));
  EXPECT_EQ(
      db.value("select count(*) from T where a is null and b is null and c is null and d is null"),
      "1");
}

TEST_P(DatabaseDialect, TemporaryTableWithAQuotedName) {
  db.run("create or replace temporary table `Total Geral` (`2024 Janeiro` double )");
  db.run("insert into `Total Geral` (`2024 Janeiro`) values (1.5)");
  EXPECT_EQ(db.value("select `2024 Janeiro` from `Total Geral`"), "1.5");
}

TEST_P(DatabaseDialect, TemporaryTableWithoutColumnsIsRefused) {
  EXPECT_TRUE(failureOf([&] { db.run("create or replace temporary table T ()"); }));
}

TEST_P(DatabaseDialect, DateOfAColumnBetweenBoundDates) {
  auto const statement =
      db.connection().prepare("select count(*) from t where date(t.d) between ? and ? ");
  statement->bindDate(0, date_t(1, 3, 2024));
  statement->bindDate(1, date_t(31, 3, 2024));
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 1);
}

TEST_P(DatabaseDialect, DateOfAColumnEqualToABoundDate) {
  auto const statement = db.connection().prepare("select n from t where date(d) = ? ");
  statement->bindDate(0, date_t(5, 3, 2024));
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 1);
  EXPECT_FALSE(statement->fetch());
}

TEST_P(DatabaseDialect, LikeIgnoresCaseAndReadsBackslashes) {
  EXPECT_EQ(numbersWhere("s like 'ana'"), "1");
  EXPECT_EQ(numbersWhere("s like 'B%'"), "2");
  EXPECT_EQ(numbersWhere("s like '%\\%'"), "3");
  EXPECT_EQ(numbersWhere("s like '___'"), "1");
}

TEST_P(DatabaseDialect, ConditionsOfFilters) {
  EXPECT_EQ(numbersWhere("n in (1, 3)"), "13");
  EXPECT_EQ(numbersWhere("n not in (1, 3)"), "24");
  EXPECT_EQ(numbersWhere("1=0"), "");
  EXPECT_EQ(numbersWhere("0=1"), "");
  EXPECT_EQ(numbersWhere("s is null"), "4");
  EXPECT_EQ(numbersWhere("exists (select 1 from t u where u.n = t.n + 1)"), "123");
}

TEST_P(DatabaseDialect, SelectFromASelect) {
  EXPECT_EQ(db.value("select * from ( select count(*) as c from t ) command "), "4");
}

TEST_P(DatabaseDialect, BetweenUnpaddedDates) {
  EXPECT_EQ(numbersWhere("d between '2024/3/5' and '2024/12/31'"), "12");
}

TEST_P(DatabaseDialect, PartsOfADate) {
  EXPECT_THAT(db.rows("select year(d), month(d), day(d), quarter(d) from t where n = 1"),
              ElementsAre(ElementsAre("2024", "3", "5", "1")));
  EXPECT_THAT(db.rows("select year(d), month(d), day(d), quarter(d) from t where n = 4"),
              ElementsAre(ElementsAre("NULL", "NULL", "NULL", "NULL")));
}

TEST_P(DatabaseDialect, IfChoosesByItsFirstArgument) {
  EXPECT_EQ(db.value("select if(n > 2, 'big', 'small') from t where n = 3"), "big");
  EXPECT_EQ(db.value("select if(null, 1, 2)"), "2");
}

TEST_P(DatabaseDialect, ConcatIsNullWithANull) {
  EXPECT_EQ(db.value("select concat('a', 1, '-', n) from t where n = 2"), "a1-2");
  EXPECT_EQ(db.value("select concat('a', s) from t where n = 4"), "NULL");
}

TEST_P(DatabaseDialect, DateOfUnpaddedParts) {
  auto const statement = db.query(
      "select date(concat(year(d),'-',quarter(d),'-01')), concat(year(d),'-',01,'-01') "
      "from t where n = 1");
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getDate(0), date_t(1, 1, 2024));
  EXPECT_EQ(statement->getDate(1), date_t(1, 1, 2024));
}

TEST_P(DatabaseDialect, DateOfADayThatTheCalendarHasNotIsNull) {
  EXPECT_EQ(db.value("select date('2024-02-30')"), "NULL");
  EXPECT_EQ(db.value("select date('no date')"), "NULL");
}

TEST_P(DatabaseDialect, CurrentDateIsADay) {
  auto const statement = db.query("select curdate()");
  EXPECT_EQ(statement->field(0).type, FieldType::kDate);
  ASSERT_TRUE(statement->fetch());
  EXPECT_TRUE(statement->getDate(0));
}

TEST_P(DatabaseDialect, AliasMayBeCalledAt) {
  EXPECT_EQ(db.value("select at.n from t at where at.n = 1"), "1");
}

TEST_P(DatabaseDialect, OrderAndGroup) {
  EXPECT_THAT(db.rows("select year(t.d), count(*) from t where d is not null group by year(t.d) "
                      "order by year(t.d) asc"),
              ElementsAre(ElementsAre("2023", "1"), ElementsAre("2024", "2")));
  EXPECT_EQ(db.value("select n from t order by t.n desc , t.s asc "), "4");
}

TEST_P(DatabaseDialect, NullsComeFirstInAscendingOrder) {
  EXPECT_EQ(db.value("select n from t order by s asc"), "4");
  EXPECT_EQ(db.value("select n from t where n > 2 order by s desc"), "3");
}

TEST_P(DatabaseDialect, TypesOfExpressions) {
  EXPECT_EQ(typeOf("sum(n)"), FieldType::kDouble);
  EXPECT_EQ(typeOf("avg(n)"), FieldType::kDouble);
  EXPECT_EQ(typeOf("sum(v)"), FieldType::kDouble);
  EXPECT_EQ(typeOf("count(*)"), FieldType::kInt);
  EXPECT_EQ(typeOf("year(d)"), FieldType::kInt);
  EXPECT_EQ(typeOf("month(d)"), FieldType::kInt);
  EXPECT_EQ(typeOf("day(d)"), FieldType::kInt);
  EXPECT_EQ(typeOf("quarter(d)"), FieldType::kInt);
  EXPECT_EQ(typeOf("length(s)"), FieldType::kInt);
  EXPECT_EQ(typeOf("date(d)"), FieldType::kDate);
  EXPECT_EQ(typeOf("min(d)"), FieldType::kDate);
  EXPECT_EQ(typeOf("max(s)"), FieldType::kText);
  EXPECT_EQ(typeOf("max(n)"), FieldType::kInt);
  EXPECT_EQ(typeOf("concat(n, s)"), FieldType::kText);
  EXPECT_EQ(typeOf("'text'"), FieldType::kText);
}

TEST_P(DatabaseDialect, TypesOfExpressionsWithoutRows) {
  db.run("delete from t");
  EXPECT_EQ(typeOf("sum(n)"), FieldType::kDouble);
  EXPECT_EQ(typeOf("count(*)"), FieldType::kInt);
  EXPECT_EQ(db.query("select date(d) as x from t")->field(0).type, FieldType::kDate);
  EXPECT_EQ(db.query("select v from t")->field(0).type, FieldType::kDouble);
}

}  // namespace
