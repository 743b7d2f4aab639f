#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/run/definition_run.h"
#include "core/run/wiring.h"
#include "mox/zyn/datasources/run_report.h"

namespace mox::core {

/// What a search does to the rows of its source.
struct SearchExplanation {
  std::string name;
  std::vector<std::string> columns;  // the order that they are put in
  std::string sortColumn;            // empty: the rows stay in the order of the source
  bool sortDescending = false;
  std::string problem;  // why the sort column cannot be found; empty
};

/// What a source of a chain reads and does.
struct StepExplanation {
  std::vector<std::string> reads;  // in the order of its definition; none for a query
  std::string does;                // in words that follow its name; empty for a query
  bool givesRows = true;           // not those that are run for what they change
};

/// Why the result of a run is what it is: what was asked, what was sent, and where each part came
/// from.
struct Explanation {
  std::string definition;  // by its name in the run
  bool composedOnly = false;
  std::vector<FilterArgument> filters;  // as they went into the run
  moxRunReport report;
  std::map<std::string, std::string> definitionConditions;  // by source; where the definition keeps
                                                            // them apart from the statement
  std::string error;                                        // why the run failed; empty
  Wiring wiring;                                            // of the definition's groups
  std::optional<SearchExplanation> search;                  // when the name is that of a search
  std::vector<SortAnswer> order;                            // that the user asked for
  std::map<std::string, StepExplanation> steps;             // by source, but for members of groups
  std::vector<std::string> chainProblems;                   // as sentences
};

/// What a run tells of itself, after it ended or failed.
Explanation explain(DefinitionRun const& run, DefinitionRun::Report kind, std::string error);

/// The origin's name in documents: "user-filter".
std::string originKey(moxRunOrigin origin);

/// Where a part of a statement came from, in words.
std::string originText(moxRunPart const& part, moxRunReport const& report);

/// "units 3, 4 that the caller named": what the unit rule keeps to.
std::string unitsText(moxRunReport const& report);

/// The kind of a bound value, as documents name it: "int".
std::string valueTypeKey(moxBoundValue::Type type);

/// The explanation as a JSON document in UTF-8, indented, with a line end. Bytes that are no UTF-8
/// become U+FFFD, and every control character is written as an escape.
std::string explanationJson(Explanation const& explanation);

}  // namespace mox::core
