// What breaks on the way from a MariaDB server is told, and a result is never shorter than it was.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "contract/cutting_proxy.h"
#include "core/database/database.h"
#include "mox/core/row_block_reader.h"
#include "support/databases.h"
#include "support/mariadb_server.h"

namespace {

using mox_test::CuttingProxy;
using mox_test::Failure;
using mox_test::failureOf;
using mox_test::TestDatabase;
using Statement = moxDatabaseConnection::PreparedStatement;

/// Enough rows that the server cannot have sent them all before the first ones are read.
constexpr int kManyRows = 300000;
constexpr char const* kManyRowsSql = "select seq, repeat('x', 100) as s from seq_1_to_300000";

int readByCells(Statement& statement, int most) {
  int rows = 0;
  while (rows < most && statement.fetch()) {
    ++rows;
  }
  return rows;
}

int readByBlocks(Statement& statement, int most) {
  constexpr int kCapacity = 100;
  std::vector<std::int32_t> ints(kCapacity);
  std::vector<std::string_view> texts(kCapacity);
  std::vector<std::uint8_t> nulls(kCapacity);
  std::vector<moxFieldBlock> fields(static_cast<std::size_t>(statement.fieldCount()));
  for (auto& field : fields) {
    field.readAs = moxDatabaseConnection::FieldType::kText;
    field.texts = texts.data();
    field.nulls = nulls.data();
  }
  auto& reader = dynamic_cast<moxRowBlockReader&>(statement);
  int rows = 0;
  while (rows < most) {
    int const read = reader.fetchBlock(fields, kCapacity);
    rows += read;
    if (read < kCapacity) {
      return rows;
    }
  }
  return rows;
}

using Road = int (*)(Statement&, int);

struct NamedRoad {
  char const* name;
  Road read;
};

void PrintTo(NamedRoad const& road, std::ostream* output) {
  *output << road.name;
}

class MariadbFaults : public ::testing::TestWithParam<NamedRoad> {
 protected:
  void SetUp() override {
    if (!mox_test::hasMariadb()) {
      GTEST_SKIP() << "MOX_TEST_MARIADB_URL names no server";
    }
    db.emplace(mox_test::DatabaseKind::kMariadb);
    other.emplace(mox_test::DatabaseKind::kMariadb);
    line = db->value("select connection_id()");
  }

  int read(Statement& statement, int most = kManyRows + 1) {
    return GetParam().read(statement, most);
  }

