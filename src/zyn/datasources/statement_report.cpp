#include "zyn/datasources/statement_report.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/core/many_values.h"
#include "mox/zyn/frame/plugin_entry.h"

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

moxValueKind kindOf(moxBoundValue const& value) {
  switch (value.type) {
    case moxBoundValue::Type::kNull:
      return moxValueKind::kNull;
    case moxBoundValue::Type::kInt:
      return moxValueKind::kInt;
    case moxBoundValue::Type::kDouble: {
      bool const isFinite = value.text.find('n') == std::string::npos;  // neither "inf" nor "nan"
      return isFinite ? moxValueKind::kDouble : moxValueKind::kOther;
    }
    case moxBoundValue::Type::kText:
      return moxValueKind::kText;
    case moxBoundValue::Type::kDate:
    case moxBoundValue::Type::kDateTime:
    case moxBoundValue::Type::kBlob:
      break;
  }
  return moxValueKind::kOther;
}

/// In the order of the marks.
std::vector<moxValueKind> kindsOf(moxRunStatement const& statement) {
  std::vector<moxValueKind> kinds;
  for (auto const* const parts : {&statement.parameters, &statement.conditions}) {
    for (auto const& part : *parts) {
      std::transform(part.values.begin(), part.values.end(), std::back_inserter(kinds), kindOf);
    }
  }
  return kinds;
}

/// Only the connection knows how many marks its database takes. Statements are put together, and
/// told of, also where there is no database.
std::string sendingOf(moxRunStatement const& statement) {
  auto const kinds = kindsOf(statement);
  if (kinds.empty()) {
    return {};
  }
  try {
    auto* const connection = dynamic_cast<moxManyValues const*>(&moxApp->databaseConnection());
    return connection == nullptr ? std::string() : connection->howSent(statement.sql, kinds);
  } catch (moxError const&) {
    return {};
  }
}

/// A source's own filters come to the run as one list, the program's among the user's.
moxRunPart ownOrigin(moxRunPart part, StatementFilters::Filter const& filter,
                     RunRecorderHolder const& report, std::string const& source) {
  if (part.origin == moxRunOrigin::kUserFilter && report.isFixedFilter(source, filter)) {
    part.origin = moxRunOrigin::kProgramFilter;
  }
  return part;
}

}  // namespace

void recordStatement(RunRecorderHolder const& report, std::string const& source,
                     moxComposedSelect const& select, StatementFilters const& filters) {
  auto& recorder = *report.runRecorder();
  moxRunStatement statement;
  statement.sql = select.sql;
  for (std::size_t i = 0; i < select.parameters.size(); ++i) {
    auto const& composed = select.parameters[i];
    statement.parameters.push_back(ownOrigin(parameterPart(composed, filters.parameters().at(i)),
                                             composed.filter, report, source));
    recorder.filterUsed(composed.filter);
  }
  for (auto const& composed : select.conditions) {
    if (composed.sql.empty() && composed.values.empty()) {
      recorder.filterIgnored(composed.filter, "it has neither a condition nor a value");
      continue;
    }
    statement.conditions.push_back(
        ownOrigin(conditionPart(composed, filters.conditions()), composed.filter, report, source));
    recorder.filterUsed(composed.filter);
  }
  for (auto const& filter : filters.leftOut()) {
    recorder.filterIgnored(filter, "no token of the statement takes its value");
  }
  statement.sending = sendingOf(statement);
  recorder.statement(std::move(statement));
}

void recordUnused(RunRecorder& recorder, ManagedFilters const& managed) {
  for (auto const& filter : managed.unused()) {
    recorder.filterIgnored(filter,
                           "the filter manager relates it to no column and no token of the source");
  }
}
