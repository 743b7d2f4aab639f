#include <atomic>
#include <latch>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/run/definition_run.h"
#include "mox/core/database_connection.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "support/many_threads.h"
#include "support/matrix_builder.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using namespace mox_test;
using mox::core::DefinitionRun;
using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kThreads = 32;
constexpr int kRounds = 2;
constexpr int kUnits = 4;

/// One chain of each kind, and one of five sources. The averages count in columns that every run
/// needs anew, the cross tables need a report, and "Escolhida" an answer.
constexpr char const* kDefinitions = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Notas">
    <Command type="0">select n.id, n.unidade, n.turma, n.bimestre, n.nota from notas n</Command>
    <unidadeColumn tableName="n" columnName="unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="id" columnNameOrigin="id" Type="2"/>
      <Column tableName="n" columnName="unidade" columnNameOrigin="unidade" Type="2"/>
      <Column tableName="n" columnName="turma" columnNameOrigin="turma" Type="1"/>
      <Column tableName="n" columnName="bimestre" columnNameOrigin="bimestre" Type="2"/>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4"/>
    </Columns>
    <Order><By tableName="n" columnName="id"/></Order>
  </moxSQLDataSource>
  <moxAggregationDataSource name="Médias" dataSource="Notas" countColumn="1">
    <moxDataMatrixAggregator>
      <Indexes><Index name="turma"/><Index name="bimestre"/></Indexes>
      <Functions>
        <moxDoubleAvg source="nota" target="media"/>
        <moxIntegralAvg source="bimestre" target="meio"/>
        <moxTextAppend source="turma" target="juntas"/>
      </Functions>
    </moxDataMatrixAggregator>
  </moxAggregationDataSource>
  <moxSorterDataSource name="Escolhida" source="Notas" userDefined="yes" description="Ordem">
    <column name="nota" desc="Nota"/><column name="turma" desc="Turma" dir="desc"/>
  </moxSorterDataSource>
  <moxUnionDataSource name="Duas vezes"><sources>
    <source name="Notas"><moxDataMatrixTextColumn name="turma"/><moxDataMatrixDoubleColumn name="nota"/></source>
    <source name="Médias"><moxDataMatrixTextColumn name="juntas"/><moxDataMatrixIntColumn name="meio"/></source>
  </sources></moxUnionDataSource>
  <moxExpressionDataSource name="Crescente" source="Notas"><expressions>
    <moxColumnExpression name="soma" type="1" decimalPrecision="2">soma(1)+nota(0)*2</moxColumnExpression>
  </expressions></moxExpressionDataSource>
  <moxDataSourcePivoting name="Cruzada" source="Notas">
    <columns><column source="bimestre" formatter="moxIntegralFormatter"/></columns>
    <rows><row source="turma"/></rows>
    <cells><cell source="nota" aggregation="moxDoubleAvg"/></cells>
  </moxDataSourcePivoting>
  <moxJoinDataSource name="Ao lado"><sources>
    <source name="Notas">
      <columns>
        <moxDataMatrixTextColumn columnName="turma" acolumnAlias="turma"/>
        <moxDataMatrixIntColumn columnName="bimestre" acolumnAlias="bimestre"/>
      </columns>
      <joins/>
    </source>
    <source name="Médias">
      <columns><moxDataMatrixDoubleColumn columnName="media" acolumnAlias="media"/></columns>
      <joins>
        <join columnNameOrigin="turma" sourceNameRelac="Notas" columnNameRelac="turma" columnNameJoin="turma"/>
        <join columnNameOrigin="bimestre" sourceNameRelac="Notas" columnNameRelac="bimestre"
              columnNameJoin="bimestre"/>
      </joins>
    </source>
  </sources></moxJoinDataSource>
  <moxSorterDataSource name="Médias em ordem" source="Médias">
    <column name="media" dir="desc"/><column name="turma"/>
  </moxSorterDataSource>
  <moxExpressionDataSource name="Lugares" source="Médias em ordem"><expressions>
    <moxColumnExpression name="lugar" type="0">lugar(1)+1</moxColumnExpression>
  </expressions></moxExpressionDataSource>
  <moxDataSourcePivoting name="Quinta" source="Lugares">
    <columns><column source="bimestre"/></columns>
    <rows><row source="turma"/></rows>
    <cells><cell source="lugar" aggregation="moxIntegralMin"/></cells>
  </moxDataSourcePivoting>
