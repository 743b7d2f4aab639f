// Reading block by block gives what reading cell by cell gives, on every database, for random
// tables.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "core/storage/blob.h"
#include "mox/core/row_block_reader.h"
#include "support/databases.h"

namespace {

using mox_test::OnEveryDatabase;
using FieldType = moxDatabaseConnection::FieldType;
using Statement = moxDatabaseConnection::PreparedStatement;

class DatabaseBlocks : public OnEveryDatabase {};

MOX_ON_EVERY_DATABASE(DatabaseBlocks);

/// A value read as one type, in a form that can be compared.
struct Cell {
  bool isNull = true;
  std::int32_t number = 0;
  double real = 0;
  datetime_t moment;
  std::string bytes;

  bool operator==(Cell const&) const = default;
};

using Rows = std::vector<std::vector<Cell>>;

Cell readCell(Statement& statement, int field, FieldType type) {
  Cell cell;
  cell.isNull = statement.isNull(field);
  if (cell.isNull) {
    return cell;
  }
  switch (type) {
    case FieldType::kInt:
      cell.number = statement.getInt(field);
      break;
    case FieldType::kDouble:
      cell.real = statement.getDouble(field);
      break;
    case FieldType::kDate:
      cell.moment = statement.getDateTime(field);
      break;
    default:
      cell.bytes = statement.getString(field);
  }
  return cell;
}

Rows readByCells(Statement& statement, std::vector<FieldType> const& types) {
  Rows rows;
  statement.execute();
  while (statement.fetch()) {
    auto& row = rows.emplace_back();
    for (std::size_t i = 0; i < types.size(); ++i) {
      row.push_back(readCell(statement, static_cast<int>(i), types[i]));
    }
  }
  return rows;
}

/// Arrays for the values of one field.
struct Arrays {
  std::vector<std::int32_t> ints;
  std::vector<double> doubles;
  std::vector<datetime_t> dates;
  std::vector<std::string_view> texts;
  std::vector<std::uint8_t> nulls;

  explicit Arrays(int capacity)
      : ints(static_cast<std::size_t>(capacity)),
        doubles(ints.size()),
        dates(ints.size()),
        texts(ints.size()),
        nulls(ints.size()) {}

  moxFieldBlock block(FieldType type) {
    return {type, true, ints.data(), doubles.data(), dates.data(), texts.data(), nulls.data()};
  }

  Cell cell(std::size_t row, FieldType type) const {
    Cell cell;
    cell.isNull = nulls[row] != 0;
    if (cell.isNull) {
      return cell;
    }
    cell.number = type == FieldType::kInt ? ints[row] : 0;
    cell.real = type == FieldType::kDouble ? doubles[row] : 0;
    cell.moment = type == FieldType::kDate ? dates[row] : datetime_t();
    cell.bytes =
        type == FieldType::kText || type == FieldType::kBlob ? texts[row] : std::string_view();
    return cell;
  }
};

Rows readByBlocks(Statement& statement, std::vector<FieldType> const& types, int capacity) {
  Rows rows;
  std::vector<Arrays> arrays(types.size(), Arrays(capacity));
  std::vector<moxFieldBlock> blocks;
  for (std::size_t i = 0; i < types.size(); ++i) {
    blocks.push_back(arrays[i].block(types[i]));
  }
  statement.execute();
  auto& reader = dynamic_cast<moxRowBlockReader&>(statement);
  int read = capacity;
  while (read == capacity) {
    read = reader.fetchBlock(blocks, capacity);
    for (std::size_t row = 0; row < static_cast<std::size_t>(read); ++row) {
      auto& cells = rows.emplace_back();
      for (std::size_t i = 0; i < types.size(); ++i) {
        cells.push_back(arrays[i].cell(row, types[i]));
      }
    }
  }
  return rows;
}

/// Fills a table of every type with random rows, short and long values, nulls in a third of the
/// cells.
class RandomTable {
 public:
  RandomTable(mox_test::TestDatabase& db, unsigned seed) : db_(db), random_(seed) {}

  void fill(int rows) {
    db_.run(
        "create table t (i int, b bigint, d double, s varchar(300), l longtext, m datetime, a "
        "date, z longblob)");
    auto const insert = db_.connection().prepare("insert into t values (?, ?, ?, ?, ?, ?, ?, ?)");
    for (int row = 0; row < rows; ++row) {
      bindRow(*insert);
      insert->execute();
    }
  }

