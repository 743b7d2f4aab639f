#include "zyn/datasources/filter_data_source_execution.h"

#include "mox/zyn/datasources/data_source_execution_context.h"

bool FilterDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  return context->registerDataMatrix(resultName(targetName),
                                     input(*context, definition().getDataSourceName()));
}
