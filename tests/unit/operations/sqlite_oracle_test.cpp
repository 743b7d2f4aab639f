// Sorting and uniting against SQLite, which knows nothing of how matrices do it. Tables lie in
// temporary tables of a database in memory, whose row numbers tell the order of the rows.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/database_connection.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "mox/zyn/matrix/data_matrix_union.h"
#include "support/matrix_builder.h"
#include "support/random_tables.h"
#include "support/test_host.h"
#include "zyn/matrix/temporary_table.h"

using namespace mox_test;

namespace {

using Matrix = std::shared_ptr<moxDataMatrix>;
using Types = moxDataMatrixTypes::Types;

constexpr int kTables = 2500;
constexpr char const* kPlace = "place";  // the column that tells where a row stood

// What a database does not keep, or cannot name.
constexpr RandomTableOptions kOptions{
    .maxColumns = 4, .maxRows = 30, .nan = false, .blobs = false, .repeatedNames = false};

class SqliteOracle : public testing::Test {
 protected:
  TestHost host_{TestHost::kMemoryDatabase};

  std::shared_ptr<moxDatabaseConnection::PreparedStatement> executed(std::string const& sql) {
    auto statement = host_.database().prepare(sql);
    statement->execute();
    return statement;
  }
};

Cell valueOf(moxDatabaseConnection::PreparedStatement const& row, int field, Types type) {
  if (row.isNull(field)) {
    return null;
  }
  switch (type) {
    case moxDataMatrixTypes::Int:
      return row.getInt(field);
    case moxDataMatrixTypes::Double:
      return row.getDouble(field);
    case moxDataMatrixTypes::Date:
      return row.getDateTime(field);
    default:
      return std::string(row.getString(field));
  }
}

void addPlaces(moxDataMatrix& table) {
  Cells places = ints();
  for (unsigned int row = 0; row < table.rowCount(); ++row) {
    places.values.emplace_back(static_cast<int>(row) + 1);
  }
  table.addColumn(column(kPlace, places));
}

std::vector<int> placesIn(moxDataMatrix const& table) {
  auto const column = table.columnByName(kPlace);
  std::vector<int> places;
  for (unsigned int row = 0; row < table.rowCount(); ++row) {
    places.push_back(std::get<int>(cellAt(*column, row)));
  }
  return places;
}

struct SortKey {
  std::string column;
  bool descending;
};

/// Nulls stand first, and last in descending order; equal rows stay as they stood.
std::string orderBy(std::vector<SortKey> const& keys) {
  std::string sql = " order by ";
  for (auto const& key : keys) {
    sql += key.column + (key.descending ? " is null, " : " is not null, ") + key.column +
           (key.descending ? " desc, " : ", ");
  }
  return sql + "rowid";
}

std::vector<SortKey> randomKeys(RandomTables& random, moxDataMatrix const& table) {
  std::vector<SortKey> keys;
  for (std::size_t count = 1 + random.pick(3); keys.size() < count;) {
    keys.push_back({random.columnOf(table), random.pick(2) == 0});
  }
  return keys;
}

Matrix sorted(TestHost& host, Matrix const& table, std::vector<SortKey> const& keys) {
  auto const sorter = host.get<moxDataMatrixSorter>("moxDataMatrixSorter");
  for (auto const& key : keys) {
    sorter->pushSortColumn(key.column, key.descending);
  }
  return sorter->transform(table);
}

std::string list(std::vector<std::string> const& names) {
  std::string text;
  for (auto const& name : names) {
    text += ", " + name;
  }
  return text;
}

/// One of the tables that are united: columns of the kinds of the result in any order, whole
/// numbers among them where the first table has doubles.
struct Part {
  Matrix table = matrix({});
  std::vector<std::string> names;  // in the order in which they line up
};

Part randomPart(RandomTables& random, std::vector<Types> const& types, bool isFirst) {
  Part part;
  auto const rows = static_cast<unsigned int>(random.pick(12));
  for (std::size_t i = 0; i < types.size(); ++i) {
    bool const whole = !isFirst && types[i] == moxDataMatrixTypes::Double && random.pick(3) == 0;
    part.names.push_back("c" + std::to_string(i));
    part.table->addColumn(
        random.column(part.names.back(), whole ? moxDataMatrixTypes::Int : types[i], rows));
  }
  for (std::size_t i = 1; i < types.size(); ++i) {  // which one lines up with which
    std::size_t const other = random.pick(i + 1);
    if (types[i] == types[other]) {
      std::swap(part.names[i], part.names[other]);
    }
  }
  return part;
}

}  // namespace

TEST_F(SqliteOracle, RowsAreInTheOrderInWhichSqlitePutsThem) {
  RandomTables random(20240309, kOptions);
  std::size_t moved = 0;
  for (int round = 0; round < kTables; ++round) {
    auto const table = random.table();
    auto const keys = randomKeys(random, *table);
    addPlaces(*table);
    dumpToTemporaryTable(*table, "t");
    std::vector<int> expected;
    auto const rows = executed("select place from t" + orderBy(keys));
    while (rows->fetch()) {
      expected.push_back(rows->getInt(0));
    }
    auto const actual = sorted(host_, table, keys);
    ASSERT_EQ(placesIn(*actual), expected) << "round " << round << orderBy(keys) << '\n'
                                           << asText(*table, 40);
    moved += placesIn(*table) == expected ? 0U : 1U;
  }
  EXPECT_GT(moved, kTables / 2U) << "hardly any table needs sorting";
}

TEST_F(SqliteOracle, RowsStandBelowEachOtherAsInUnionAll) {
  RandomTables random(20240310, kOptions);
  std::size_t cells = 0;
  for (int round = 0; round < kTables; ++round) {
    std::vector<Types> types(1 + random.pick(4));
    for (auto& type : types) {
      type = random.type();
    }
    auto const engine = host_.get<moxDataMatrixUnion>("moxDataMatrixUnion");
    std::string sql;
    for (std::size_t i = 0, count = 1 + random.pick(3); i < count; ++i) {
      auto const part = randomPart(random, types, i == 0);
      auto const name = "t" + std::to_string(i);
      engine->pushSourceDataMatrix(part.table, part.names);
      dumpToTemporaryTable(*part.table, name);
      sql += std::string(i == 0 ? "" : " union all ") + "select " + std::to_string(i) + ", rowid" +
             list(part.names) + " from " + name;
    }
    auto const rows = executed(sql + " order by 1, 2");
    auto const actual = engine->process("");
    unsigned int row = 0;
    for (; rows->fetch(); ++row) {
      for (unsigned int place = 0; place < types.size(); ++place, ++cells) {
        auto const expected = valueOf(*rows, static_cast<int>(place) + 2, types[place]);
        ASSERT_EQ(cellAt(*actual->columnAt(place), row), expected)
            << "round " << round << ", row " << row << ", column " << place << '\n'
            << asText(*actual, 40);
      }
    }
    ASSERT_EQ(actual->rowCount(), row) << "round " << round;
  }
  EXPECT_GT(cells, 10U * kTables);
}