</moxZYNCollection>)xml";

std::vector<std::string> const kChains{"Médias",  "Escolhida", "Duas vezes", "Crescente",
                                       "Cruzada", "Ao lado",   "Quinta"};

class DerivedChainsThreads : public testing::Test {
 protected:
  using Matrix = std::shared_ptr<moxDataMatrix>;

  DerivedChainsThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute(
        "create table notas (id int, unidade int, turma varchar(10), bimestre int, nota double)");
    std::string rows;
    for (int id = 0; id < 240; ++id) {
      int const unit = id % kUnits + 1;
      auto const mark = id % 17 == 0 ? "null" : std::to_string((id * 37 + unit) % 101) + ".1";
      rows += (id == 0 ? "(" : ", (") + std::to_string(id) + ", " + std::to_string(unit) + ", '" +
              std::to_string(unit) + static_cast<char>('A' + id % 5) + "', " +
              std::to_string(id % 3 + 1) + ", " + mark + ")";
    }
    database.execute("insert into notas values " + rows);
    shareDefinitions(host_, kDefinitions);
    sessions_ = openUnitSessions(host_, kThreads, kUnits);
  }

  /// As the calling thread's session.
  Matrix resultOf(std::string const& chain) {
    DefinitionRun run(host_.application(), host_.application().sessions(), chain);
    auto const options = run.definition()->options();
    if (!options.empty()) {
      auto const order = std::dynamic_pointer_cast<moxSorterDataSourceOptionData>(
          options.front()->createOptionData());
      order->setOrder("nota", true);
      run.context().setDataSourceOptions(chain, {order});
    }
    return run.run();
  }

  /// By unit, one behind the other, in the order of the chains.
  std::map<int, std::vector<Matrix>> resultsOneByOne() {
    std::map<int, std::vector<Matrix>> results;
    for (int unit = 0; unit < kUnits; ++unit) {
      SessionScope const scope(sessions_[static_cast<std::size_t>(unit)]);
      for (auto const& chain : kChains) {
        results[unit].push_back(resultOf(chain));
      }
    }
    return results;
  }

  TemporaryDirectory directory_;
  TestHost host_{"sqlite:" + (directory_.path() / "notas.db").string() + "?mode=rwc"};
  std::vector<std::shared_ptr<Session>> sessions_;
};

}  // namespace

TEST_F(DerivedChainsThreads, ThirtyTwoThreadsGetOfEachChainWhatOneGets) {
  auto const expected = resultsOneByOne();
  for (std::size_t i = 0; i < kChains.size(); ++i) {
    EXPECT_GT(expected.at(0)[i]->rowCount(), 0U) << kChains[i];
    EXPECT_FALSE(sameMatrix(*expected.at(0)[i], *expected.at(1)[i]))
        << kChains[i] << ": units see the same rows";
  }
  std::latch together(kThreads);
  std::vector<std::atomic<int>> faults(kChains.size());
  runInThreads(kThreads, 1, kThreads, [&](int number) {
    SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
    together.arrive_and_wait();
    for (std::size_t step = 0; step < kRounds * kChains.size(); ++step) {
      auto const i = (static_cast<std::size_t>(number) + step) % kChains.size();
      auto const actual = resultOf(kChains[i]);
      faults[i] += actual && sameMatrix(*actual, *expected.at(number % kUnits)[i]) ? 0 : 1;
    }
  });
  for (std::size_t i = 0; i < kChains.size(); ++i) {
    EXPECT_EQ(faults[i], 0) << kChains[i];
  }
}

TEST_F(DerivedChainsThreads, ThirtyTwoThreadsRunOneChainAtOnce) {
  auto const expected = resultsOneByOne();
  for (std::size_t i = 0; i < kChains.size(); ++i) {
    std::latch together(kThreads);
    std::atomic<int> faults = 0;
    runInThreads(kThreads, 1, kThreads, [&](int number) {
      SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
      together.arrive_and_wait();
      auto const actual = resultOf(kChains[i]);
      faults += actual && sameMatrix(*actual, *expected.at(number % kUnits)[i]) ? 0 : 1;
    });
    EXPECT_EQ(faults, 0) << kChains[i];
  }
}
