#include "zyn/datasources/union_data_source_execution.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_union.h"
#include "zyn/datasources/temporary_tables.h"

namespace {

std::vector<std::string> columnNames(moxUnionDataSource::UnionData const& source) {
  std::vector<std::string> names;
  for (auto const& column : source.columns) {
    names.push_back(column.first);
  }
  return names;
}

}  // namespace

bool UnionDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const engine = moxApp->get<moxDataMatrixUnion>("moxDataMatrixUnion");
  for (auto const& source : definition().sourceList()) {
    auto const matrix = input(*context, source.sourceName);
    if (!matrix) {
      return false;
    }
    engine->pushSourceDataMatrix(matrix, columnNames(source));
  }
  auto const result = resultName(targetName);
  auto const tableName = definition().getGerarTabelaTemporaria() ? result : std::string();
  if (!tableName.empty()) {
    dropWithRun(*context, tableName);
  }
  context->registerDataMatrix(result, engine->process(tableName));
  return true;
}
