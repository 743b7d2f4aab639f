#include <atomic>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/database_connection.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "mox/zyn/items/zyn_cache.h"
#include "support/many_threads.h"
#include "support/matrix_builder.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using namespace mox_test;
using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 20;
constexpr int kSessions = 32;
constexpr int kUnits = 4;

constexpr char const* kDefinitions = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Notas">
    <Command type="1"><from>notas n</from></Command>
    <unidadeColumn tableName="n" columnName="unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="unidade" columnNameOrigin="unidade" Type="2">
        <sql index="0">n.unidade</sql>
      </Column>
      <Column tableName="n" columnName="turma" columnNameOrigin="turma" Type="1">
        <sql index="1">n.turma</sql>
      </Column>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4">
        <sql index="2">n.nota</sql>
      </Column>
    </Columns>
  </moxSQLDataSource>
  <moxAggregationDataSource name="Medias" dataSource="Notas" countColumn="1">
    <moxDataMatrixAggregator>
      <Indexes><Index name="turma"/></Indexes>
      <Functions><moxDoubleAvg source="nota" target="media"/><moxTextLast source="turma" target="t"/></Functions>
    </moxDataMatrixAggregator>
  </moxAggregationDataSource>
  <moxSorterDataSource name="Em ordem" source="Medias" userDefined="yes" description="Ordenar por">
    <column name="turma" desc="Turma" dir="desc"/>
  </moxSorterDataSource>
  <moxAggregationDataSource name="totais" dataSource="Notas" generateTempTable="1">
    <moxDataMatrixAggregator>
      <Functions><moxIntegralMin source="unidade" target="menor"/>
        <moxIntegralMax source="unidade" target="maior"/></Functions>
    </moxDataMatrixAggregator>
  </moxAggregationDataSource>
  <moxSQLDataSource name="Dos totais">
    <Command type="0">select menor, maior from totais</Command>
    <Columns>
      <Column columnName="menor" Type="2"/>
      <Column columnName="maior" Type="2"/>
    </Columns>
  </moxSQLDataSource>
</moxZYNCollection>)xml";

class AggregationDataSourceThreads : public testing::Test {
 protected:
  AggregationDataSourceThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute("create table notas (unidade int, turma varchar(10), nota double)");
    for (int unit = 1; unit <= kUnits; ++unit) {
      auto const text = std::to_string(unit);
      database.execute("insert into notas values (" + text + ", 'A', " + text + "), (" + text +
                       ", 'B" + text + "', 5), (" + text + ", 'A', " + text + " + 2)");
    }
    shareDefinitions(host_, kDefinitions);
    sessions_ = openUnitSessions(host_, kSessions, kUnits);
  }

  std::shared_ptr<moxDataMatrix> run(std::vector<std::string> const& names) {
    auto const context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    std::vector<moxDataSourceToProcess> list;
    for (auto const& name : names) {
      auto const item = cache_->getCollection(name);
      auto const source = std::dynamic_pointer_cast<moxDataSource>(item);
      list.push_back({name, {false, source->createExecution()}});
    }
    context->processDataSources(nullptr, list, {}, 0);
    return context->getDataMatrix(names.back());
  }

  void expect(std::shared_ptr<moxDataMatrix> const& actual,
              std::vector<NamedCells> const& expected) {
    if (!actual || !sameMatrix(*actual, *matrix(expected))) {
      ++faults_;
    }
  }

  template <class Work>
  void runInSessions(Work const& work) {
    runInThreads(kThreads, kRounds, kSessions, [&](int number) {
      SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
      work(number % kUnits + 1);
    });
  }

  TemporaryDirectory directory_;
  TestHost host_{"sqlite:" + (directory_.path() / "notas.db").string() + "?mode=rwc"};
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::vector<std::shared_ptr<Session>> sessions_;
  std::atomic<int> faults_ = 0;
};

}  // namespace

TEST_F(AggregationDataSourceThreads, EightThreadsAggregateAndSortByOneDefinitionAtOnce) {
  runInSessions([&](int unit) {
    auto const own = "B" + std::to_string(unit);
    expect(run({"Notas", "Medias", "Em ordem"}), {{"turma", texts(own, "A")},
                                                  {"media", doubles(5.0, unit + 1.0)},
                                                  {"t", texts(own, "A")},
                                                  {"data_count", ints(1, 2)}});
  });
  EXPECT_EQ(faults_, 0);
}

TEST_F(AggregationDataSourceThreads, TemporaryTablesOfOneNameAreEachThreadsOwn) {
  runInSessions([&](int unit) {
    expect(run({"Notas", "totais", "Dos totais"}), {{"menor", ints(unit)}, {"maior", ints(unit)}});
  });
  EXPECT_EQ(faults_, 0);
}

TEST_F(AggregationDataSourceThreads, EightThreadsReadOneDefinitionAtOnce) {
  auto const columns =
      std::dynamic_pointer_cast<moxDataSource>(cache_->getCollection("Medias"))->getColumns();
  runInSessions([&](int) {
    auto const means = std::dynamic_pointer_cast<moxDataSource>(cache_->getCollection("Medias"));
    auto const sorter = std::dynamic_pointer_cast<moxDataSource>(cache_->getCollection("Em ordem"));
    auto const option =
        std::dynamic_pointer_cast<moxSorterDataSourceOption const>(sorter->options().at(0));
    bool const same = means->getColumns() == columns && option->getName() == "Ordenar por" &&
                      sorter->getRelatedDataSources(true).size() == 2;
    faults_ += same ? 0 : 1;
  });
  EXPECT_EQ(faults_, 0);
}
