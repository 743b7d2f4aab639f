#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/search/search.h"
#include "mox/zyn/search/search_runner.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/many_threads.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kSessions = 64;
constexpr int kThreads = 64;
constexpr int kRounds = 3;
constexpr int kUnits = 4;

/// A query restricted to units, and a search that names it.
constexpr char const* kDefinitions = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Notas">
    <Command type="1"><from>notas n</from></Command>
    <unidadeColumn tableName="n" columnName="id_unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4">
        <sql index="0">n.nota</sql>
        <IconColumn tableName="n" columnName="id_unidade"/>
        <Formatters Visual="moxDecimalFormatter"><Visual precision="2" separator=","/></Formatters>
      </Column>
      <Column tableName="n" columnName="id_unidade" columnNameOrigin="id_unidade" Type="2">
        <sql index="1">n.id_unidade</sql>
        <Formatters Icon="moxIntegralFormatter"><Icon prefix="unidade-"/></Formatters>
      </Column>
      <Column tableName="n" columnName="par" columnNameOrigin="par" Type="2">
        <sql index="2">n.par</sql>
      </Column>
    </Columns>
  </moxSQLDataSource>
  <moxSearch InternalName="pesqNotas">
    <General dataSource="Notas">
      <InitialOrdering tableName="n" columnName="nota" direction="desc"/>
    </General>
  </moxSearch>
</moxZYNCollection>)xml";

class SearchRunnerThreads : public testing::Test {
 protected:
  SearchRunnerThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute("create table notas (id_unidade int, nota double, par int)");
    for (int id = 0; id < 40; ++id) {
      database.execute("insert into notas values (" + std::to_string(id % kUnits + 1) + ", " +
                       std::to_string(id) + ".25, " + std::to_string(id / kUnits % 2) + ")");
    }
    shareDefinitions(host_, kDefinitions);
    sessions_ = openUnitSessions(host_, kSessions, kUnits);
  }

  std::string run(int parity) {
    auto const search =
        std::dynamic_pointer_cast<moxSearch const>(cache_->getCollection("pesqNotas"));
    auto const runner = host_.get<moxSearchRunner>("moxSearchRunner");
    runner->load(search);
    auto const filter =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    filter->setColumnName("n", "par");
    filter->setValue(parity);
    runner->pushFilter(filter);
    runner->performSql();
    std::string text;
    for (unsigned int row = 0; row < runner->rowCount(); ++row) {
      text += runner->getVisibleValue(row, 0) + "|" + runner->getIcon(row, 0) + "|" +
              std::to_string(runner->getInt(row, 2)) + " ";
    }
    return text;
  }

  /// The unit's grades of that parity, the highest first.
  static std::string expected(int unit, int parity) {
    std::string text;
    for (int id = 39; id >= 0; --id) {
      if (id % kUnits + 1 == unit && id / kUnits % 2 == parity) {
        text += std::to_string(id) + ",25|unidade-" + std::to_string(unit) + "|" +
                std::to_string(parity) + " ";
      }
    }
    return text;
  }

  void work(int number) {
    SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
    for (int const parity : {0, 1}) {
      if (run(parity) != expected(number % kUnits + 1, parity)) {
        ++faults_;
      }
    }
  }

  TemporaryDirectory directory_;
  TestHost host_{"sqlite:" + (directory_.path() / "notas.db").string() + "?mode=rwc"};
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::vector<std::shared_ptr<Session>> sessions_;
  std::atomic<int> faults_ = 0;
};

}  // namespace

TEST_F(SearchRunnerThreads, SixtyFourRunnersRunOneDefinitionAtOnce) {
  runInThreads(kThreads, kRounds, kSessions, [this](int number) { work(number); });
  EXPECT_EQ(faults_, 0);
}
