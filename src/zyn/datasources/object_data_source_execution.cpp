#include "zyn/datasources/object_data_source_execution.h"

#include <algorithm>

#include "mox/core/application.h"
#include "mox/core/database_connection.h"
#include "mox/core/error.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/composed_select.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "zyn/datasources/run_recorder.h"
#include "zyn/datasources/statement_filters.h"
#include "zyn/datasources/statement_report.h"
#include "zyn/datasources/unset_values_filter.h"

namespace {

using Filter = StatementFilters::Filter;
using Statement = std::shared_ptr<moxDatabaseConnection::PreparedStatement>;

/// What a specification puts into its marks.
struct Parameter {
  Filter filter;  // never empty
  std::string column;
  int valueCount;  // 0 for any
  bool isSet;      // in the context; otherwise the values are nulls
};

using Parameters = std::vector<Parameter>;

Parameter parameterOf(moxFilterSpecification const& specification,
                      std::vector<Filter> const& given) {
  auto const column = specification.getColumn();
  int const count = specification.bindCount();
  auto const found = std::find_if(given.begin(), given.end(), [&](Filter const& filter) {
    return filter->getColumnName() == column;
  });
  if (found != given.end()) {
    return {*found, column, count, true};
  }
  return {std::make_shared<UnsetValuesFilter>(column, count), column, count, false};
}

/// In the order of binding.
Parameters parametersOf(moxObjectDataSource const& dataSource, std::vector<Filter> const& given) {
  Parameters parameters;
  for (auto const& specification : dataSource.filters().get()) {
    if (specification) {
      parameters.push_back(parameterOf(*specification, given));
    }
  }
  return parameters;
}

/// A range with an open end, say, would hand its second mark to whatever comes next, and the
/// statement would change other rows than those that were meant.
void requireCount(Parameter const& parameter, int bound) {
  if (parameter.valueCount > 0 && bound != parameter.valueCount) {
    throw moxDefaultErrorImpl<moxError>(
        "Quantidade de valores inválida para o filtro " + parameter.column,
        {"its place in the statement takes " + std::to_string(parameter.valueCount) +
         ", and it has " + std::to_string(bound)});
  }
}

void bind(Parameters const& parameters, Statement const& statement) {
  int position = 0;
  for (auto const& parameter : parameters) {
    int const first = position;
    parameter.filter->bind(statement, &position);
    requireCount(parameter, position - first);
  }
}

/// A loader knows what filters bind without a database; this one never executes.
void record(RunRecorderHolder const& report, std::string const& source, std::string const& query,
            Parameters const& parameters) {
  auto const loader = moxApp->get<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader");
  auto const* const composer = dynamic_cast<moxSelectComposer const*>(loader.get());
  if (composer == nullptr) {
    return;
  }
  loader->setDataMatrix(moxApp->get<moxDataMatrix>("moxDataMatrix"));
  loader->setSql(query, {}, "where", false);
  StatementFilters filters(*loader, true);
  for (auto const& parameter : parameters) {
    filters.addParameter(
        parameter.filter, parameter.column,
        parameter.isSet ? moxRunOrigin::kUserFilter : moxRunOrigin::kUnsetParameter);
  }
  recordStatement(report, source, composer->compose({}, 0), filters);
}

}  // namespace

bool ObjectDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const source = resultName(targetName);
  auto const parameters = parametersOf(definition(), context->getDataSourceFilters(source));
  auto const query = parse(definition().getSQL()).query;
  if (auto const* const report = reportOf(*context)) {
    record(*report, source, query, parameters);
    if (!report->runRecorder()->mayChangeData()) {
      return true;
    }
  }
  auto const statement = moxApp->databaseConnection().prepare(query, "", "where");
  bind(parameters, statement);
  statement->execute();
  return true;
}
