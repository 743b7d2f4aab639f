#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include "cli/bind_value.h"
#include "cli/commands/commands.h"
#include "cli/error_text.h"
#include "cli/host.h"
#include "cli/not_empty.h"
#include "cli/output/progress.h"
#include "cli/output/result_printer.h"
#include "cli/reported_reading.h"
#include "cli/sort_order.h"
#include "cli/statement_source.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_exporter.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox::cli {

namespace {

struct SqlOptions {
  std::string statement;  // as given: perhaps "-"
  std::vector<std::string> sort;
  std::string unitColumn;
  std::string whereWord = "where";
  bool unitMayBeNull = false;
  unsigned int limit = ResultPrinter::kAllRows;
  OutputOptions output;
  CLI::Option* bind = nullptr;  // asked for the values as they were typed
};

/// The options, understood.
struct SqlRequest {
  std::string statement;
  std::vector<BindValue> binds;
  std::vector<SortColumn> order;
  std::pair<std::string, std::string> unitColumn;  // table, column
  std::string whereWord;
  bool unitMayBeNull;
};

/// A table may have a database in front, so the column is what stands behind the last point.
std::pair<std::string, std::string> parseUnitColumn(std::string const& text) {
  auto const point = text.rfind('.');
  return point == text.npos ? std::pair(std::string(), text)
                            : std::pair(text.substr(0, point), text.substr(point + 1));
}

/// Without units the loader would answer with no rows at all, which nobody expects who forgot an
/// option.
void demandUnits(SqlOptions const& options, GlobalOptions const& globals) {
  if (!options.unitColumn.empty() && globals.user.empty() && globals.units.empty()) {
    throw UsageError("--unit-column needs --user or --unit");
  }
}

SqlRequest understand(SqlOptions const& options, GlobalOptions const& globals) {
  demandUnits(options, globals);
  SqlRequest request{.statement = {},
                     .binds = {},
                     .order = {},
                     .unitColumn = parseUnitColumn(options.unitColumn),
                     .whereWord = options.whereWord,
                     .unitMayBeNull = options.unitMayBeNull};
  for (auto const& text : options.bind->results()) {
    request.binds.push_back(parseBindValue(text));
  }
  for (auto const& text : options.sort) {
    auto const columns = parseSortOrder(text);
    request.order.insert(request.order.end(), columns.begin(), columns.end());
  }
  request.statement = readStatement(options.statement);
  return request;
}

/// Makes the loader's parameter for a value. The name marks it as a value of the statement's own
/// text, where a null is bound like any other value.
class ParameterMaker {
 public:
  explicit ParameterMaker(Host& host) : host_(host) {}

  std::shared_ptr<moxDataMatrixSQLFilter const> operator()(NullValue) {
    auto parameter =
        make<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    parameter->setNull();
    return parameter;
  }

  std::shared_ptr<moxDataMatrixSQLFilter const> operator()(int value) {
    return holding(make<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter"),
                   value);
  }

  std::shared_ptr<moxDataMatrixSQLFilter const> operator()(double value) {
    return holding(make<moxDataMatrixSQLDoubleUniqueFilter>("moxDataMatrixSQLDoubleUniqueFilter"),
                   value);
  }

  std::shared_ptr<moxDataMatrixSQLFilter const> operator()(std::string const& value) {
    return holding(make<moxDataMatrixSQLTextUniqueFilter>("moxDataMatrixSQLTextUniqueFilter"),
                   value);
  }

  std::shared_ptr<moxDataMatrixSQLFilter const> operator()(date_t const& value) {
    return holding(make<moxDataMatrixSQLDateUniqueFilter>("moxDataMatrixSQLDateUniqueFilter"),
                   value);
  }

 private:
  template <class Filter>
  std::shared_ptr<Filter> make(std::string const& name) {
    auto filter = host_.make<Filter>(name);
    filter->setColumnName("", "{{bind}}");
    return filter;
  }

  template <class Filter, class Value>
  static std::shared_ptr<Filter> holding(std::shared_ptr<Filter> filter, Value const& value) {
    filter->setValue(value);
    return filter;
  }

