#include "core/run/explanation.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "core/run/chain.h"
#include "core/run/group_members.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/search/search.h"

namespace mox::core {

namespace {

std::string conditionsOf(moxDataSource const& source) {
  auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source);
  bool const inPieces = sql != nullptr && sql->getSQLTipo() == moxSQLDataSource::kComposed;
  return inPieces ? sql->getSQLWhere() : std::string();
}

/// By the sources' names in the run. Two groups may have members of one name; then nothing is said
/// of either.
std::map<std::string, std::string> conditionsBySource(DefinitionRun const& run) {
  auto sources = namedMembers(run.sources());
  for (auto const& source : run.sources()) {
    sources.emplace_back(source->getName(), source);
  }
  std::map<std::string, std::string> conditions;
  for (auto const& [name, source] : sources) {
    auto const own = conditionsOf(*source);
    auto const [known, isNew] = conditions.emplace(name, own);
    if (!isNew && known->second != own) {
      known->second.clear();
    }
  }
  std::erase_if(conditions, [](auto const& entry) { return entry.second.empty(); });
  return conditions;
}

SearchExplanation explainSearch(moxSearch const& search, moxDataSource const& source) {
  SearchExplanation explanation{.name = search.description(),
                                .columns = {},
                                .sortColumn = {},
                                .sortDescending = !search.getInitialOrderAscending(),
                                .problem = {}};
  for (auto const& column : source.getColumns()) {
    explanation.columns.push_back(column.first);
  }
  try {
    if (auto const column = search.getInitialOrderColumn()) {
      explanation.sortColumn = column->getColumnName();
    }
  } catch (moxError const& error) {
    explanation.problem = error.errorMessage();
  }
  return explanation;
}

/// Of a sorter the order that its user asked for takes the place of the one that it has.
std::string deedOf(moxDataSource const& source, std::vector<SortAnswer> order) {
  std::erase_if(order, [&](SortAnswer const& answer) { return answer.source != source.getName(); });
  return order.empty() ? whatItDoes(source) : "sorts by " + sortText(order) + ", as its user asks";
}

std::map<std::string, StepExplanation> stepsOf(DefinitionRun const& run) {
  std::map<std::string, StepExplanation> steps;
  for (auto const& source : run.sources()) {
    steps[source->getName()] = {inputNamesOf(*source), deedOf(*source, run.order()),
                                !changesData(*source)};
  }
  return steps;
}

}  // namespace

Explanation explain(DefinitionRun const& run, DefinitionRun::Report kind, std::string error) {
  Explanation explanation{.definition = run.definition()->getName(),
                          .composedOnly = kind == DefinitionRun::Report::kComposeOnly,
                          .filters = run.filters(),
                          .report = run.report(),
                          .definitionConditions = conditionsBySource(run),
                          .error = std::move(error),
                          .wiring = readWiring(*run.definition()),
                          .search = {},
                          .order = run.order(),
                          .steps = stepsOf(run),
                          .chainProblems = run.problems()};
  if (run.search()) {
    explanation.search = explainSearch(*run.search(), *run.definition());
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
