#include "core/database/sqlite_statement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "core/storage/blob.h"
#include "unit/core/database/memory_database.h"

namespace mox::core {
namespace {

constexpr FieldType kInt = FieldType::kInt;
constexpr FieldType kDouble = FieldType::kDouble;
constexpr FieldType kText = FieldType::kText;
constexpr FieldType kBlob = FieldType::kBlob;
constexpr FieldType kDate = FieldType::kDate;

struct SqliteStatementTest : ::testing::Test {
  std::shared_ptr<moxDatabaseConnection::PreparedStatement> firstRow(std::string const& sql) {
    auto statement = data.query(sql);
    EXPECT_TRUE(statement->fetch());
    return statement;
  }

  MemoryDatabase data;
};

TEST_F(SqliteStatementTest, BindsEveryKindOfValue) {
  auto const statement = data.db.prepare("select ?, ?, ?, ?, ?, ?, ?, ?");
  statement->bindInt(0, -5);
  statement->bindDouble(1, 2.5);
  statement->bindString(2, "ação");
  statement->bindDate(3, date_t(5, 3, 2024));
  statement->bindNull(4);
  statement->bindDateTime(5, datetime_t(5, 3, 2024, 14, 7, 9));
  statement->bindBlob(6, Blob(std::string("\0\x01", 2)));
  statement->execute();
  EXPECT_EQ(statement->rowCount(), -1);
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), -5);
  EXPECT_EQ(statement->getDouble(1), 2.5);
  EXPECT_EQ(statement->getString(2), "ação");
  EXPECT_EQ(statement->getString(3), "2024-03-05");
  EXPECT_EQ(statement->getDate(3), date_t(5, 3, 2024));
  EXPECT_TRUE(statement->isNull(4));
  EXPECT_EQ(statement->getString(5), "2024-03-05 14:07:09");
  EXPECT_EQ(statement->getDateTime(5), datetime_t(5, 3, 2024, 14, 7, 9));
  EXPECT_EQ(std::string(statement->getBlob(6)->data(), statement->getBlob(6)->size()),
            std::string("\0\x01", 2));
  EXPECT_TRUE(statement->isNull(7));
  EXPECT_FALSE(statement->fetch());
}

TEST_F(SqliteStatementTest, NamedMarksAreRefused) {
  // SQLite would give the first value to @a, and leave the plain mark a null.
  for (auto const& [sql, name] : {std::pair("select @a, ?", "@a"),
                                  {"select ?, :b", ":b"},
                                  {"select ?2", "?2"},
                                  {"select $c", "$c"}}) {
    auto const failure = mox_test::failureOf([&] { data.db.prepare(sql); });
    ASSERT_TRUE(failure) << sql;
    EXPECT_EQ(failure->message, "The statement has \"" + std::string(name) +
                                    "\", a variable or named mark, which SQLite databases do not "
                                    "have here");
  }
}

TEST_F(SqliteStatementTest, EmptyValuesAreNoNulls) {
  auto const statement = data.db.prepare("select ?, ?, ?, ?");
  statement->bindString(0, {});
  statement->bindBlob(1, Blob());
  statement->bindDate(2, {});
  statement->bindDateTime(3, {});
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_FALSE(statement->isNull(0));
  EXPECT_EQ(statement->getString(0), "");
  EXPECT_FALSE(statement->isNull(1));
  EXPECT_EQ(statement->getBlob(1)->size(), 0u);
  EXPECT_TRUE(statement->isNull(2));
  EXPECT_TRUE(statement->isNull(3));
}

TEST_F(SqliteStatementTest, NullsReadAsNothing) {
  auto const statement = firstRow("select null");
  EXPECT_TRUE(statement->isNull(0));
  EXPECT_EQ(statement->getInt(0), 0);
  EXPECT_EQ(statement->getDouble(0), 0);
  EXPECT_EQ(statement->getString(0), "");
  EXPECT_FALSE(statement->getBool(0));
  EXPECT_EQ(statement->getDate(0), date_t());
  EXPECT_EQ(statement->getDateTime(0), datetime_t());
  ASSERT_NE(statement->getBlob(0), nullptr);
  EXPECT_EQ(statement->getBlob(0)->size(), 0u);
}

