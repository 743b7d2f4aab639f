#include "zyn/datasources/sql_data_source_execution.h"

#include <stdexcept>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/datasources/offered_filters.h"
#include "zyn/datasources/related_values.h"
#include "zyn/datasources/run_recorder.h"
#include "zyn/datasources/sql_statement_run.h"

namespace {

std::string quoted(std::string const& name) {
  return "\"" + name + "\"";
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
  restrict(run, *context);
  run.addFixedConditions(filterSources_);
  run.execute();
  return context->registerDataMatrix(resultName, run.matrix());
}

void SQLDataSourceExecution::restrict(SQLStatementRun& run,
                                      moxDataSourceExecutionContext const& context) const {
  if (relation_.filterDataSource.empty()) {
    return;
  }
  auto const filter = createDataSourceFilter(context);
  if (filter) {
    run.restrict(filter, relation_.filterDataSource, relation_.columnFilter);
  }
  recordWiring(context, [&] { return filter ? restriction() : whyUnrestricted(context); });
}

std::string SQLDataSourceExecution::restriction() const {
  return "restricted by the values of column " + quoted(relation_.columnRelation) + " of " +
         quoted(relation_.filterDataSource) + ", which its column " +
         quoted(relation_.columnFilter) + " must be among";
}

std::string SQLDataSourceExecution::whyUnrestricted(
    moxDataSourceExecutionContext const& context) const {
  auto const source = quoted(relation_.filterDataSource);
  auto const column = quoted(relation_.columnRelation);
  auto const matrix = context.getDataMatrix(relation_.filterDataSource);
  if (!matrix) {
    return "not restricted by " + source + ": there is no matrix of that name ahead of it";
  }
  return matrix->columnByName(relation_.columnRelation)
             ? "not restricted by " + source + ": column " + column + " holds dates or blobs"
             : "not restricted by " + source + ": it has no column " + column;
}

void SQLDataSourceExecution::setDataSourceExternalRelation(
    std::vector<std::pair<std::string, std::string>> const& relations) const {
  externalRelations_ = relations;
}

std::vector<std::shared_ptr<moxFilterSpecification const>> SQLDataSourceExecution::getFilters()
    const {
  return offeredFilters(dataSource_->getFilters(), managers_, filterSources_);
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
