#include <atomic>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_column.h"
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
constexpr int kUnits = 4;

constexpr char const* kSchema =
    "create table notas (id int, id_unidade int, nota double, lancada_em date)";

constexpr char const* kDefinition = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Notas">
    <Command type="1"><from>notas n</from><where>n.id &gt;= {{minimo}}</where></Command>
    <unidadeColumn tableName="n" columnName="id_unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="id_unidade" columnNameOrigin="id_unidade" Type="2">
        <sql index="0">n.id_unidade</sql>
      </Column>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4">
        <sql index="1">n.nota</sql>
        <Formatters Visual="moxDecimalFormatter"><Visual precision="2" separator=","/></Formatters>
      </Column>
      <Column tableName="n" columnName="lancada_em" columnNameOrigin="lancada_em" Type="5">
        <sql index="2">n.lancada_em</sql>
        <Formatters Visual="moxDateFormatter"><Visual mask="%d/%m/%Y"/></Formatters>
      </Column>
    </Columns>
    <Order><By tableName="n" columnName="nota"/></Order>
    <Filters>
      <custom><moxIntegralUniqueFilter columnName="{{minimo}}"/></custom>
    </Filters>
  </moxSQLDataSource>
</moxZYNCollection>)xml";

class DefinitionRunThreads : public testing::Test {
 protected:
  DefinitionRunThreads() {
    auto& database = host_.application().databaseConnection();
    database.execute(kSchema);
    for (int id = 0; id < 40; ++id) {
      database.execute("insert into notas values (" + std::to_string(id) + ", " +
                       std::to_string(id % kUnits + 1) + ", " + std::to_string(id) +
                       ".25, '2024-03-09')");
    }
    shareDefinitions(host_, kDefinition);
    sessions_ = openUnitSessions(host_, kSessions, kUnits);
  }

  std::shared_ptr<moxDataMatrix> run() {
    auto const item = cache_->getCollection("Notas");
    auto const source = std::dynamic_pointer_cast<moxDataSource>(item);
    auto const context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    auto const minimum =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    minimum->setColumnName("", "{{minimo}}");
    minimum->setValue(20);
    context->setDataSourceFilters("Notas", {minimum});
    context->processDataSources(nullptr, {{"Notas", {false, source->createExecution()}}}, {}, 0);
    return context->getDataMatrix("Notas");
  }

  static std::string formatted(moxDataMatrix& matrix) {
    std::string text;
    for (auto const* name : {"nota", "lancada_em"}) {
      auto const column = matrix.columnByName(name);
      auto const cell = column->begin();
      for (; !cell->atEnd(); cell->next()) {
        text += column->getFormatter()->asString(cell) + " ";
      }
    }
    return text;
  }

  /// Grades of ids 20 and up, of the session's unit alone.
  static std::string expected(int unit) {
    std::string grades;
    std::string dates;
    for (int id = 20; id < 40; ++id) {
      if (id % kUnits + 1 == unit) {
        grades += std::to_string(id) + ",25 ";
        dates += "09/03/2024 ";
      }
    }
    return grades + dates;
  }

  void work(int number) {
    SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
    auto const matrix = run();
    if (!matrix || formatted(*matrix) != expected(number % kUnits + 1)) {
      ++faults_;
    }
  }

  TemporaryDirectory directory_;
  TestHost host_{"sqlite:" + (directory_.path() / "notas.db").string() + "?mode=rwc"};
  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::vector<std::shared_ptr<Session>> sessions_;
  std::atomic<int> faults_ = 0;
};

}  // namespace

TEST_F(DefinitionRunThreads, SixtyFourSessionsRunAndFormatOneDefinitionAtOnce) {
  runInThreads(kThreads, kRounds, kSessions, [this](int number) { work(number); });
  EXPECT_EQ(faults_, 0);
}