  std::optional<TestDatabase> db;
  std::optional<TestDatabase> other;  // a second line
  std::string line;                   // number of the first
};

INSTANTIATE_TEST_SUITE_P(On, MariadbFaults,
                         ::testing::Values(NamedRoad{"Cells", readByCells},
                                           NamedRoad{"Blocks", readByBlocks}),
                         [](auto const& tested) { return std::string(tested.param.name); });

TEST_P(MariadbFaults, ResultIsWholeWithoutFaults) {
  EXPECT_EQ(read(*db->query(kManyRowsSql)), kManyRows);
}

TEST_P(MariadbFaults, ConnectionKilledAmongTheRowsIsAnError) {
  auto const statement = db->query(kManyRowsSql);
  ASSERT_EQ(read(*statement, 1000), 1000);
  other->run("kill connection " + line);
  auto const failure = failureOf([&] { read(*statement); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "2013");
  EXPECT_THAT(failure->details, testing::Contains(kManyRowsSql));
}

TEST_P(MariadbFaults, StatementIsNotReadOnAfterItFailed) {
  auto const statement = db->query(kManyRowsSql);
  ASSERT_EQ(read(*statement, 1000), 1000);
  other->run("kill connection " + line);
  ASSERT_TRUE(failureOf([&] { read(*statement); }));
  EXPECT_THROW(read(*statement), std::logic_error);
}

TEST_P(MariadbFaults, QueryKilledAmongTheRowsIsAnErrorAndTheLineServesOn) {
  auto const statement = db->query(kManyRowsSql);
  ASSERT_EQ(read(*statement, 1000), 1000);
  other->run("kill query " + line);
  auto const failure = failureOf([&] { read(*statement); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "1317");
  EXPECT_EQ(db->value("select connection_id()"), line);
  statement->execute();
  EXPECT_EQ(read(*statement), kManyRows);
}

TEST_P(MariadbFaults, RowsKeptAsideEndInTheFailureThatBrokeThem) {
  auto const statement = db->query(kManyRowsSql);
  ASSERT_EQ(read(*statement, 1000), 1000);
  other->run("kill query " + line);
  EXPECT_EQ(db->value("select 7"), "7");
  auto const failure = failureOf([&] { read(*statement); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "1317");
}

TEST_P(MariadbFaults, RowsKeptAsideEndInTheLossOfTheLine) {
  auto const statement = db->query(kManyRowsSql);
  ASSERT_EQ(read(*statement, 1000), 1000);
  other->run("kill connection " + line);
  EXPECT_TRUE(failureOf([&] { db->value("select 7"); }));
  auto const failure = failureOf([&] { read(*statement); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "2013");
}

TEST_P(MariadbFaults, FailureAmongComputedRowsIsAnError) {
  db->run("create table t (n int)");
  db->run("insert into t select seq from seq_1_to_2000");
  auto const failure = failureOf([&] {
    read(*db->query("select n, (select m.n from t m where m.n <= 1 + (t.n > 1500)) as x from t"));
  });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "1242");
  EXPECT_EQ(db->value("select 1"), "1");
}

/// Everything that a run does on one line, from its opening on.
int runOnce(std::string const& url, std::string const& sql, Road readRows) {
  mox::core::DatabaseOptions options;
  options.url = url;
  auto const database = mox::core::openDatabase(options);
  auto const statement = database->prepare(sql);
  statement->execute();
  return readRows(*statement, kManyRows + 1);
}

TEST_P(MariadbFaults, StreamCutAtAnyByteIsAnErrorOrTheWholeResult) {
  constexpr int kRows = 60;
  std::string const sql =
      "select seq, if(seq % 7 = 0, null, repeat('t', seq)) as s, seq / 3 as d, "
      "date('2024-03-05') as m from seq_1_to_60";
  CuttingProxy proxy(db->url());
  ASSERT_EQ(runOnce(proxy.url(), sql, GetParam().read), kRows);
  std::size_t const whole = proxy.answered();
  int errors = 0;
  for (std::size_t limit = 0; limit < whole; limit += 3) {
    proxy.setLimit(limit);
    int rows = kRows;
    bool const failed =
        failureOf([&] { rows = runOnce(proxy.url(), sql, GetParam().read); }).has_value();
    errors += failed ? 1 : 0;
    ASSERT_EQ(rows, kRows) << "cut after " << limit << " of " << whole << " bytes";
  }
  EXPECT_GT(errors, static_cast<int>(whole / 4)) << "the proxy did not cut";
  proxy.setLimit(whole);
  EXPECT_EQ(runOnce(proxy.url(), sql, GetParam().read), kRows);
}

TEST_P(MariadbFaults, LongStreamCutAtManyPlacesIsAnError) {
  std::string const sql = "select seq, repeat(char(65 + seq % 26), 3000) as s from seq_1_to_3000";
  CuttingProxy proxy(db->url());
  ASSERT_EQ(runOnce(proxy.url(), sql, GetParam().read), 3000);
  std::size_t const whole = proxy.answered();
  for (std::size_t limit = whole / 23; limit < whole; limit += whole / 23) {
    proxy.setLimit(limit);
    EXPECT_TRUE(failureOf([&] { runOnce(proxy.url(), sql, GetParam().read); })) << limit;
  }
}

TEST_P(MariadbFaults, SilentServerIsAnErrorAfterTheReadTimeout) {
  std::string const sql = "select seq, repeat('x', 3000) as s from seq_1_to_3000";
  CuttingProxy proxy(db->url());
  ASSERT_EQ(runOnce(proxy.url(), sql, GetParam().read), 3000);
  proxy.setLimit(proxy.answered() / 2, CuttingProxy::Fault::kSilence);
  EXPECT_TRUE(failureOf([&] { runOnce(proxy.url() + "&read_timeout=1", sql, GetParam().read); }));
}

TEST(MariadbServer, ThatDiesAmongTheRowsIsAnErrorOnEveryLine) {
  if (!mox_test::hasMariadb()) {
    GTEST_SKIP() << "MOX_TEST_MARIADB_URL names no server";
  }
  mox_test::PrivateMariadb server;
  mox::core::DatabaseOptions options;
  options.url = mox_test::withDatabase(server.url(), "mysql");
  auto const first = mox::core::openDatabase(options);
  auto const second = mox::core::openDatabase(options);
  auto cells = first->prepare(kManyRowsSql);
  auto blocks = second->prepare(kManyRowsSql);
  cells->execute();
  blocks->execute();
  ASSERT_EQ(readByCells(*cells, 1000), 1000);
  ASSERT_EQ(readByBlocks(*blocks, 1000), 1000);
  server.kill();
  EXPECT_TRUE(failureOf([&] { readByCells(*cells, kManyRows + 1); }));
  EXPECT_TRUE(failureOf([&] { readByBlocks(*blocks, kManyRows + 1); }));
  cells.reset();
  blocks.reset();
  auto const failure = failureOf([&] { first->prepare("select 1"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->code, "2002");
  server.start();
  first->execute("select 1");
  second->execute("select 1");
}

}  // namespace
