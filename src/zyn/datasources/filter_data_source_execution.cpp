#include "zyn/datasources/filter_data_source_execution.h"

#include <algorithm>

#include "mox/zyn/datasources/data_source_execution_context.h"

bool FilterDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const resultName = targetName.empty() ? dataSource_->getName() : targetName;
  return context->registerDataMatrix(resultName, context->getDataMatrix(inputName()));
}

/// The name that the changed source bears in the context.
std::string FilterDataSourceExecution::inputName() const {
  auto const named = dataSource_->getDataSourceName();
  auto const related = std::find_if(externalRelations_.begin(), externalRelations_.end(),
                                    [&](auto const& relation) { return relation.first == named; });
  return related != externalRelations_.end() ? related->second : named;
}
