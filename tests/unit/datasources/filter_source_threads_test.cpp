#include <atomic>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/many_threads.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kSessions = 64;
constexpr int kThreads = 8;
constexpr int kRounds = 3;

constexpr char const* kShared = R"xml(
  <moxSQLDataSource name="Notas">
    <Command type="1"><from>notas n</from></Command>
    <Columns><Column tableName="n" columnName="id" columnNameOrigin="id" Type="2">
      <sql index="0">n.id</sql></Column></Columns>
  </moxSQLDataSource>
  <moxFilterDataSource name="Escolhidas" dataSource="Notas">
    <where>n.id &gt;= 10</where>
    <Filters>
      <Valor tableName="n" columnNameOrigin="turma"><value>1</value><value>2</value></Valor>
      <Sql tableName="n" columnNameOrigin="turma"><SQL>select 2 union select 3</SQL></Sql>
    </Filters>
    <selectColumns tipo="0"><column columnName="dobro" Type="2">
      <sql alias="dobro">[id] * 2</sql><columnSourceOrigin tableName="n" columnName="id"/>
    </column></selectColumns>
  </moxFilterDataSource>
  <moxManageFilterDataSource name="Tela"><sources><source name="Notas">
    <related><filter columnNameOrigin="id" tableName="n" columnName="id" filterNameRelac="Nota"/>
    </related></source></sources></moxManageFilterDataSource>)xml";

constexpr char const* kOwn = R"xml(
  <moxSQLDataSource name="Notas"><Command type="0">select 1</Command><Columns>
    <Column columnName="minha" Type="1"/><Column columnName="outra" Type="1"/>
  </Columns></moxSQLDataSource>)xml";

/// Every other session has a query of its own under the name that the shared filter source changes.
class FilterSourceThreads : public testing::Test {
 protected:
  FilterSourceThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute("create table notas (id int, turma int)");
    for (int id = 0; id < 40; ++id) {
      database.execute("insert into notas values (" + std::to_string(id) + ", " +
                       std::to_string(id % 4) + ")");
    }
    cache_->appendCollection(collection(kShared));
    filter_ = found<moxFilterDataSource>("Escolhidas");
    manager_ = found<moxManageFilterDataSource>("Tela");
    notas_ = found<moxDataSource>("Notas");
    for (int i = 0; i < kSessions; ++i) {
      sessions_.push_back(host_.application().sessions().open({.id = i + 1}));
      if (i % 2 == 0) {
        SessionScope const scope(sessions_.back());
        host_.get<moxZYNSessionCache>("moxZYNSessionCache")->appendCollection(collection(kOwn));
      }
    }
  }

  std::shared_ptr<moxZYNCollection> collection(std::string const& items) {
    return readCollection(host_, "<moxZYNCollection>" + items + "</moxZYNCollection>");
  }

  template <class T>
  std::shared_ptr<T const> found(std::string const& name) {
    return std::dynamic_pointer_cast<T const>(cache_->getCollection(name));
  }

  /// Rows of the run whose screen asks for that grade.
  unsigned int rowsOf(int id) {
    auto const execution =
        std::dynamic_pointer_cast<moxSQLDataSourceExecution>(notas_->createExecution());
    execution->addFiltersDataSource(filter_);
    for (auto const& record : manager_->getSources()) {
      execution->addManageFiltersData({"Tela", record.avaliable, record.related});
    }
    auto const context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    auto const asked =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    asked->setColumnName("", "Nota");
    asked->setValue(id);
    context->setDataSourceFilters("Tela", {asked});
    context->processDataSources({},
                                {{"Notas", {false, execution}},
                                 {"Tela", {false, manager_->createExecution()}},
                                 {"Escolhidas", {false, filter_->createExecution()}}},
                                {}, 0);
    return context->getDataMatrix("Escolhidas")->rowCount();
  }

  void work(int number) {
    SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
    bool const hasOwn = number % 2 == 0;
    auto const id = number % 40;
    unsigned int const expected = id >= 10 && id % 4 == 2 ? 1 : 0;
    if (filter_->getColumns().size() != (hasOwn ? 3u : 2u) ||
        filter_->getRelatedDataSources(true).size() != 1u ||
        manager_->getRelatedDataSources(true).size() != 1u || rowsOf(id) != expected) {
      ++faults_;
    }
  }

  TemporaryDirectory directory_;
  TestHost host_{"sqlite:" + (directory_.path() / "notas.db").string() + "?mode=rwc"};
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::shared_ptr<moxFilterDataSource const> filter_;
  std::shared_ptr<moxManageFilterDataSource const> manager_;
  std::shared_ptr<moxDataSource const> notas_;
  std::vector<std::shared_ptr<Session>> sessions_;
  std::atomic<int> faults_ = 0;
};

}  // namespace

TEST_F(FilterSourceThreads, SixtyFourSessionsShareOneFilterSourceAndOneManager) {
  runInThreads(kThreads, kRounds, kSessions, [this](int number) { work(number); });
  EXPECT_EQ(faults_, 0);
}
