#include "core/run/explanation.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mox/zyn/datasources/sql_data_source.h"

namespace mox::core {

namespace {

std::string conditionsOf(moxDataSource const& source) {
  auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source);
  bool const inPieces = sql != nullptr && sql->getSQLTipo() == moxSQLDataSource::kComposed;
  return inPieces ? sql->getSQLWhere() : std::string();
}

}  // namespace

Explanation explain(DefinitionRun const& run, DefinitionRun::Report kind, std::string error) {
  Explanation explanation{.definition = run.definition()->getName(),
                          .composedOnly = kind == DefinitionRun::Report::kComposeOnly,
                          .filters = run.filters(),
                          .report = run.report(),
                          .definitionConditions = {},
                          .error = std::move(error)};
  for (auto const& source : run.sources()) {
    if (auto conditions = conditionsOf(*source); !conditions.empty()) {
      explanation.definitionConditions[source->getName()] = std::move(conditions);
    }
  }
  return explanation;
}

std::string originKey(moxRunOrigin origin) {
  switch (origin) {
    case moxRunOrigin::kUserFilter:
      return "user-filter";
    case moxRunOrigin::kProgramFilter:
      return "program-filter";
    case moxRunOrigin::kManager:
      return "manager";
    case moxRunOrigin::kFilterSource:
      return "filter-source";
    case moxRunOrigin::kRelation:
      return "relation";
    case moxRunOrigin::kUnsetParameter:
      return "unset-parameter";
    case moxRunOrigin::kSessionToken:
      return "session-token";
    case moxRunOrigin::kUnitRule:
      return "unit-rule";
  }
  return "unknown";
}

std::string originText(moxRunPart const& part, moxRunReport const& report) {
  switch (part.origin) {
    case moxRunOrigin::kUserFilter:
      return "the user's filter";
    case moxRunOrigin::kProgramFilter:
      return "imposed by the program";
    case moxRunOrigin::kManager:
      return "a filter given for the manager " + part.originName;
    case moxRunOrigin::kFilterSource:
      return "fixed by the filter source " + part.originName;
    case moxRunOrigin::kRelation:
      return "the values that the source " + part.originName + " gave";
    case moxRunOrigin::kUnsetParameter:
      return "declared in the definition, and no value was given";
    case moxRunOrigin::kSessionToken:
      return "what the session or the run's units say";
    case moxRunOrigin::kUnitRule:
      return "the unit rule: " + unitsText(report);
  }
  return "unknown";
}

std::string unitsText(moxRunReport const& report) {
  if (report.units.empty()) {
    return "no units";
  }
  return fmt::format("{} {}, {}", report.units.size() == 1 ? "unit" : "units",
                     fmt::join(report.units, ", "),
                     report.unitsFromSession ? "the session's default" : "named by the caller");
}

std::string valueTypeKey(moxBoundValue::Type type) {
  constexpr char const* kKeys[] = {"null", "int", "double", "text", "date", "datetime", "blob"};
  return kKeys[static_cast<std::size_t>(type)];
}

}  // namespace mox::core
