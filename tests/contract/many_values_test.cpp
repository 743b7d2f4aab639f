// Statements with more values than a database takes marks, on every database.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "mox/core/many_values.h"
#include "support/databases.h"

namespace {

using mox_test::failureOf;
using mox_test::OnEveryDatabase;
using testing::HasSubstr;
using Statement = moxDatabaseConnection::PreparedStatement;

constexpr int kManyIds = 100'000;
constexpr int kManyTexts = 70'000;  // more than either database takes marks

std::string marks(std::size_t count) {
  std::string text = "?";
  text.reserve(3 * count);
  for (std::size_t i = 1; i < count; ++i) {
    text += ", ?";
  }
  return text;
}

std::vector<int> readInts(Statement& statement) {
  statement.execute();
  std::vector<int> values;
  while (statement.fetch()) {
    values.push_back(statement.getInt(0));
  }
  return values;
}

int readInt(Statement& statement) {
  return readInts(statement).at(0);
}

class ManyValues : public OnEveryDatabase {
 protected:
  void SetUp() override {
    db.run("create table t (id int primary key, n int, d double, s varchar(40), day date)");
  }

  /// Rows 1 to `count`: n is the id times ten, and so on; some without values.
  void fill(int count) {
    db.run("begin");
    auto const insert = db.connection().prepare("insert into t values (?, ?, ?, ?, ?)");
    for (int id = 1; id <= count; ++id) {
      insert->bindInt(0, id);
      insert->bindInt(1, 10 * id);
      insert->bindDouble(2, id / 8.0);
      insert->bindString(3, textOf(id));
      insert->bindDate(4, date_t(1 + id % 28, 1 + id % 12, 1900 + id % 120));
      if (id % 10 == 0) {
        insert->bindNull(1);
        insert->bindNull(3);
      }
      insert->execute();
    }
    db.run("commit");
  }

  static std::string textOf(int id) { return "maçã '" + std::to_string(id) + "\\"; }

  std::shared_ptr<Statement> prepared(std::string const& sql) {
    return db.connection().prepare(sql);
  }

