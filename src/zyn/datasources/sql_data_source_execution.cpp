#include "zyn/datasources/sql_data_source_execution.h"

#include <algorithm>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/datasources/related_values.h"
#include "zyn/datasources/sql_statement_run.h"

namespace {

using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
using Specification = std::shared_ptr<moxFilterSpecification const>;

bool offers(ManageFilterData const& manager, std::string const& column) {
  return std::any_of(manager.avaliable.begin(), manager.avaliable.end(),
                     [&](auto const& entry) { return entry.filterName == column; });
}

/// Whether the filter source has a condition of its own, or none on purpose, where the user would
/// give one.
bool answers(moxFilterDataSource const& filterSource, Specification const& specification) {
  auto const column = specification->getSQLDataSourceColumn();
  if (!column) {
    return false;
  }
  auto const conditions = filterSource.getFiltersSpec();
  return std::any_of(conditions.begin(), conditions.end(), [&](auto const& condition) {
    auto const origin = condition->getColumnOrigin();
    return origin.tableName == column->getTableName() &&
           origin.columnName == column->getColumnName();
  });
}

}  // namespace

SQLDataSourceExecution::SQLDataSourceExecution(std::shared_ptr<moxSQLDataSource const> dataSource)
    : dataSource_(std::move(dataSource)) {}

bool SQLDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const resultName = targetName.empty() ? dataSource_->getName() : targetName;
  SQLStatementRun run(*dataSource_, *context, resultName);
  run.compose(filterSources_);
  run.bind(managers_, context->getDataSourceFilters(resultName));
  if (auto const filter = createDataSourceFilter(*context)) {
    run.restrict(filter, relation_.filterDataSource, relation_.columnFilter);
  }
  run.addFixedConditions(filterSources_);
  run.execute();
  return context->registerDataMatrix(resultName, run.matrix());
}

void SQLDataSourceExecution::setDataSourceExternalRelation(
    std::vector<std::pair<std::string, std::string>> const& relations) const {
  externalRelations_ = relations;
}

std::vector<Specification> SQLDataSourceExecution::getFilters() const {
  auto filters = managers_.empty() ? dataSource_->getFilters() : filtersOfManagers();
  if (!filterSources_.empty()) {
    std::erase_if(filters, [this](Specification const& specification) {
      return answers(*filterSources_.front(), specification);
    });
  }
  return filters;
}

std::vector<Specification> SQLDataSourceExecution::filtersOfManagers() const {
  std::vector<Specification> filters;
  auto const offered = dataSource_->getFilters();
  for (auto const& manager : managers_) {
    std::copy_if(offered.begin(), offered.end(), std::back_inserter(filters),
                 [&](Specification const& filter) { return offers(manager, filter->getColumn()); });
  }
  return filters;
}

std::pair<std::string, std::string> SQLDataSourceExecution::getDataSourceFilterRelation() const {
  return {relation_.columnFilter, relation_.columnRelation};
}

bool SQLDataSourceExecution::setDataSourceFilterRelation(std::string const& filterDataSource,
                                                         std::string const& columnRelation,
                                                         std::string const& columnFilter) {
  if (filterDataSource.empty() || columnRelation.empty() || columnFilter.empty()) {
    return false;
  }
  relation_ = {filterDataSource, columnRelation, columnFilter};
  return true;
}

void SQLDataSourceExecution::setFiltersDataSource(
    std::vector<FilterDataSource> const& filterSources) {
  filterSources_.clear();
  for (auto const& filterSource : filterSources) {
    addFiltersDataSource(filterSource);
  }
}

void SQLDataSourceExecution::setManageFiltersData(std::vector<ManageFilterData> const& managers) {
  managers_ = managers;
}

void SQLDataSourceExecution::addFiltersDataSource(FilterDataSource filterSource) {
  if (!filterSource) {
    throw std::invalid_argument("a filter source of a run must not be empty");
  }
  filterSources_.push_back(std::move(filterSource));
}

void SQLDataSourceExecution::addManageFiltersData(ManageFilterData const& manager) {
  managers_.push_back(manager);
}

void SQLDataSourceExecution::clearDataSourceFilter() const {
  relation_ = {};
}

std::shared_ptr<moxDataMatrixSQLFilter> SQLDataSourceExecution::createDataSourceFilter(
    moxDataSourceExecutionContext const& context) const {
  if (relation_.filterDataSource.empty()) {
    return {};
  }
  auto const matrix = context.getDataMatrix(relation_.filterDataSource);
  auto const column = matrix ? matrix->columnByName(relation_.columnRelation) : nullptr;
  return column ? filterByValues(*column, relation_.columnFilter) : nullptr;
}
