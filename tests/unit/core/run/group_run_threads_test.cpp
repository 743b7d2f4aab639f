#include <atomic>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/run/search_run.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "support/many_threads.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using mox::core::DefinitionRun;
using mox::core::SearchRun;
using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kSessions = 64;
constexpr int kThreads = 8;
constexpr int kRounds = 2;
constexpr int kUnits = 4;
constexpr int kRows = 40;

/// A group of all ways in which sources act on each other, and a search on it.
constexpr char const* kDefinitions = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Notas">
    <Command type="1"><from>notas n</from></Command>
    <unidadeColumn tableName="n" columnName="id_unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="id" columnNameOrigin="id" Type="2">
        <sql alias="id" index="0">n.id</sql>
      </Column>
      <Column tableName="n" columnName="id_unidade" columnNameOrigin="id_unidade" Type="2">
        <sql alias="id_unidade" index="1">n.id_unidade</sql>
      </Column>
    </Columns>
    <Order><By tableName="n" columnName="id"/></Order>
  </moxSQLDataSource>
  <moxGroupDataSource name="Grupo" outputSource="B" filterSource="G"><DataSources>
    <moxDadoDataSource name="A" dataSource="Notas"/>
    <moxDadoDataSource name="F"><moxFilterDataSource name="F" dataSource="A">
      <where>n.id &gt;= 10 or n.id = 5</where></moxFilterDataSource></moxDadoDataSource>
    <moxDadoDataSource name="G"><moxManageFilterDataSource name="G">
      <sources><source name="A"><avaliable/><related>
        <filter tableName="n" columnName="id" filterNameRelac="ate"/>
        <filter tableName="n" columnName="id_unidade" filterNameRelac="onde"/>
      </related></source></sources>
      <Filters><moxIntegralRangeFilter columnName="ate"/><moxIntegralInFilter columnName="onde"/>
      </Filters></moxManageFilterDataSource></moxDadoDataSource>
    <moxDadoDataSource name="B" dataSource="Notas">
      <Relation columnName="id" columnNameOrigin="id" tableName="n">
        <DataSourceOrigin dataSource="A" columnName="id"/></Relation></moxDadoDataSource>
  </DataSources></moxGroupDataSource>
  <moxSearch VisibleName="Notas" InternalName="Busca"><General dataSource="Grupo">
    <AutoFill atStartup="1"/><Allowing Reorder="0"/>
    <InitialOrdering columnName="id" columnNameOrigin="id" tableName="n" direction="desc"/>
  </General></moxSearch>
</moxZYNCollection>)xml";

class GroupRunThreads : public testing::Test {
 protected:
  GroupRunThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute("create table notas (id int, id_unidade int)");
    for (int id = 0; id < kRows; ++id) {
      database.execute("insert into notas values (" + std::to_string(id) + ", " +
                       std::to_string(id % kUnits + 1) + ")");
    }
    shareDefinitions(host_, kDefinitions);
    sessions_ = openUnitSessions(host_, kSessions, kUnits);
  }

  static std::string idsOf(moxDataMatrix const& matrix) {
    auto const ids =
        std::dynamic_pointer_cast<moxDataMatrixIntColumn const>(matrix.columnByName("id"));
    std::string text;
    for (unsigned int row = 0; row < ids->numRows(); ++row) {
      text += std::to_string(ids->getValue(row)) + " ";
    }
    return text;
  }

  /// What the session of that number finds: its unit's ids up to 30 that the filter source leaves.
  static std::string expected(int number, bool descending) {
    std::string text;
    for (int id = 0; id <= 30; ++id) {
      if ((id >= 10 || id == 5) && id % kUnits == number % kUnits) {
        text = descending ? std::to_string(id) + " " + text : text + std::to_string(id) + " ";
      }
    }
    return text;
  }

  void work(int number) {
    SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
    std::vector<std::string> const filters{"ate=..30", "onde=1,2,3,4"};
    auto& application = host_.application();
    DefinitionRun run(application, application.sessions(), "Grupo");
    run.setFilters(filters);
    SearchRun search(application, application.sessions(), "Busca");
    search.setFilters(filters);
    search.run();
    bool const right = idsOf(*run.run()) == expected(number, false) &&
                       idsOf(*search.runner().getDataMatrix()) == expected(number, true);
    faults_ += right ? 0 : 1;
  }

  TemporaryDirectory directory_;
  TestHost host_{"sqlite:" + (directory_.path() / "notas.db").string() + "?mode=rwc"};
  std::vector<std::shared_ptr<Session>> sessions_;
  std::atomic<int> faults_ = 0;
};

TEST_F(GroupRunThreads, SixtyFourSessionsRunOneGroupAndOneSearchAtOnce) {
  runInThreads(kThreads, kRounds, kSessions, [this](int number) { work(number); });
  EXPECT_EQ(faults_, 0);
}

}  // namespace