  /// A select by a list of values, each bound by its position.
  std::shared_ptr<Statement> amongst(std::string const& column, int count,
                                     std::function<void(Statement&, int)> const& bind) {
    auto statement = prepared("select id from t where " + column + " in (" +
                              marks(static_cast<std::size_t>(count)) + ") order by id");
    for (int i = 0; i < count; ++i) {
      bind(*statement, i);
    }
    return statement;
  }
};

MOX_ON_EVERY_DATABASE(ManyValues);

TEST_P(ManyValues, HundredThousandIdsFindTheirRows) {
  fill(5000);
  auto const statement =
      amongst("id", kManyIds, [](Statement& to, int i) { to.bindInt(i, 2 * i - 100); });
  auto const found = readInts(*statement);
  ASSERT_EQ(found.size(), 2500U);
  EXPECT_EQ(found.front(), 2);
  EXPECT_EQ(found.back(), 5000);
}

TEST_P(ManyValues, ExcludedIdsLeaveTheOthers) {
  fill(2000);
  auto const statement = prepared("select id from t where n not in (" + marks(kManyIds) + ")");
  for (int i = 0; i < kManyIds; ++i) {
    statement->bindInt(i, 20 * i);
  }
  // A row without n is neither among them nor outside.
  EXPECT_EQ(readInts(*statement).size(), 1000U);
  statement->bindNull(7);
  EXPECT_TRUE(readInts(*statement).empty());
}

TEST_P(ManyValues, TextsFindTheirRows) {
  fill(3000);
  for (int const count : {40'000, kManyTexts}) {
    auto const statement =
        amongst("s", count, [](Statement& to, int i) { to.bindString(i, textOf(3 * i)); });
    auto const found = readInts(*statement);
    EXPECT_EQ(found.size(), 900U);
    EXPECT_EQ(found.front(), 3);
  }
}

TEST_P(ManyValues, TextsFollowTheRulesOfTheColumn) {
  db.run(db.isMariadb() ? "create table c (s varchar(20) collate utf8mb4_unicode_ci, "
                          "l varchar(20) character set latin1)"
                        : "create table c (s varchar(20) collate nocase, l varchar(20))");
  db.run("insert into c values ('Turma', 'Érica'), ('X', 'x')");
  for (int const count : {2, kManyTexts}) {
    for (char const* const column : {"s", "l"}) {
      auto const statement = prepared("select count(*) from c where " + std::string(column) +
                                      " in (" + marks(static_cast<std::size_t>(count)) + ")");
      for (int i = 0; i < count; ++i) {
        statement->bindString(i, i == 0 ? "turma" : i == 1 ? "Érica" : "nobody");
      }
      EXPECT_EQ(readInt(*statement), 1) << column << ' ' << count;
    }
  }
}

TEST_P(ManyValues, TextsAreOnlyValuesWhateverTheyHold) {
  std::vector<std::string> const hostile = {"",  "'",   "\\",    "\\'", "') or 1=1 -- ", "?",
                                            "%", "a'b", "\"x\"", "é😀",  "{{p}}",         "`"};
  db.run("create table h (id int, s varchar(40))");
  auto const insert = prepared("insert into h values (?, ?)");
  for (std::size_t i = 0; i < hostile.size(); ++i) {
    insert->bindInt(0, static_cast<int>(i));
    insert->bindString(1, hostile[i]);
    insert->execute();
  }
  auto const statement =
      prepared("select id from h where s in (" + marks(kManyTexts) + ") order by id");
  for (std::size_t odd = 0; odd < 2; ++odd) {
    std::vector<int> expected;
    for (int i = 0; i < kManyTexts; ++i) {
      statement->bindString(i, "none " + std::to_string(i));
    }
    for (std::size_t i = odd; i < hostile.size(); i += 2) {
      statement->bindString(static_cast<int>(i), hostile[i]);
      expected.push_back(static_cast<int>(i));
    }
    EXPECT_EQ(readInts(*statement), expected);
  }
}

TEST_P(ManyValues, BytesThatAreNoUtf8StayBound) {
  auto const statement =
      prepared("select count(*) from (select 'a' as s) x where s in (" + marks(kManyTexts) + ")");
  for (int i = 0; i < kManyTexts; ++i) {
    statement->bindString(i, i == 3 ? "\xFF\xC0" : "a");
  }
  EXPECT_EQ(readInt(*statement), 1);
}

TEST_P(ManyValues, DoublesAreExact) {
  std::vector<double> const special = {0.1,
                                       -0.0,
                                       1.0 / 3,
                                       1e15 + 0.5,
                                       -123456789.987654321,
                                       9007199254740993.0,
                                       1.7976931348623157e308,
                                       2.2250738585072014e-308,
                                       1e-300,
                                       3.0};
  db.run("create table e (id int, d double)");
  auto const insert = prepared("insert into e values (?, ?)");
  for (std::size_t i = 0; i < special.size(); ++i) {
    insert->bindInt(0, static_cast<int>(i));
    insert->bindDouble(1, special[i]);
    insert->execute();
  }
  auto const statement = prepared("select count(*) from e where d in (" + marks(kManyTexts) + ")");
  auto const bindAll = [&](bool next) {
    for (int i = 0; i < kManyTexts; ++i) {
      double const value = special[static_cast<std::size_t>(i) % special.size()];
      statement->bindDouble(i, next ? std::nextafter(value, -HUGE_VAL) : value);
    }
  };
  bindAll(false);
  EXPECT_EQ(readInt(*statement), static_cast<int>(special.size()));
  bindAll(true);
  EXPECT_EQ(readInt(*statement), 0);
}

TEST_P(ManyValues, RandomDoublesFindThemselves) {
  std::mt19937_64 random(20240305);
  std::vector<double> values;
  while (values.size() < 70'000) {
    auto const bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isnormal(value)) {
      values.push_back(value);
    }
  }
  db.run("create table r (d double)");
  db.run("begin");
  auto const insert = prepared("insert into r values (?)");
  for (std::size_t i = 0; i < 5000; ++i) {
    insert->bindDouble(0, values[i]);
    insert->execute();
  }
  db.run("commit");
  auto const statement =
      prepared("select count(*) from r where d in (" + marks(values.size()) + ")");
  for (std::size_t i = 0; i < values.size(); ++i) {
    statement->bindDouble(static_cast<int>(i), values[i]);
  }
  EXPECT_EQ(readInt(*statement), 5000);
}

TEST_P(ManyValues, LimitsOfIntegersNullsAndDuplicates) {
  db.run(
      "insert into t (id, n) values (1, -2147483648), (2, 2147483647), (3, 0), (4, -1), (5, null)");
  auto const statement = amongst("n", kManyIds, [](Statement& to, int i) {
    constexpr int kValues[] = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                               -1};
    i % 4 == 3 ? to.bindNull(i) : to.bindInt(i, kValues[i % 4]);
  });
  EXPECT_EQ(readInts(*statement), (std::vector<int>{1, 2, 4}));
}

