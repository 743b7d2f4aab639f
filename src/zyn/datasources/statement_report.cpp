#include "zyn/datasources/statement_report.h"

#include <algorithm>
#include <utility>

namespace {

using Origins = StatementFilters::Origins;

std::string testedColumn(moxDataMatrixSQLFilter const& filter) {
  auto const table = filter.getTableName();
  return table.empty() ? filter.getColumnName() : table + '.' + filter.getColumnName();
}

/// The loader composes the parameters as they were added, one by one.
moxRunPart parameterPart(moxComposedFilter const& composed, StatementFilterOrigin const& origin) {
  return {.sql = {},
          .column = origin.column,
          .origin = origin.origin,
          .originName = origin.originName,
          .values = composed.values};
}

moxRunPart conditionPart(moxComposedFilter const& composed, Origins const& origins) {
  moxRunPart part;
  part.sql = composed.sql;
  part.column = testedColumn(*composed.filter);
  part.origin = moxRunOrigin::kUnitRule;
  part.values = composed.values;
  auto const known = std::find_if(origins.begin(), origins.end(), [&](auto const& origin) {
    return origin.filter == composed.filter;
  });
  if (known != origins.end()) {
    part.origin = known->origin;
    part.originName = known->originName;
    part.column = known->column.empty() ? part.column : known->column;
  }
  return part;
}

}  // namespace

void recordStatement(RunRecorder& recorder, moxComposedSelect const& select,
                     StatementFilters const& filters) {
  moxRunStatement statement;
  statement.sql = select.sql;
  for (std::size_t i = 0; i < select.parameters.size(); ++i) {
    statement.parameters.push_back(parameterPart(select.parameters[i], filters.parameters().at(i)));
    recorder.filterUsed(select.parameters[i].filter);
  }
  for (auto const& condition : select.conditions) {
    if (condition.sql.empty() && condition.values.empty()) {
      recorder.filterIgnored(condition.filter, "it has neither a condition nor a value");
      continue;
    }
    statement.conditions.push_back(conditionPart(condition, filters.conditions()));
    recorder.filterUsed(condition.filter);
  }
  recorder.statement(std::move(statement));
}

void recordUnused(RunRecorder& recorder, ManagedFilters const& managed) {
  for (auto const& filter : managed.unused()) {
    recorder.filterIgnored(filter,
                           "the filter manager relates it to no column and no token of the source");
  }
}
