// Unions, computed columns, cross tables and statements that change data, by definitions that many
// threads share.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "mox/core/report.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/many_threads.h"
#include "support/matrix_builder.h"
#include "support/shared_sessions.h"
#include "support/temporary_directory.h"
#include "support/test_host.h"

using namespace mox_test;
using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kThreads = 32;
constexpr int kRounds = 5;
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
      <Column tableName="n" columnName="bimestre" columnNameOrigin="bimestre" Type="2">
        <sql index="1">n.bimestre</sql>
      </Column>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4">
        <sql index="2">n.nota</sql>
      </Column>
    </Columns>
    <Order><By tableName="n" columnName="bimestre"/></Order>
  </moxSQLDataSource>
  <moxUnionDataSource name="dobro" generateTempTable="1">
    <sources>
      <source name="Notas"><moxDataMatrixIntColumn name="unidade"/>
        <moxDataMatrixIntColumn name="bimestre"/><moxDataMatrixDoubleColumn name="nota"/></source>
      <source name="Notas"><moxDataMatrixIntColumn name="unidade"/>
        <moxDataMatrixIntColumn name="bimestre"/><moxDataMatrixDoubleColumn name="nota"/></source>
    </sources>
  </moxUnionDataSource>
  <moxExpressionDataSource name="Em pontos" source="dobro">
    <expressions>
      <moxColumnExpression name="pontos" type="0">nota(0)*10</moxColumnExpression>
    </expressions>
  </moxExpressionDataSource>
  <moxDataSourcePivoting name="Boletim" source="Em pontos">
    <columns><column source="bimestre" formatter=""/></columns>
    <rows><row source="unidade"/></rows>
    <cells><cell source="pontos" aggregation="moxIntegralSum"/></cells>
  </moxDataSourcePivoting>
  <moxObjectDataSource name="Soma">
    <Sql>update contas set soma = soma + 1 where unidade = {{u}} and ativa = 1</Sql>
    <Binds><moxIntegralUniqueFilter columnName="u"/></Binds>
  </moxObjectDataSource>
</moxZYNCollection>)xml";

class PlainReport final : public moxReportExecutionContext {
 public:
  std::string name() const override { return "plainReport"; }
  std::shared_ptr<moxGenericFormatter> formatterByName(std::string const&) const override {
    return {};
  }
  void takeOver(std::shared_ptr<moxDataMatrix>, std::shared_ptr<moxPluginBase>, bool) override {}
};

class ComputedSourcesThreads : public testing::Test {
 protected:
  ComputedSourcesThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute("create table notas (unidade int, bimestre int, nota double)");
    for (int unit = 1; unit <= kUnits; ++unit) {
      auto const text = std::to_string(unit);
      database.execute("insert into notas values (" + text + ", 1, " + text + "), (" + text +
                       ", 2, " + text + ".5)");
    }
    shareDefinitions(host_, kDefinitions);
    sessions_ = openUnitSessions(host_, kSessions, kUnits);
  }

  std::shared_ptr<moxDataSourceExecutionContext> newContext() {
    auto context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    context->setReportContext(std::make_shared<PlainReport>());
    return context;
  }

  void run(moxDataSourceExecutionContext& context, std::vector<std::string> const& names) {
    std::vector<moxDataSourceToProcess> list;
    for (auto const& name : names) {
      auto const item = cache_->getCollection(name);
      auto const source = std::dynamic_pointer_cast<moxDataSource>(item);
      list.push_back({name, {false, source->createExecution()}});
    }
    context.processDataSources(nullptr, list, {}, 0);
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

TEST_F(ComputedSourcesThreads, AChainGivesEachSessionItsOwnUnitAndNoOther) {
  runInSessions([&](int unit) {
    auto const context = newContext();
    run(*context, {"Notas", "dobro", "Em pontos", "Boletim"});
    auto const expected =
        matrix({{"unidade", ints(unit)}, {"1", ints(unit * 20)}, {"2", ints(unit * 20 + 10)}});
    auto const actual = context->getDataMatrix("Boletim");
    faults_ += actual && sameMatrix(*actual, *expected) ? 0 : 1;
  });
  EXPECT_EQ(faults_, 0);
}

TEST_F(ComputedSourcesThreads, AStatementTakesTheValuesOfItsOwnRun) {
  runInSessions([&](int unit) {
    auto const value =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    value->setColumnName("", "u");
    value->setValue(unit);
    auto const context = newContext();
    context->setDataSourceFilters("Soma", {value});
    auto& reporter = dynamic_cast<moxRunReporter&>(*context);
    reporter.composeOnly();  // threads that write would wait for each other's locks
    run(*context, {"Soma"});
    auto const report = reporter.runReport();
    auto const& statement = report.sources.at(0).statements.at(0);
    bool const isOwn =
        statement.sql == "update contas set soma = soma + 1 where unidade = ? and ativa = 1" &&
        statement.parameters.at(0).values.at(0).text == std::to_string(unit);
    faults_ += isOwn ? 0 : 1;
  });
  EXPECT_EQ(faults_, 0);
}