TEST_F(SqliteStatementTest, NumbersAndTextsAreConverted) {
  auto const statement = firstRow("select '12', 'abc', 2.9, 7, 0.5, '2024-3-5', 20240305");
  EXPECT_EQ(statement->getInt(0), 12);
  EXPECT_EQ(statement->getDouble(0), 12);
  EXPECT_EQ(statement->getInt(1), 0);
  EXPECT_EQ(statement->getInt(2), 2);
  EXPECT_EQ(statement->getString(3), "7");
  EXPECT_TRUE(statement->getBool(4));
  EXPECT_FALSE(statement->getBool(1));
  EXPECT_EQ(statement->getDate(5), date_t(5, 3, 2024));
  EXPECT_EQ(statement->getDate(1), date_t());
  EXPECT_EQ(statement->getDate(6), date_t());
}

TEST_F(SqliteStatementTest, IntegersBeyond32BitsWrap) {
  auto const statement =
      firstRow("select 4294967297, 2147483648, -2147483649, 9223372036854775807");
  EXPECT_EQ(statement->getInt(0), 1);
  EXPECT_EQ(statement->getInt(1), std::numeric_limits<int>::min());
  EXPECT_EQ(statement->getInt(2), std::numeric_limits<int>::max());
  EXPECT_EQ(statement->getInt(3), -1);
}

TEST_F(SqliteStatementTest, TextsPassWithAnyBytesAndLength) {
  auto const statement = data.db.prepare("select ?");
  for (std::string const& text :
       {std::string("a\0b", 3), std::string("\xFF\xFE\xC3"), std::string(12, 'x'),
        std::string(13, 'y'), std::string(70000, 'z'), std::string("\U0001F600 e acentuação")}) {
    statement->bindString(0, text);
    statement->execute();
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getString(0), text);
  }
}

TEST_F(SqliteStatementTest, ValuesStayBoundForTheNextExecution) {
  auto const statement = data.db.prepare("select ?, ?");
  statement->bindInt(0, 1);
  statement->bindInt(1, 2);
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"1", "2"}}));
  statement->bindInt(1, 3);
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"1", "3"}}));
}

TEST_F(SqliteStatementTest, BindingWhileRowsAreReadEndsThem) {
  auto const statement = data.db.prepare("select ? union all select 9");
  statement->bindInt(0, 1);
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  statement->bindInt(0, 2);
  EXPECT_THROW(statement->fetch(), std::logic_error);
  statement->execute();
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 2);
}

TEST_F(SqliteStatementTest, ExecutingAnewStartsAtTheFirstRow) {
  auto const statement = data.query("values (1), (2)");
  ASSERT_TRUE(statement->fetch());
  statement->execute();
  EXPECT_EQ(readAll(*statement), (TextRows{{"1"}, {"2"}}));
}

TEST_F(SqliteStatementTest, PositionsBeyondTheMarksAreRefused) {
  auto const statement = data.db.prepare("select ?");
  EXPECT_EQ(failureOf([&] { statement->bindInt(1, 1); })->message,
            "A value was given for position 1, but the statement has 1 marks, counted from 0");
  EXPECT_TRUE(failureOf([&] { statement->bindNull(-1); }));
}

TEST_F(SqliteStatementTest, TooManyMarksInNoListAreRefusedAtTheExecution) {
  std::string sql = "select 1 where 1 in (1, ?";
  for (int i = 1; i < 32767; ++i) {
    sql += ",?";
  }
  auto const statement = data.db.prepare(sql + ")");
  EXPECT_EQ(failureOf([&] { statement->execute(); })->message,
            "The statement cannot be sent: 32767 values are more than the 32766 marks that the "
            "database takes: 32767 would need a mark of their own each");
}

TEST_F(SqliteStatementTest, OnlyBoundListsHaveRows) {
  EXPECT_TRUE(data.rows("select value from mox_bound_list(1)").empty());
  EXPECT_TRUE(data.rows("select value from mox_bound_list('x')").empty());
  EXPECT_TRUE(data.rows("select value from mox_bound_list").empty());
  EXPECT_TRUE(failureOf([&] { data.run("create table mox_bound_list.x (a int)"); }));
}

