// Temporary tables of derived sources bear the same name in every run of a definition. Those of
// runs for two units hold each its own rows only, whether the runs stand beside each other on one
// server or one behind the other on one connection.

#include <atomic>
#include <barrier>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/items/zyn_cache.h"
#include "support/databases.h"
#include "support/matrix_builder.h"
#include "support/shared_sessions.h"
#include "support/test_host.h"

namespace mox_test {

namespace {

using mox::core::SessionScope;
using Names = std::vector<std::string>;

constexpr int kUnits = 2;
constexpr int kRounds = 5;

constexpr char const* kDefinitions = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Notas">
    <Command type="0">select n.unidade, n.diario, n.nota from notas n</Command>
    <unidadeColumn tableName="n" columnName="unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="unidade" columnNameOrigin="unidade" Type="2"/>
      <Column tableName="n" columnName="diario" columnNameOrigin="diario" Type="1"/>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4"/>
    </Columns>
    <Order><By tableName="n" columnName="diario"/></Order>
  </moxSQLDataSource>
  <moxAggregationDataSource name="totais" dataSource="Notas" generateTempTable="1" countColumn="1">
    <moxDataMatrixAggregator>
      <Indexes><Index name="diario"/></Indexes>
      <Functions><moxDoubleAvg source="nota" target="media"/></Functions>
    </moxDataMatrixAggregator>
  </moxAggregationDataSource>
  <moxUnionDataSource name="todas" generateTempTable="1"><sources>
    <source name="Notas"><moxDataMatrixTextColumn name="diario"/></source>
    <source name="Notas"><moxDataMatrixTextColumn name="diario"/></source>
  </sources></moxUnionDataSource>
  <moxSQLDataSource name="Dos totais">
    <Command type="0">select t.diario, t.media, t.data_count from totais t</Command>
    <Columns>
      <Column tableName="t" columnName="diario" columnNameOrigin="diario" Type="1"/>
      <Column tableName="t" columnName="media" columnNameOrigin="media" Type="4"/>
      <Column tableName="t" columnName="data_count" columnNameOrigin="data_count" Type="2"/>
    </Columns>
    <Order><By tableName="t" columnName="diario"/></Order>
  </moxSQLDataSource>
  <moxSQLDataSource name="De todas">
    <Command type="0">select d.diario, count(*) as vezes from todas d group by d.diario</Command>
    <Columns>
      <Column tableName="d" columnName="diario" columnNameOrigin="diario" Type="1"/>
      <Column tableName="d" columnName="vezes" columnNameOrigin="vezes" Type="2"/>
    </Columns>
    <Order><By tableName="d" columnName="diario"/></Order>
  </moxSQLDataSource>
</moxZYNCollection>)xml";

/// A step of a run that gives no rows: threads wait there for each other.
class MeetingPoint final : public virtual moxDataSourceExecution {
 public:
  explicit MeetingPoint(std::barrier<>& barrier) : barrier_(barrier) {}

  std::string name() const override { return "meetingPoint"; }
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext>,
                          std::string const&) const override {
    barrier_.arrive_and_wait();
    return true;
  }
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const&) const override {}
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }

 private:
  std::barrier<>& barrier_;
};

class DerivedTemporaryTables : public OnEveryDatabase {
 protected:
  using Context = std::shared_ptr<moxDataSourceExecutionContext>;
  using List = std::vector<moxDataSourceToProcess>;

  DerivedTemporaryTables() {
    db.run("create table notas (unidade int, diario varchar(40), nota double)");
    db.run(
        "insert into notas values (1, '[U1] A', 4), (1, '[U1] A', 8), (1, '[U1] B', 5), "
        "(2, '[U2] C', 9)");
    shareDefinitions(host_, kDefinitions);
    sessions_ = openUnitSessions(host_, kUnits, kUnits);
  }

  void append(Names const& names, List& list) {
    for (auto const& name : names) {
      auto const source = std::dynamic_pointer_cast<moxDataSource>(cache_->getCollection(name));
      list.push_back({name, {false, source->createExecution()}});
    }
  }

  Context processed(List const& list) {
    auto context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    context->processDataSources(nullptr, list, {}, 0);
    return context;
  }

  /// As the session of that place, on the calling thread.
  Context runAs(std::size_t place, Names const& names) {
    SessionScope const scope(sessions_[place]);
    List list;
    append(names, list);
    return processed(list);
  }