TEST_P(ManyValues, ValuesOfAllKindsShareAStatement) {
  fill(300);
  auto const statement =
      prepared("select id, ?, '?' as q from t where day = ? and s <> '?' /* ? */ and id in (" +
               marks(kManyIds) + ") and d < ? -- ?\n and s like ? order by id");
  statement->bindString(0, "parameter");
  statement->bindDate(1, date_t(18, 6, 2001));
  for (int i = 0; i < kManyIds; ++i) {
    statement->bindInt(2 + i, i);
  }
  statement->bindDouble(2 + kManyIds, 100.5);
  statement->bindString(3 + kManyIds, "ma%");
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 101);
  EXPECT_EQ(statement->getString(1), "parameter");
  EXPECT_EQ(statement->getString(2), "?");
}

TEST_P(ManyValues, ExecutedAgainWithTheSameAndWithOtherValues) {
  fill(100);
  auto const statement = amongst("id", kManyIds, [](Statement& to, int i) { to.bindInt(i, i); });
  EXPECT_EQ(readInts(*statement).size(), 100U);
  EXPECT_EQ(readInts(*statement).size(), 100U);
  for (int i = 0; i < kManyIds; ++i) {
    statement->bindInt(i, 50 + i);
  }
  EXPECT_EQ(readInts(*statement).size(), 51U);
}

TEST_P(ManyValues, ValuesNeverBoundAreNulls) {
  fill(10);
  auto const statement = prepared("select id from t where id in (" + marks(kManyIds) + ")");
  EXPECT_TRUE(readInts(*statement).empty());
  statement->bindInt(kManyIds - 1, 7);
  EXPECT_EQ(readInts(*statement), std::vector<int>{7});
}

