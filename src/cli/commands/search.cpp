#include <unistd.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/commands/commands.h"
#include "cli/definition_options.h"
#include "cli/definitions/definition_list.h"
#include "cli/error_text.h"
#include "cli/filter_list.h"
#include "cli/notes.h"
#include "cli/output/progress.h"
#include "cli/output/result_printer.h"
#include "cli/output/search_table.h"
#include "cli/reported_reading.h"
#include "cli/run_times.h"
#include "core/run/search_run.h"
#include "mox/zyn/datasources/sql_data_source.h"

namespace mox::cli {

namespace {

constexpr unsigned int kUsualPageSize = 50;
constexpr unsigned int kUsualChoices = 20;
constexpr unsigned int kMost = std::numeric_limits<int>::max();

struct SearchOptions {
  DefinitionOptions definition;
  std::vector<std::string> sort;
  unsigned int page = 0;  // from 1 on; 0: not asked for
  unsigned int pageSize = 0;
  unsigned int limit = ResultPrinter::kAllRows;
  unsigned int choices = kUsualChoices;
  bool formatted = false;
  bool filters = false;
  bool time = false;
  OutputOptions output;
};

/// Found the way that other commands find definitions, so that a name that is nearly right is told.
void demandSearch(Host& host, std::string const& name) {
  auto const item = findDefinition(host, name);
  if (item->getTipo() != moxZYNItem::kSearch &&
      dynamic_cast<moxSearch const*>(item->getZynItemRelated().get()) == nullptr) {
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("the definition \"{}\" is no search: it is a {}", name, item->name()));
  }
}

/// The column that the user means: by its name in the result, else by its heading.
std::string columnNamed(core::SearchRun const& run, std::string const& asked) {
  std::vector<std::string> names;
  for (auto const& [name, type] : run.definition()->getColumns()) {
    names.push_back(name);
  }
  if (std::ranges::find(names, asked) != names.end()) {
    return asked;
  }
  auto const sql = run.search().getSqlDataSource();
  for (auto const& column : sql ? sql->columns() : std::vector<moxSQLDataSource::ConstColumn>()) {
    if (column->getVisibleName() == asked) {
      return column->getColumnName();
    }
  }
  throw UsageError(fmt::format("--sort: the search has no column '{}'; it has: {}", asked,
                               names.empty() ? "none" : fmt::to_string(fmt::join(names, ", "))));
}

class SearchCommand {
 public:
  SearchCommand(GlobalOptions const& globals, SearchOptions const& options)
      : globals_(globals),
        options_(options),
        order_(parseSortOrders(options.sort)),
        printer_(options.output, globals.quiet),
        progress_(!globals.quiet && isatty(STDERR_FILENO) != 0),
        host_(globals) {
    auto const& name = options.definition.name;
    demandSearch(host_, name);
    run_ = std::make_unique<core::SearchRun>(host_.application(), host_.application().sessions(),
                                             name);
    demandUnits(run_->keepsToUnits(), globals, name);
    run_->setUnits(host_.units());
  }

  void execute() {
    if (options_.filters) {
      listFilters();
    } else {
      search();
    }
    progress_.stop();
    printer_.tell();
    notes_.tell();
    if (options_.time) {
      times_.tell();
    }
  }

 private:
  void listFilters() {
    auto const entries = filterEntries(*run_, options_.choices);
    if (run_->search().requireFilter()) {
      notes_.add("the search runs with a filter only");
    }
    stopForTerminal();
    if (printer_.format() == "json" || printer_.format() == "ndjson") {
      bool const asArray = printer_.format() == "json";
      printer_.print([&](OutputBuffer& out) { writeFilterJson(out, entries, asArray); });
    } else {
      printer_.print(filterMatrix(host_, entries));
    }
  }

  void search() {
    setFilters();
    auto const columns = sortColumns();  // a wrong one is told ahead of the query
    times_.start = watch_.lap();
    {
      ReportedReading const reported(host_, progress_);
      run_->run();
    }
    sort(columns);
    times_.load = watch_.lap();
    progress_.report(Progress::Stage::kWriting, 0);
    stopForTerminal();
    printer_.print(table(), run_->runner().rowCount());
    times_.print = watch_.lap();
    times_.write = printer_.writingSeconds();
  }

  void setFilters() {
    try {
      run_->setFilters(options_.definition.filters);
    } catch (core::FilterArgumentError const& error) {
      throw UsageError(errorLine(error));
    }
  }

  core::SearchRun::SortColumns sortColumns() const {
    core::SearchRun::SortColumns columns;
    for (auto const& [name, descending] : order_) {
      columns.emplace_back(columnNamed(*run_, name), descending);
    }
    return columns;
  }