TEST_F(SqliteStatementTest, ReplacesATemporaryTableAsOftenAsItIsTold) {
  std::string const create =
      "create or replace temporary table T (a int , b double , c varchar(200) , d datetime )";
  for (int round = 0; round < 2; ++round) {
    data.run(create);
    auto const insert = data.db.prepare("insert into T (a,b,c,d) values (?,?,?,?)");
    for (int i = 0; i < 3; ++i) {
      insert->bindInt(0, i);
      insert->bindDouble(1, i / 2.0);
      insert->bindString(2, "x");
      insert->bindDate(3, date_t(1, 2, 2023));
      insert->execute();
    }
    EXPECT_EQ(data.rows("select a, b, c, d from T where a = 1"),
              (TextRows{{"1", "0.5", "x", "2023-02-01"}}));
    EXPECT_EQ(data.value("select count(*) from T"), "3");
  }
}

TEST_F(SqliteStatementTest, SeveralStatementsAreReadAtOnce) {
  data.run("create table t (a int); insert into t values (1), (2), (3)");
  data.run("create table u (a int)");
  auto const reading = data.query("select a from t order by a");
  auto const writing = data.db.prepare("insert into u values (?)");
  while (reading->fetch()) {
    writing->bindInt(0, reading->getInt(0));
    writing->execute();
  }
  EXPECT_EQ(data.value("select sum(a) from u"), "6");
}

/// Arrays for one block of a field, whose places say that nobody wrote them.
struct Room {
  Room(FieldType type, std::size_t capacity)
      : ints(capacity, -77),
        doubles(capacity, -77),
        dates(capacity),
        texts(capacity, "untouched"),
        nulls(capacity, 7) {
    block.readAs = type;
    block.ints = ints.data();
    block.doubles = doubles.data();
    block.dates = dates.data();
    block.texts = texts.data();
    block.nulls = nulls.data();
  }
  Room(Room const&) = delete;

  std::vector<std::int32_t> ints;
  std::vector<double> doubles;
  std::vector<datetime_t> dates;
  std::vector<std::string_view> texts;
  std::vector<std::uint8_t> nulls;
  moxFieldBlock block;
};

moxRowBlockReader& blockReader(moxDatabaseConnection::PreparedStatement& statement) {
  return dynamic_cast<moxRowBlockReader&>(statement);
}

TEST_F(SqliteStatementTest, ABlockHoldsTheRowsByType) {
  auto const statement =
      data.query("values (1, 1.5, 'a', '2024-03-05', x'00'), (null, null, null, null, null)");
  Room i(kInt, 4), d(kDouble, 4), t(kText, 4), m(kDate, 4), b(kBlob, 4);
  std::vector<moxFieldBlock> fields{i.block, d.block, t.block, m.block, b.block};
  ASSERT_EQ(blockReader(*statement).fetchBlock(fields, 4), 2);
  EXPECT_EQ(i.ints[0], 1);
  EXPECT_EQ(d.doubles[0], 1.5);
  EXPECT_EQ(t.texts[0], "a");
  EXPECT_EQ(m.dates[0], datetime_t(5, 3, 2024));
  EXPECT_EQ(b.texts[0], std::string_view("\0", 1));
  EXPECT_EQ(i.nulls, (std::vector<std::uint8_t>{0, 1, 7, 7}));
  EXPECT_EQ(i.ints[1], -77);
  EXPECT_EQ(t.texts[1], "untouched");
  EXPECT_THROW(blockReader(*statement).fetchBlock(fields, 4), std::logic_error);
}

TEST_F(SqliteStatementTest, FieldsThatAreNotWantedArePassedOver) {
  auto const statement = data.query("values (1, 2)");
  Room second(kInt, 2);
  std::vector<moxFieldBlock> fields(2);
  fields[0].wanted = false;
  fields[1] = second.block;
  EXPECT_EQ(blockReader(*statement).fetchBlock(fields, 2), 1);
  EXPECT_EQ(second.ints[0], 2);
}