 private:
  void bindRow(Statement& insert) {
    insert.bindInt(0, static_cast<int>(random_()));
    insert.bindString(1, std::to_string(static_cast<std::int64_t>(random_()) * 2000000011));
    insert.bindDouble(2, static_cast<double>(static_cast<int>(random_())) / 977);
    insert.bindString(3, text(300));
    insert.bindString(4, text(random_() % 50 == 0 ? 70000 : 300));
    insert.bindDateTime(5, datetime_t(1, 1, 1990, 0, 0, static_cast<int>(random_() % 2000000000)));
    insert.bindDate(6, date_t(1 + static_cast<int>(random_() % 20000), 1, 1990));
    insert.bindBlob(7, mox::core::Blob(text(600)));
    for (int position = 0; position < 8; ++position) {
      if (random_() % 3 == 0) {
        insert.bindNull(position);
      }
    }
  }

  std::string text(unsigned most) {
    return std::string(random_() % (most + 1), static_cast<char>('a' + random_() % 26));
  }

  mox_test::TestDatabase& db_;
  std::mt19937 random_;
};

TEST_P(DatabaseBlocks, EqualCellsOnRandomTablesForEveryReading) {
  unsigned const seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  RandomTable(db, seed).fill(400);
  std::mt19937 random(seed + 1);
  auto const statement = db.connection().prepare("select i, b, d, s, l, m, a, z from t");
  for (int round = 0; round < 12; ++round) {
    std::vector<FieldType> types;
    for (int field = 0; field < 8; ++field) {
      types.push_back(static_cast<FieldType>(1 + random() % 5));
    }
    int const capacity = 1 + static_cast<int>(random() % 500);
    SCOPED_TRACE("round " + std::to_string(round) + ", blocks of " + std::to_string(capacity));
    ASSERT_TRUE(readByCells(*statement, types) == readByBlocks(*statement, types, capacity));
  }
}

TEST_P(DatabaseBlocks, ResultThatFillsItsBlocksEndsInAnEmptyOne) {
  db.run("create table t (n int)");
  db.run("insert into t values (1), (2), (3), (4)");
  auto const statement = db.query("select n from t order by n");
  Arrays arrays(2);
  std::vector<moxFieldBlock> blocks{arrays.block(FieldType::kInt)};
  auto& reader = dynamic_cast<moxRowBlockReader&>(*statement);
  EXPECT_EQ(reader.fetchBlock(blocks, 2), 2);
  EXPECT_EQ(reader.fetchBlock(blocks, 2), 2);
  EXPECT_THAT(arrays.ints, testing::ElementsAre(3, 4));
  EXPECT_EQ(reader.fetchBlock(blocks, 2), 0);
}

TEST_P(DatabaseBlocks, FieldThatIsNotWantedIsPassedOver) {
  auto const statement = db.query("select 1 as a, 'text' as b");
  Arrays arrays(4);
  std::vector<moxFieldBlock> blocks(2);
  blocks[0].wanted = false;
  blocks[1] = arrays.block(FieldType::kText);
  auto& reader = dynamic_cast<moxRowBlockReader&>(*statement);
  ASSERT_EQ(reader.fetchBlock(blocks, 4), 1);
  EXPECT_EQ(arrays.texts[0], "text");
}

TEST_P(DatabaseBlocks, ValueOfANullIsLeftAsItWas) {
  auto const statement = db.query("select cast(null as char) as a");
  Arrays arrays(1);
  arrays.texts[0] = "before";
  std::vector<moxFieldBlock> blocks{arrays.block(FieldType::kText)};
  ASSERT_EQ(dynamic_cast<moxRowBlockReader&>(*statement).fetchBlock(blocks, 1), 1);
  EXPECT_EQ(arrays.nulls[0], 1);
  EXPECT_EQ(arrays.texts[0], "before");
}

TEST_P(DatabaseBlocks, TextsStayWhileOtherStatementsRun) {
  db.run("create table t (n int, s varchar(40))");
  db.run("insert into t values (1, 'one'), (2, 'two'), (3, 'three'), (4, 'four'), (5, 'five')");
  auto const statement = db.query("select s from t order by n");
  Arrays arrays(2);
  std::vector<moxFieldBlock> blocks{arrays.block(FieldType::kText)};
  auto& reader = dynamic_cast<moxRowBlockReader&>(*statement);
  ASSERT_EQ(reader.fetchBlock(blocks, 2), 2);
  db.run("update t set s = 'changed' where n = 1");
  EXPECT_EQ(db.value("select count(*) from t"), "5");
  EXPECT_THAT(arrays.texts, testing::ElementsAre("one", "two"));
  ASSERT_EQ(reader.fetchBlock(blocks, 2), 2);
  EXPECT_THAT(arrays.texts, testing::ElementsAre("three", "four"));
  ASSERT_EQ(reader.fetchBlock(blocks, 2), 1);
  EXPECT_EQ(arrays.texts[0], "five");
}

}  // namespace
