#include <unistd.h>

#include <cstdio>

#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/definition_options.h"
#include "cli/output/progress.h"
#include "cli/output/result_printer.h"
#include "cli/reported_reading.h"
#include "cli/run_times.h"
#include "core/run/group_members.h"
#include "mox/zyn/datasources/expression_data_source.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_exporter.h"

namespace mox::cli {

namespace {

struct RunOptions {
  DefinitionOptions definition;
  ChainOptions chain;
  unsigned int limit = ResultPrinter::kAllRows;
  bool formatted = false;
  bool time = false;
  OutputOptions output;
};

/// What gives the source its columns: of a group the member that it gives, of what adds to the rows
/// of another source or sorts them that one. Empty for any other.
std::shared_ptr<moxDataSource const> behind(moxDataSource const& source) {
  if (auto const* const group = dynamic_cast<moxGroupDataSource const*>(&source)) {
    for (auto const& member : group->dataSources().get()) {
      if (member && member->getName() == group->getOutputSource()) {
        return member->getDataSource();
      }
    }
    return {};
  }
  bool const keepsColumns = dynamic_cast<moxSorterDataSource const*>(&source) != nullptr ||
                            dynamic_cast<moxExpressionDataSource const*>(&source) != nullptr;
  auto const read = keepsColumns ? source.getRelatedDataSources(false) : core::SourceList();
  return read.empty() ? nullptr : read.front();
}

/// The query whose columns the result has; empty for what is made otherwise. The definition has
/// run, so its sources end somewhere.
std::shared_ptr<moxSQLDataSource const> queryBehind(std::shared_ptr<moxDataSource const> source) {
  while (source) {
    if (auto query = std::dynamic_pointer_cast<moxSQLDataSource const>(source)) {
      return query;
    }
    source = behind(*source);
  }
  return {};
}

std::map<std::string, std::string> headingsOf(
    std::shared_ptr<moxDataSource const> const& definition) {
  std::map<std::string, std::string> headings;
  if (auto const sql = queryBehind(definition)) {
    for (auto const& column : sql->columns()) {
      headings.emplace(column->getColumnName(), column->getVisibleName());
    }
  }
  return headings;
}

std::shared_ptr<moxDataMatrix> load(Host& host, core::DefinitionRun& run, Progress& progress) {
  ReportedReading const reported(host, progress);
  return run.run();
}

/// What takes the place of a result where the definition has none; told when it has run.
void tellNoRows(Progress& progress, bool quiet) {
  progress.stop();
  if (!quiet) {
    std::fputs("the definition ran; it gives no rows\n", stderr);
  }
}

void runDefinition(GlobalOptions const& globals, RunOptions const& options) {
  ResultPrinter printer(options.output, globals.quiet);
  Progress progress(!globals.quiet && isatty(STDERR_FILENO) != 0);
  Stopwatch watch;
  RunTimes times;
  Host host(globals);
  printer.setExporter(host.make<moxDataMatrixExporter>("moxDataMatrixExporter"));
  auto const run = prepareRun(host, globals, options.definition, options.chain);
  times.start = watch.lap();
  auto const matrix = load(host, *run, progress);
  times.load = watch.lap();
  if (!matrix) {
    tellNoRows(progress, globals.quiet);
    return;
  }
  printer.setHeadings(headingsOf(run->definition()));
  if (options.formatted) {
    printer.setFormatted();
  }
  progress.report(Progress::Stage::kWriting, 0);
  if (printer.toTerminal()) {
    progress.stop();
  }
  printer.print(matrix, options.limit,
                [&](std::int64_t rows) { progress.report(Progress::Stage::kWriting, rows); });
  times.print = watch.lap();
  times.write = printer.writingSeconds();
  progress.stop();
  printer.tell();
  if (options.time) {
    times.tell();
  }
}

}  // namespace

Command addRunCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("run", "Run a definition and print its rows");
  parser->footer(
      "\nA column is named as the definition's filter names it, as the result does, or\n"
      "with its table in front; of one of several sources of a group, with SOURCE: in\n"
      "front. Days are YYYY-MM-DD or DD/MM/YYYY. A range may be open at one end: 5.. or\n"
      "..9. In ranges and lists a value may stand in double quotes. A table shows\n"
      "formatted values, the other forms plain ones.");
  auto const options = std::make_shared<RunOptions>();
  addDefinitionOptions(*parser, options->definition);
  addChainOptions(*parser, options->chain);
  parser->add_option("--limit", options->limit, "Write the first N rows only")->option_text("N");
  parser
      ->add_flag("--formatted", options->formatted, "Formatted values in csv, json and ndjson too")
      ->option_text(" ");
  addOutputOptions(*parser, options->output);
  parser->add_flag("--time", options->time, "Tell on standard error where the time went")
      ->option_text(" ");
  return {parser, [options](GlobalOptions const& globals) { runDefinition(globals, *options); }};
}

}  // namespace mox::cli
