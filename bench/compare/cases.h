#pragma once

#include <string>
#include <vector>

#include "compare/bench_context.h"
#include "compare/case_result.h"

namespace bench {

/// What can be asked for by name: one or more lines of the table.
struct Case {
  char const* name;
  char const* description;
  std::vector<CaseResult> (*run)(BenchContext const& context);
};

/// In the order of the table.
std::vector<Case> const& allCases();

// Throw std::runtime_error for wrong results, and for a floor or ours that fail. A case whose
// server is not here gives no lines.
std::vector<CaseResult> loadFromSqliteCase(BenchContext const& context);
std::vector<CaseResult> loadFromMariadbCase(BenchContext const& context);
std::vector<CaseResult> sortByNumbersCase(BenchContext const& context);
std::vector<CaseResult> sortByCodeCase(BenchContext const& context);
std::vector<CaseResult> appendCase(BenchContext const& context);
std::vector<CaseResult> walkCase(BenchContext const& context);
std::vector<CaseResult> indexCase(BenchContext const& context);
std::vector<CaseResult> groupByNumberCase(BenchContext const& context);
std::vector<CaseResult> groupByTextCase(BenchContext const& context);
std::vector<CaseResult> groupByTwoNumbersCase(BenchContext const& context);
std::vector<CaseResult> expressionCase(BenchContext const& context);
std::vector<CaseResult> joinCase(BenchContext const& context);
std::vector<CaseResult> pivotCase(BenchContext const& context);
std::vector<CaseResult> unionCase(BenchContext const& context);
std::vector<CaseResult> csvCase(BenchContext const& context);

}  // namespace bench
