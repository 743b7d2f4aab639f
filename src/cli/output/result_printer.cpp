#include "cli/output/result_printer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/output/column_visit.h"
#include "cli/output/csv_writer.h"
#include "cli/output/display_text.h"
#include "cli/output/json_writer.h"
#include "cli/output/table_writer.h"

namespace mox::cli {

namespace {

std::string_view environment(char const* name) {
  char const* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

/// People who cannot read styles, or do not want them, say so in the environment.
bool wantsStyles() {
  return environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

std::string rowsText(ResultTable const& table, unsigned int allRows) {
  std::string_view const noun = allRows == 1 ? "row" : "rows";
  if (table.rowCount == allRows) {
    return fmt::format("{} {}", allRows, noun);
  }
  return fmt::format("{} of {} {}", table.rowCount, allRows, noun);
}

std::string summaryText(ResultTable const& table, unsigned int allRows,
                        std::vector<std::string> const& leftOut) {
  if (table.columns.empty()) {
    return "the statement gives no columns";
  }
  std::string text = rowsText(table, allRows);
  if (!leftOut.empty()) {
    text += fmt::format("; no room for the {} {}", leftOut.size() == 1 ? "column" : "columns",
                        fmt::join(leftOut, ", "));
  }
  return oneLineText(text);
}

}  // namespace

ResultPrinter::ResultPrinter(OutputOptions const& options, bool quiet)
    : target_(options.out.empty() ? openStandardOutput() : openOutputFile(options.out)),
      format_(options.format),
      quiet_(quiet) {
  if (format_.empty()) {
    format_ = target_->isTerminal() ? "table" : "csv";
  }
}

void ResultPrinter::print(moxDataMatrix const& matrix, unsigned int rowLimit,
                          std::function<void(std::int64_t)> onRows) {
  ResultTable const table{columnsOf(matrix), std::min(rowLimit, matrix.rowCount()),
                          std::move(onRows)};
  OutputBuffer out(*target_);
  if (format_ == "table") {
    bool const forTerminal = target_->isTerminal();
    auto const leftOut = writeTable(out, table, {target_->width(), forTerminal && wantsStyles()});
    summary_ = quiet_ ? "" : summaryText(table, matrix.rowCount(), leftOut);
  } else if (format_ == "csv") {
    writeCsv(out, table, {.forTerminal = target_->isTerminal()});
  } else if (format_ == "json") {
    writeJson(out, table);
  } else {
    writeNdjson(out, table);
  }
  out.flush();
  target_->commit();
}

void ResultPrinter::tell() const {
  if (!summary_.empty()) {
    std::fputs((summary_ + "\n").c_str(), stderr);
  }
}

}  // namespace mox::cli
