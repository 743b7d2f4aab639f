#include "zyn/datasources/join_data_source_execution.h"

#include "zyn/operations/matrix_joining.h"

namespace {

JoinedSource asJoined(moxJoinDataSource::JoinData const& source,
                      std::shared_ptr<moxDataMatrix> matrix) {
  JoinedSource joined{source.sourceName, std::move(matrix), {}, {}};
  for (auto const& column : source.columns) {
    joined.columns.push_back({column.columnName, column.columnAlias});
  }
  for (auto const& join : source.joins) {
    joined.conditions.push_back({join.columnNameOrigin, join.columnNameJoin});
  }
  return joined;
}

}  // namespace

bool JoinDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  MatrixJoining joining;
  for (auto const& source : definition().sources()) {
    auto matrix = input(*context, source.sourceName);
    if (!matrix) {
      return false;
    }
    joining.addSource(asJoined(source, std::move(matrix)));
  }
  bool const registered = context->registerDataMatrix(resultName(targetName), joining.process());
  return registered || !joining.hasSourceWithoutRows();
}
