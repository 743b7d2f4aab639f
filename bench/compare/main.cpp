// Compares what the module does with the best we can write by hand, and with others who do the same
// work.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "compare/bench_context.h"
#include "compare/cases.h"
#include "compare/report.h"
#include "compare/rounds.h"
#include "mox/core/error.h"

namespace {

constexpr int kRoundsToPublish = 5;

struct Options {
  bench::BenchContext context;
  std::size_t rows = 0;  // 0: each case's own
  std::vector<std::string> cases;
  std::string document;
  bool processorTime = false;
};

std::string caseList() {
  std::string text = "cases:";
  for (bench::Case const& each : bench::allCases()) {
    text += std::string("\n  ") + each.name + ": " + each.description;
  }
  return text;
}

void declareOptions(CLI::App& app, Options& options) {
  std::vector<std::string> names;
  for (bench::Case const& each : bench::allCases()) {
    names.emplace_back(each.name);
  }
  auto& context = options.context;
  app.footer(caseList());
  app.add_option("--rows", options.rows, "rows of every case, in place of its own number")
      ->check(CLI::Range(1, 16'000'000));
  app.add_option("--rounds", context.rounds, "rounds; 5 unless told")->check(CLI::Range(1, 1000));
  app.add_option("--case", options.cases, "only this case; may be repeated")
      ->check(CLI::IsMember(names));
  app.add_flag("--cpu", options.processorTime,
               "processor time in place of elapsed time, for a machine with other work");
  app.add_option("--write", options.document, "the document that takes the table");
  app.add_option("--work", context.workDirectory, "for databases and files")->required();
  app.add_option("--mariadb-socket", context.mariadbSocket, "of a server that may be filled");
  app.add_option("--duckdb", context.duckdbLibrary, "DuckDB's shared library");
  app.add_option("--python", context.python, "an interpreter with pandas");
  app.add_option("--pandas-peer", context.pandasScript, "the script that drives pandas");
  app.add_option("--pandas-group-peer", context.pandasGroupScript,
                 "the script that has pandas group");
  app.add_option("--numexpr-peer", context.numexprScript, "the script that drives numexpr");
  app.add_option("--node", context.node, "a node program");
  app.add_option("--polars-peer", context.polarsScript, "the script that drives Polars");
  app.add_option("--polars-expression-peer", context.polarsExpressionScript,
                 "the script that has Polars compute expressions");
  app.add_option("--polars-group-peer", context.polarsGroupScript,
                 "the script that has Polars group");
  app.add_option("--pandas-join-peer", context.pandasJoinScript, "the script that has pandas join");
  app.add_option("--polars-join-peer", context.polarsJoinScript, "the script that has Polars join");
  app.add_option("--pandas-tables-peer", context.pandasTablesScript,
                 "the script that has pandas work on whole tables");
  app.add_option("--polars-tables-peer", context.polarsTablesScript,
                 "the script that has Polars work on whole tables");
  app.add_option("--npm", context.npmDirectory, "where Polars is installed");
}

bool isWanted(bench::Case const& each, std::vector<std::string> const& wanted) {
  return wanted.empty() || std::find(wanted.begin(), wanted.end(), each.name) != wanted.end();
}

std::vector<bench::CaseResult> runCases(Options const& options) {
  std::vector<bench::CaseResult> results;
  for (bench::Case const& each : bench::allCases()) {
    if (!isWanted(each, options.cases)) {
      continue;
    }
    std::fprintf(stderr, "%s: preparing\n", each.name);
    auto const lines = each.run(options.context);
    if (lines.empty()) {
      std::fprintf(stderr, "%s: left out, what it needs is not here\n", each.name);
    }
    results.insert(results.end(), lines.begin(), lines.end());
  }
  return results;
}

int run(Options& options) {
  auto& context = options.context;
  if (options.rows != 0) {
    context.loadRows = context.sortRows = context.columnRows = context.indexRows = options.rows;
    context.joinRows = context.tableRows = context.csvRows = options.rows;
  }
  if (options.processorTime) {
    bench::measureProcessorTime();
  }
  if (!options.document.empty() && context.rounds < kRoundsToPublish) {
    std::fprintf(stderr, "zyn_bench: figures to be written need %d rounds\n", kRoundsToPublish);
    return 2;
  }
  auto const results = runCases(options);
  std::fputs(bench::plainTable(results).c_str(), stdout);
  if (!options.document.empty()) {
    bench::writeIntoDocument(options.document, bench::markdownReport(results, context.rounds));
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  CLI::App app("Measures the module against floors written by hand and against peers.",
               "zyn_bench");
  Options options;
  declareOptions(app, options);
  CLI11_PARSE(app, count, arguments);
  try {
    return run(options);
  } catch (moxError const& error) {
    std::fprintf(stderr, "zyn_bench: %s\n", error.errorMessage().c_str());
  } catch (std::exception const& error) {
    std::fprintf(stderr, "zyn_bench: %s\n", error.what());
  }
  return 1;
}