TEST_P(ManyValues, SeveralListsAndRowsOfValues) {
  auto const insert = [&] {
    std::string sql = "insert into t (id, n) values ";
    for (int i = 0; i < 40'000; ++i) {
      sql += i == 0 ? "(?, ?)" : ", (?,?)";
    }
    return prepared(sql);
  }();
  for (int i = 0; i < 40'000; ++i) {
    insert->bindInt(2 * i, i);
    insert->bindInt(2 * i + 1, -i);
  }
  insert->execute();
  EXPECT_EQ(insert->fieldCount(), 0);
  EXPECT_FALSE(insert->fetch());
  auto const statement = prepared("select count(*) from t where id in (" + marks(40'000) +
                                  ") and n not in (" + marks(30'000) + ")");
  for (int i = 0; i < 40'000; ++i) {
    statement->bindInt(i, i + 100);
  }
  for (int i = 0; i < 30'000; ++i) {
    statement->bindInt(40'000 + i, -i);
  }
  EXPECT_EQ(readInt(*statement), 10'000);
}

TEST_P(ManyValues, StatementsAroundRunOncePerExecution) {
  auto const statement =
      prepared("create temporary table ids as select 7 as id; select id from ids where id in (" +
               marks(kManyIds) + "); drop table ids");
  for (int i = 0; i < kManyIds; ++i) {
    statement->bindInt(i, i);
  }
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(readInts(*statement), std::vector<int>{7});
    statement->bindInt(0, round);
  }
  EXPECT_TRUE(failureOf([&] { db.run("select * from ids"); }));
}

TEST_P(ManyValues, PositionsAreChecked) {
  auto const statement = prepared("select id from t where id in (" + marks(kManyIds) + ")");
  auto const failure = failureOf([&] { statement->bindInt(kManyIds, 1); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(
      failure->message,
      "A value was given for position 100000, but the statement has 100000 marks, counted from 0");
  EXPECT_TRUE(failureOf([&] { statement->bindInt(-1, 1); }));
  EXPECT_EQ(statement->fieldCount(), 0);
  EXPECT_THROW(statement->fetch(), std::logic_error);
}

TEST_P(ManyValues, ABadTextIsRefusedAtItsExecution) {
  auto const statement = prepared("select id from nowhere where id in (" + marks(kManyIds) + ")");
  EXPECT_TRUE(failureOf([&] { statement->execute(); }));
  EXPECT_TRUE(failureOf([&] { statement->execute(); }));
  EXPECT_EQ(db.value("select 1"), "1");
}

TEST_P(ManyValues, ValuesThatStandInNoListAreRefusedClearly) {
  std::string sql = "select 1 where ? = 1";
  for (int i = 0; i < 65'600; ++i) {
    sql += " or ? = 1";
  }
  auto const statement = prepared(sql);
  auto const failure = failureOf([&] { statement->execute(); });
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->message,
              HasSubstr("The statement cannot be sent: 65601 values are more than the "));
  EXPECT_THAT(failure->message, HasSubstr("65601 would need a mark of their own each"));
}

TEST_P(ManyValues, ThreeHundredThousandIdsAreNoLimit) {
  fill(20);
  auto const statement =
      amongst("id", 300'000, [](Statement& to, int i) { to.bindInt(i, i + 11); });
  EXPECT_EQ(readInts(*statement).size(), 10U);
}

TEST_P(ManyValues, WhatTheServerDoesNotTakeInOneGoIsRefusedBeforeItIsSent) {
  if (!db.isMariadb()) {
    GTEST_SKIP() << "SQLite has no packets";
  }
  auto const longest = std::stoul(db.value("select @@max_allowed_packet"));
  auto const line = db.value("select connection_id()");
  auto const statement = prepared("select length(?)");
  statement->bindString(0, std::string(longest, 'x'));
  auto const byValue = failureOf([&] { statement->execute(); });
  auto const byText =
      failureOf([&] { prepared("select 1 /*" + std::string(longest, 'x') + "*/, 2"); });
  for (auto const& failure : {byValue, byText}) {
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, "1153");
    EXPECT_THAT(failure->message,
                HasSubstr("more than the server takes in one go (max_allowed_packet = " +
                          std::to_string(longest) + ")"));
  }
  EXPECT_EQ(db.value("select connection_id()"), line);
}

TEST_P(ManyValues, RowsAreReadWhileOthersAreAsked) {
  fill(50);
  auto const statement = amongst("id", kManyIds, [](Statement& to, int i) { to.bindInt(i, i); });
  statement->execute();
  int rows = 0;
  while (statement->fetch()) {
    ++rows;
    EXPECT_EQ(db.value("select count(*) from t"), "50");
  }
  EXPECT_EQ(rows, 50);
}

TEST_P(ManyValues, HeadOfficeStaysOutOfReach) {
  fill(20);
  auto const statement = db.connection().prepareForUnit(
      "select id from t where id in (" + marks(kManyIds) + ")", "id desc", "t", "id", "and");
  statement->bindInt(0, 5);
  EXPECT_TRUE(readInts(*statement).empty());  // the head office is 0
  EXPECT_TRUE(failureOf([&] { statement->bindInt(kManyIds, 5); }));
}

TEST_P(ManyValues, TellsHowTheyAreSent) {
  std::string const sql = "select id from t where n = ? and id in (" + marks(kManyIds) + ")";
  std::vector<moxValueKind> kinds(kManyIds + 1, moxValueKind::kInt);
  kinds[0] = moxValueKind::kText;
  std::string const onMariadb =
      "100001 values are more than the 65535 marks that the database takes: 100000 numbers are "
      "written as numerals, 1 is bound to a mark of its own";
  std::string const onSqlite =
      "100001 values are more than the 32766 marks that the database takes: 100000 are bound as 1 "
      "list of one mark, 1 is bound to a mark of its own";
  auto const& connection = dynamic_cast<moxManyValues&>(db.connection());
  EXPECT_EQ(connection.howSent(sql, kinds), db.isMariadb() ? onMariadb : onSqlite);
  EXPECT_EQ(connection.howSent("select ? from t where id in (?, ?)", {}), "");
}

/// From a small range, so that many hit.
using Value = std::variant<std::monostate, int, double, std::string>;

TEST_P(ManyValues, RandomListsEqualTheSameListsWithMarks) {
  fill(200);
  db.run(
      "insert into t (id, s, d, n) values (1001, '5', 5, 5), (1002, '5.0', 0.5, -5), (1003, 'x', "
      "-5, 0)");
  for (unsigned const seed : {1U, 2U, 3U, 4U, 5U, 6U}) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<Value> few;
    auto const kind = seed % 3;
    for (int i = 0; i < 12; ++i) {
      int const number = static_cast<int>(random() % 60) - 10;
      if (kind == 0) {
        few.emplace_back(number);
      } else if (kind == 1) {
        few.emplace_back(number / 4.0);
      } else {
        few.emplace_back(random() % 2 == 0 ? textOf(number) : std::to_string(number));
      }
    }
    if (seed > 3) {
      few.emplace_back(std::monostate{});
    }
    for (std::string const column : {"id", "n", "d", "s"}) {
      if (db.isMariadb() && kind == 2 && column != "s") {
        continue;  // the server takes texts for numbers with a warning each
      }
      auto const ask = [&](std::string const& condition, std::size_t count) {
        auto const statement =
            prepared("select id from t where " + condition + " (" + marks(count) + ") order by id");
        for (std::size_t i = 0; i < count; ++i) {
          int const at = static_cast<int>(i);
          auto const& value = few[i % few.size()];
          if (auto const* const number = std::get_if<int>(&value)) {
            statement->bindInt(at, *number);
          } else if (auto const* const real = std::get_if<double>(&value)) {
            statement->bindDouble(at, *real);
          } else if (auto const* const text = std::get_if<std::string>(&value)) {
            statement->bindString(at, *text);
          }
        }
        return readInts(*statement);
      };
      EXPECT_EQ(ask(column + " in", 66'000), ask(column + " in", few.size())) << column;
      EXPECT_EQ(ask(column + " not in", 66'000), ask(column + " not in", few.size())) << column;
      EXPECT_EQ(ask("1 = 1 and +" + column + " in", 66'000),
                ask("1 = 1 and +" + column + " in", few.size()))
          << column;
    }
  }
}

TEST_P(ManyValues, EqualRowsAsAJoinWithATableOfThem) {
  fill(4000);
  db.run("create temporary table wanted (v int)");
  std::mt19937 random(7);
  auto const statement =
      prepared("select id from t where n in (" + marks(kManyIds) + ") order by id");
  auto const insert = prepared("insert into wanted values (?)");
  db.run("begin");
  for (int i = 0; i < kManyIds; ++i) {
    int const value = static_cast<int>(random() % 80'000) - 1000;
    statement->bindInt(i, value);
    if (i % 10 == 0 || value % 10 == 0) {
      insert->bindInt(0, value);
      insert->execute();
    }
  }
  db.run("commit");
  auto const joined =
      prepared("select distinct id from t inner join wanted on wanted.v = t.n order by id");
  EXPECT_EQ(readInts(*statement), readInts(*joined));
}

}  // namespace
