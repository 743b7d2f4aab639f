#include "zyn/datasources/pivot_data_source_execution.h"

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/core/report.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_pivoting.h"

namespace {

[[noreturn]] void fail(std::string const& message) {
  throw moxDefaultErrorImpl<moxError>(message);
}

void describe(moxPivotDataSource const& definition, moxReportExecutionContext const& report,
              moxDataMatrixPivoting& engine) {
  for (auto const& [column, formatter] : definition.getColumnsPivot()) {
    engine.addColumn(column, report.formatterByName(formatter));
  }
  for (auto const& [column, aggregation] : definition.getCellsPivot()) {
    engine.addCell(column, aggregation);
  }
  for (auto const& column : definition.getRowsPivot()) {
    engine.addRow(column);
  }
}

}  // namespace

bool DataSourcePivotingExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const definedName = definition().getDataSourceName();
  auto const matrix = input(*context, definedName);
  if (!matrix) {
    fail("Fonte de dados " + definedName + " não localizada.");
  }
  auto const engine = moxApp->get<moxDataMatrixPivoting>("moxDataMatrixPivoting");
  auto const report = context->getReportContext();
  if (!report) {
    fail("Contexto de relatório não informado.");
  }
  describe(definition(), *report, *engine);
  std::vector<moxDataMatrixPivoting::Relation> relation;
  auto const result = engine->process(matrix, &relation);
  context->registerDataMatrix(resultName(targetName), result);
  report->takeOver(result, std::make_shared<DataSourcePivoting::ProcessRelation>(relation), true);
  return true;
}