TEST_F(SqliteStatementTest, AResultThatEndsWithABlockGivesAnEmptyOneNext) {
  auto const statement = data.query("values (1), (2)");
  Room room(kInt, 2);
  std::vector<moxFieldBlock> fields{room.block};
  EXPECT_EQ(blockReader(*statement).fetchBlock(fields, 2), 2);
  EXPECT_EQ(blockReader(*statement).fetchBlock(fields, 2), 0);
}

/// Fills a table with values that every type reads in its own way.
void fillRandomly(MemoryDatabase& data, std::mt19937& random, int rows) {
  auto const insert = data.db.prepare("insert into t values (?, ?, ?, ?, ?)");
  data.run("begin");
  for (int row = 0; row < rows; ++row) {
    for (int field = 0; field < 5; ++field) {
      switch (random() % 7) {
        case 0:
          insert->bindNull(field);
          break;
        case 1:
          insert->bindInt(field, static_cast<int>(random()));
          break;
        case 2:
          insert->bindDouble(field, static_cast<double>(random()) / 7 - 1e6);
          break;
        case 3:
          insert->bindString(field, std::string(random() % 60, static_cast<char>(random() % 256)));
          break;
        case 4:
          insert->bindString(field, std::to_string(static_cast<int>(random() % 1000)) + "x");
          break;
        case 5:
          insert->bindDateTime(field,
                               datetime_t(1 + static_cast<int>(random() % 28), 2, 1990, 1, 2, 3));
          break;
        default:
          insert->bindBlob(field, Blob(std::string(random() % 20, '\0')));
          break;
      }
    }
    insert->execute();
  }
  data.run("commit");
}

void expectEqualCell(moxDatabaseConnection::PreparedStatement& cells, int field, Room const& room,
                     std::size_t row) {
  ASSERT_EQ(room.nulls[row] == 1, cells.isNull(field));
  if (cells.isNull(field)) {
    return;
  }
  switch (room.block.readAs) {
    case kInt:
      ASSERT_EQ(room.ints[row], cells.getInt(field));
      break;
    case kDouble:
      ASSERT_EQ(room.doubles[row], cells.getDouble(field));
      break;
    case kDate:
      ASSERT_EQ(room.dates[row], cells.getDateTime(field));
      break;
    case kText:
      ASSERT_EQ(room.texts[row], cells.getString(field));
      break;
    case kBlob: {
      auto const blob = cells.getBlob(field);
      ASSERT_EQ(room.texts[row], std::string_view(blob->data(), blob->size()));
      break;
    }
  }
}

TEST_F(SqliteStatementTest, BlocksGiveTheSameAsSingleCells) {
  unsigned const seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  constexpr std::size_t kCapacity = 64;
  data.run("create table t (i int, d double, c text, dt datetime, b blob)");
  fillRandomly(data, random, 1000);
  auto const cells = data.query("select i, d, c, dt, b from t");
  auto const blocks = data.query("select i, d, c, dt, b from t");
  Room i(kInt, kCapacity), d(kDouble, kCapacity), t(kText, kCapacity), m(kDate, kCapacity),
      b(kBlob, kCapacity);
  std::vector<Room*> const rooms{&i, &d, &t, &m, &b};
  std::vector<moxFieldBlock> fields{i.block, d.block, t.block, m.block, b.block};
  int seen = 0;
  for (int read = kCapacity; read == kCapacity; seen += read) {
    read = blockReader(*blocks).fetchBlock(fields, kCapacity);
    for (int row = 0; row < read; ++row) {
      ASSERT_TRUE(cells->fetch());
      for (int field = 0; field < 5; ++field) {
        expectEqualCell(*cells, field, *rooms[static_cast<std::size_t>(field)],
                        static_cast<std::size_t>(row));
        if (HasFatalFailure()) {
          return;
        }
      }
    }
  }
  EXPECT_EQ(seen, 1000);
  EXPECT_FALSE(cells->fetch());
}

}  // namespace
}  // namespace mox::core
