// Statements into matrices on every database: layouts, re-execution, failures on the way.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contract/loader_fixture.h"
#include "support/foreign_column.h"

namespace mox_test {

namespace {

class LoaderLayout : public LoaderOnEveryDatabase {
 protected:
  void makeGrades() {
    db.run(
        "create table notas (id int, valor decimal(10,2), quando datetime, texto varchar(40), "
        "dados blob)");
    db.run(
        "insert into notas values (1, 7.75, '2024-03-05 10:20:30', 'ação', 'bytes'), "
        "(2, null, null, null, null), (3, -2.50, '2024-03-06', '', '')");
  }
};

MOX_ON_EVERY_DATABASE(LoaderLayout);

TEST_P(LoaderLayout, EmptyMatrixReceivesAColumnAFieldOfTheFieldsKind) {
  makeGrades();
  EXPECT_THAT(on_.load("select id, valor, quando, texto, dados from notas order by id"),
              isMatrix({{"id", ints(1, 2, 3)},
                        {"valor", doubles(7.75, null, -2.5)},
                        {"quando", dates("2024-03-05 10:20:30", null, "2024-03-06")},
                        {"texto", texts("ação", null, "")},
                        {"dados", blobs("bytes", null, "")}}));
}

TEST_P(LoaderLayout, NoRowsMakeTheSameColumns) {
  makeGrades();
  EXPECT_THAT(on_.load("select id, valor, quando, texto, dados from notas where id > 9"),
              isMatrix({{"id", ints()},
                        {"valor", doubles()},
                        {"quando", dates()},
                        {"texto", texts()},
                        {"dados", blobs()}}));
}

TEST_P(LoaderLayout, GivenLayoutTakesTheFieldsItNames) {
  makeGrades();
  EXPECT_THAT(on_.load("select id, valor, texto from notas order by id",
                       matrix({{"texto", texts()}, {"id", ints()}})),
              isMatrix({{"texto", texts("ação", null, "")}, {"id", ints(1, 2, 3)}}));
}

TEST_P(LoaderLayout, ColumnWithoutAFieldLeavesTheMatrixWithoutRows) {
  makeGrades();
  auto const loaded =
      on_.load("select id from notas order by id", matrix({{"id", ints()}, {"extra", texts("x")}}));
  EXPECT_THAT(loaded, isMatrix({{"id", ints(1, 2, 3)}, {"extra", texts()}}));
  EXPECT_EQ(loaded->rowCount(), 0U);
}

TEST_P(LoaderLayout, TextColumnOverANumberReadsItsText) {
  makeGrades();
  EXPECT_THAT(on_.load("select id from notas order by id", matrix({{"id", texts()}})),
              isMatrix({{"id", texts("1", "2", "3")}}));
}

/// A column of foreign make among the targets keeps the loader to its road cell by cell: both roads
/// are compared.
TEST_P(LoaderLayout, ColumnsKindDecidesHowAFieldIsReadOnBothRoads) {
  makeGrades();
  std::string const sql = "select valor, id, quando, texto from notas order by id";
  auto const layout = [] {
    return matrix({{"valor", ints()}, {"quando", texts()}, {"texto", doubles()}});
  };
  auto const byBlocks = layout();
  byBlocks->addColumn(column("id", doubles()));
  on_.load(sql, byBlocks);
  auto const byCells = layout();
  byCells->addColumn(
      std::make_shared<ForeignDoubleColumn>("id", std::vector<std::optional<double>>{}));
  on_.load(sql, byCells);
  EXPECT_TRUE(sameMatrix(*byBlocks, *byCells));
  EXPECT_EQ(byBlocks->rowCount(), 3U);
}

TEST_P(LoaderLayout, IntColumnOverADecimalFieldReadsAnInteger) {
  db.run("create table t (v decimal(10,2))");
  db.run("insert into t values (7.00), (null), (-12.00)");
  EXPECT_THAT(on_.load("select v from t", matrix({{"v", ints()}})),
              isMatrix({{"v", ints(7, null, -12)}}));
}

TEST_P(LoaderLayout, SecondExecutionReplacesRowsAndReusesColumns) {
  makeGrades();
  auto const loaded = on_.load("select id, texto from notas order by id");
  auto const ids = loaded->columnByName("id");
  db.run("delete from notas where id < 3");
  on_.loader().execute();
  EXPECT_EQ(loaded->columnByName("id"), ids);
  EXPECT_THAT(loaded, isMatrix({{"id", ints(3)}, {"texto", texts("")}}));
}

TEST_P(LoaderLayout, PrefixAndSuffixRunAroundTheStatement) {
  db.run("create table t (v int)");
  on_.loader().setPrefixSufix("insert into t values (1);", "; insert into t values (2)");
  EXPECT_THAT(on_.load("select v from t"), isMatrix({{"v", ints(1)}}));
  EXPECT_THAT(db.rows("select v from t order by v"),
              testing::ElementsAre(testing::ElementsAre("1"), testing::ElementsAre("2")));
}

TEST_P(LoaderLayout, RefusedStatementPassesTheDatabasesMessage) {
  auto const direct = failureOf([&] { on_.host().database().prepare("select from nowhere"); });
  auto const loaded = failureOf([&] { on_.load("select from nowhere"); });
  ASSERT_TRUE(direct && loaded);
  EXPECT_EQ(loaded->message, direct->message);
  EXPECT_EQ(loaded->code, direct->code);
}

/// The lowest of all integers has no absolute value, which the databases find out when they come to
/// its row.
TEST_P(LoaderLayout, FailureOnTheWayIsAnErrorAndNeverAShorterTable) {
  db.run("create table t (id int primary key, v bigint)");
  std::string rows;
  for (int id = 1; id <= 5000; ++id) {
    rows += (rows.empty() ? "" : ",") + std::string("(") + std::to_string(id) +
            (id == 4000 ? ", -9223372036854775807 - 1)" : ", " + std::to_string(id) + ")");
  }
  db.run("insert into t values " + rows);
  EXPECT_TRUE(failureOf([&] { on_.load("select id, abs(v) as v from t"); }));
  EXPECT_EQ(on_.load("select id, abs(v) as v from t where id < 4000")->rowCount(), 3999U);
}

}  // namespace

}  // namespace mox_test