  Host& host_;
};

std::shared_ptr<moxDataMatrix> load(Host& host, SqlRequest const& request, Progress& progress) {
  ReportedReading const reported(host, progress);
  auto const loader = host.make<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader");
  auto matrix = host.make<moxDataMatrix>("moxDataMatrix");
  loader->setSql(request.statement, request.unitColumn, request.whereWord, request.unitMayBeNull);
  loader->setDataMatrix(matrix);
  ParameterMaker maker(host);
  for (auto const& value : request.binds) {
    loader->addParameter(std::visit(maker, value));
  }
  if (host.units().empty()) {
    loader->execute();
  } else {
    loader->execute(host.units(), host.headOfficeUnit());
  }
  return matrix;
}

/// The sorter answers an unknown column with the rows as they were, so the names are looked up
/// ahead of it.
void demandColumns(moxDataMatrix const& matrix, std::vector<SortColumn> const& order) {
  for (auto const& column : order) {
    if (matrix.getColumnIndexByName(column.name) >= 0) {
      continue;
    }
    std::vector<std::string> names;
    for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
      names.push_back(matrix.columnAt(i)->getName());
    }
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("--sort: the result has no column '{}'; it has: {}", column.name,
                    names.empty() ? "none" : fmt::to_string(fmt::join(names, ", "))));
  }
}

std::shared_ptr<moxDataMatrix> sorted(Host& host, std::shared_ptr<moxDataMatrix> const& matrix,
                                      std::vector<SortColumn> const& order, Progress& progress) {
  demandColumns(*matrix, order);
  progress.report(Progress::Stage::kSorting, matrix->rowCount());
  auto const sorter = host.make<moxDataMatrixSorter>("moxDataMatrixSorter");
  for (auto const& column : order) {
    sorter->pushSortColumn(column.name, column.descending);
  }
  return sorter->transform(matrix);
}

void runSql(GlobalOptions const& globals, SqlOptions const& options) {
  auto const request = understand(options, globals);
  ResultPrinter printer(options.output, globals.quiet);
  Progress progress(!globals.quiet && isatty(STDERR_FILENO) != 0);
  Host host(globals);
  printer.setExporter(host.make<moxDataMatrixExporter>("moxDataMatrixExporter"));
  auto matrix = load(host, request, progress);
  matrix = sorted(host, matrix, request.order, progress);
  progress.report(Progress::Stage::kWriting, 0);
  if (printer.toTerminal()) {
    progress.stop();
  }
  printer.print(matrix, options.limit,
                [&](std::int64_t rows) { progress.report(Progress::Stage::kWriting, rows); });
  progress.stop();
  printer.tell();
}

void addStatementOptions(CLI::App& parser, SqlOptions& options) {
  parser
      .add_option("STATEMENT", options.statement, "The statement; - reads it from standard input")
      ->required()
      ->option_text(" ");
  options.bind =
      parser.add_option("--bind", "A value for the next ? of the statement\n(repeatable)");
  options.bind->option_text("[TYPE:]VALUE")
      ->expected(1, CLI::detail::expected_max_vector_size)
      ->allow_extra_args(false);
  parser
      .add_option("--sort", options.sort,
                  "Sort by columns of the result; one with a\n"
                  "comma in its name stands in double quotes")
      ->option_text("COLUMN[:desc],...")
      ->allow_extra_args(false);
  parser.add_option("--limit", options.limit, "Write the first N rows only")->option_text("N");
}

void addUnitOptions(CLI::App& parser, SqlOptions& options) {
  auto* const column = parser
                           .add_option("--unit-column", options.unitColumn,
                                       "Keep to rows whose business unit, in this\n"
                                       "column, is one of --unit or the user's own")
                           ->option_text("[TABLE.]COLUMN")
                           ->check(notEmpty());
  parser
      .add_flag("--unit-may-be-null", options.unitMayBeNull,
                "Rows that belong to no unit are everybody's")
      ->needs(column)
      ->option_text(" ");
  parser
      .add_option("--where-word", options.whereWord,
                  "Joins the condition on the unit to the\n"
                  "statement: where, or and when the statement\n"
                  "has a where already")
      ->option_text("WORD")
      ->check(CLI::IsMember({"where", "and"}))
      ->needs(column);
}

}  // namespace

Command addSqlCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("sql", "Run a statement and print its rows");
  parser->footer(
      "\nTYPE is int, double, text or date (YYYY-MM-DD); the word null binds a null.\n"
      "Without a type, what is written like a number is one, and all else is a text.\n"
      "Behind -- a statement may start with a dash.");
  auto const options = std::make_shared<SqlOptions>();
  addStatementOptions(*parser, *options);
  addOutputOptions(*parser, options->output);
  addUnitOptions(*parser, *options);
  return {parser, [options](GlobalOptions const& globals) { runSql(globals, *options); }};
}

}  // namespace mox::cli