  /// Both tables are written before anybody reads one.
  Context runAs(std::size_t place, std::barrier<>& barrier) {
    SessionScope const scope(sessions_[place]);
    List list;
    append({"Notas", "totais", "todas"}, list);
    list.push_back({"encontro", {false, std::make_shared<MeetingPoint>(barrier)}});
    append({"Dos totais", "De todas"}, list);
    return processed(list);
  }

  static std::shared_ptr<moxDataMatrix> totalsOf(std::size_t place) {
    if (place == 0) {
      return matrix({{"diario", texts("[U1] A", "[U1] B")},
                     {"media", doubles(6.0, 5.0)},
                     {"data_count", ints(2, 1)}});
    }
    return matrix({{"diario", texts("[U2] C")}, {"media", doubles(9.0)}, {"data_count", ints(1)}});
  }

  static std::shared_ptr<moxDataMatrix> timesOf(std::size_t place) {
    if (place == 0) {
      return matrix({{"diario", texts("[U1] A", "[U1] B")}, {"vezes", ints(4, 2)}});
    }
    return matrix({{"diario", texts("[U2] C")}, {"vezes", ints(2)}});
  }

  static bool isOwn(moxDataSourceExecutionContext const& context, std::size_t place) {
    return sameMatrix(*context.getDataMatrix("Dos totais"), *totalsOf(place)) &&
           sameMatrix(*context.getDataMatrix("De todas"), *timesOf(place));
  }

  /// One user's runs beside another's; a failure lets the other one go on.
  void runRounds(std::size_t place, std::barrier<>& barrier) {
    try {
      for (int round = 0; round < kRounds; ++round) {
        faults_ += isOwn(*runAs(place, barrier), place) ? 0 : 1;
      }
    } catch (moxError const&) {
      ++faults_;
      barrier.arrive_and_drop();
    }
  }

  TestHost host_{db.url()};
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::vector<std::shared_ptr<mox::core::Session>> sessions_;
  std::atomic<int> faults_ = 0;
};

MOX_ON_EVERY_DATABASE(DerivedTemporaryTables);

TEST_P(DerivedTemporaryTables, RunsForTwoUnitsAtOnceReadEachItsOwnRows) {
  std::barrier<> barrier(kUnits);
  std::vector<std::thread> threads;
  for (std::size_t place = 0; place < kUnits; ++place) {
    threads.emplace_back([&, place] { runRounds(place, barrier); });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(faults_, 0);
}

TEST_P(DerivedTemporaryTables, RunsForTwoUnitsOneBehindTheOtherReadEachItsOwnRows) {
  Names const names{"Notas", "totais", "todas", "Dos totais", "De todas"};
  for (std::size_t const place : {0U, 1U, 0U, 0U, 1U}) {
    EXPECT_TRUE(isOwn(*runAs(place, names), place)) << "as the user of unit " << place + 1;
  }
}

TEST_P(DerivedTemporaryTables, ARunWithoutRowsLeavesNoneOfTheRunAhead) {
  runAs(0, {"Notas", "totais", "todas"});
  db.run("delete from notas where unidade = 2");
  auto const context = runAs(1, {"Notas", "todas", "De todas"});
  EXPECT_THAT(context->getDataMatrix("De todas"),
              isMatrix({{"diario", texts()}, {"vezes", ints()}}));
}

TEST_P(DerivedTemporaryTables, ANextSessionOfTheThreadFindsNoTableOfTheOneAhead) {
  runAs(0, {"Notas", "totais", "todas"});
  for (auto const* name : {"Dos totais", "De todas"}) {
    EXPECT_TRUE(failureOf([&] { runAs(1, Names{name}); })) << name;
  }
}

TEST_P(DerivedTemporaryTables, TablesStayForAsLongAsTheirRun) {
  auto const context = runAs(0, {"Notas", "totais", "todas"});
  for (auto const* name : {"Dos totais", "De todas"}) {
    EXPECT_FALSE(failureOf([&] { runAs(0, Names{name}); })) << name;
  }
}

TEST_P(DerivedTemporaryTables, AThreadOfItsOwnFindsNoTableOfAnother) {
  runAs(0, {"Notas", "totais", "todas"});
  int failed = 0;
  std::thread([&] {
    for (auto const* name : {"Dos totais", "De todas"}) {
      failed += failureOf([&] { runAs(1, Names{name}); }) ? 1 : 0;
    }
  }).join();
  EXPECT_EQ(failed, 2);
}

}  // namespace

}  // namespace mox_test
