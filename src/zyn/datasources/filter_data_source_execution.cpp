#include "zyn/datasources/filter_data_source_execution.h"

#include "mox/zyn/datasources/data_source_execution_context.h"

bool FilterDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const resultName = targetName.empty() ? dataSource_->getName() : targetName;
  auto const changed = dataSource_->getDataSourceName();
  return context->registerDataMatrix(
      resultName, context->getDataMatrix(externalRelations_.nameInContext(changed)));
}
