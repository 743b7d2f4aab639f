#include "zyn/datasources/aggregation_data_source_execution.h"

#include <algorithm>
#include <vector>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "zyn/datasources/temporary_tables.h"

namespace {

using Column = std::shared_ptr<moxDataMatrixColumn>;
using Functions = std::vector<std::shared_ptr<moxAggregationFunction>>;

unsigned int keysIn(moxDataMatrix const& input, moxDataMatrixAggregator const& aggregator) {
  auto const indexes = aggregator.getIndexes();
  return static_cast<unsigned int>(std::count_if(
      indexes.begin(), indexes.end(),
      [&](std::string const& index) { return input.columnByName(index) != nullptr; }));
}

/// The columns of an aggregator's result that only served to compute others. They are told by their
/// places, since a name may stand for a key or a target as well; `place` is that of the first
/// column of the functions.
std::vector<Column> metaColumns(moxDataMatrix& result, Functions const& functions,
                                unsigned int place) {
  std::vector<Column> found;
  for (auto const& function : functions) {
    auto const names = function->getMetaColumns();
    for (auto const& made : function->columns()) {
      bool const isMeta =
          made && std::find(names.begin(), names.end(), made->getName()) != names.end();
      auto const column = made ? result.columnAt(place++) : nullptr;
      if (isMeta && column && column->getName() == made->getName()) {
        found.push_back(column);
      }
    }
  }
  return found;
}

void dropMetaColumns(moxDataMatrix& result, moxDataMatrix const& input,
                     moxDataMatrixAggregator& aggregator) {
  auto const functions = aggregator.getFunctions();
  bool const any = std::any_of(functions.begin(), functions.end(), [](auto const& function) {
    return !function->getMetaColumns().empty();
  });
  if (!any) {
    return;
  }
  for (auto const& column : metaColumns(result, functions, keysIn(input, aggregator))) {
    result.dropColumn(column);
  }
}

/// An aggregator counts nothing where no rows are. Whoever reads the result would stumble over the
/// declared column on such days alone.
void addEmptyCount(moxDataMatrix& result) {
  auto const column = moxApp->get<moxDataMatrixIntColumn>("moxDataMatrixIntColumn");
  column->setName(AggregationDataSource::kCountColumn);
  result.addColumn(column);
}

}  // namespace

bool AggregationDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const matrix = input(*context, definition().getDataSourceName());
  if (!matrix) {
    return false;
  }
  auto const target = resultName(targetName);
  bool const intoTable = definition().getGerarTabelaTemporaria();
  if (intoTable) {
    dropWithRun(*context, target);
  }
  auto const aggregator = definition().getAggregator();
  auto const result = aggregator->aggregate(matrix, definition().getCountColumn(),
                                            intoTable ? target : std::string());
  if (!result) {
    return false;
  }
  if (!intoTable) {
    dropMetaColumns(*result, *matrix, *aggregator);
    if (definition().getCountColumn() && matrix->rowCount() == 0) {
      addEmptyCount(*result);
    }
  }
  return context->registerDataMatrix(target, result);
}