  void sort(core::SearchRun::SortColumns const& columns) {
    if (!columns.empty()) {
      progress_.report(Progress::Stage::kSorting, run_->runner().rowCount());
      run_->sort(columns);
    }
  }

  ResultTable table() {
    auto const page = pageOf(run_->runner().rowCount());
    auto table = printer_.isTable() ? searchScreen(run_->runner(), page)
                                    : searchValues(run_->runner(), page, options_.formatted);
    table.onRows = [this](std::int64_t rows) { progress_.report(Progress::Stage::kWriting, rows); };
    return table;
  }

  SearchPage pageOf(unsigned int rowCount) {
    if (options_.page == 0 && options_.pageSize == 0) {
      return {0, std::min(options_.limit, rowCount)};
    }
    std::uint64_t const size = options_.pageSize == 0 ? kUsualPageSize : options_.pageSize;
    std::uint64_t const page = std::max(options_.page, 1U);
    std::uint64_t const first = (page - 1) * size;
    if (first >= rowCount) {
      noteLastPage(page, (rowCount + size - 1) / size);
      return {rowCount, 0};
    }
    return {static_cast<unsigned int>(first),
            static_cast<unsigned int>(std::min<std::uint64_t>(size, rowCount - first))};
  }

  void noteLastPage(std::uint64_t page, std::uint64_t last) {
    if (page > 1 && printer_.isTable()) {
      notes_.add(last == 0 ? fmt::format("there is no page {}: there are no rows", page)
                           : fmt::format("there is no page {}: the last one is {}", page, last));
    }
  }

  void stopForTerminal() {
    if (printer_.toTerminal()) {
      progress_.stop();
    }
  }

  GlobalOptions const& globals_;
  SearchOptions const& options_;
  std::vector<SortColumn> order_;
  Stopwatch watch_;
  RunTimes times_;
  Notes notes_;
  ResultPrinter printer_;
  Progress progress_;
  Host host_;
  std::unique_ptr<core::SearchRun> run_;
};

void addPageOptions(CLI::App& parser, SearchOptions& options) {
  auto* const limit =
      parser.add_option("--limit", options.limit, "Write the first N rows only")->option_text("N");
  parser
      .add_option("--page", options.page,
                  fmt::format("Write page N, from 1 on, of {} rows", kUsualPageSize))
      ->option_text("N")
      ->check(CLI::Range(1U, kMost))
      ->excludes(limit);
  parser.add_option("--page-size", options.pageSize, "Write pages of N rows")
      ->option_text("N")
      ->check(CLI::Range(1U, kMost))
      ->excludes(limit);
}

void addFilterListOptions(CLI::App& parser, SearchOptions& options) {
  auto* const filters = parser.add_flag("--filters", options.filters,
                                        "List what the search can be filtered by\n"
                                        "instead of running it");
  filters->option_text(" ");
  for (auto const* const other :
       {"--filter", "--sort", "--limit", "--page", "--page-size", "--formatted", "--time"}) {
    filters->excludes(parser.get_option(other));
  }
  parser
      .add_option("--choices", options.choices,
                  fmt::format("With --filters: at most N values of each\n"
                              "filter, {} without it",
                              kUsualChoices))
      ->option_text("N")
      ->check(CLI::Range(0U, kMost))
      ->needs(filters);
}

}  // namespace

Command addSearchCommand(CLI::App& program) {
  auto* const parser =
      program.add_subcommand("search", "Run a search and print what its screen shows");
  parser->footer(
      "\nA table shows the visible columns under their headings, as a screen does, and\n"
      "the keys of what they refer to; the other forms have all columns and plain\n"
      "values. Filters are written as for zyn run.");
  auto const options = std::make_shared<SearchOptions>();
  addDefinitionOptions(*parser, options->definition);
  parser
      ->add_option("--sort", options->sort,
                   "Sort by columns, by name or heading, instead\n"
                   "of as the search says (repeatable)")
      ->option_text("COLUMN[:desc],...")
      ->allow_extra_args(false);
  addPageOptions(*parser, *options);
  parser
      ->add_flag("--formatted", options->formatted, "Formatted values in csv, json and ndjson too")
      ->option_text(" ");
  addOutputOptions(*parser, options->output);
  parser->add_flag("--time", options->time, "Tell on standard error where the time went")
      ->option_text(" ");
  addFilterListOptions(*parser, *options);
  return {parser,
          [options](GlobalOptions const& globals) { SearchCommand(globals, *options).execute(); }};
}

}  // namespace mox::cli
