#include "cli/output/result_printer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/output/column_visit.h"
#include "cli/output/csv_export.h"
#include "cli/output/csv_writer.h"
#include "cli/output/display_text.h"
#include "cli/output/formatted_column.h"
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
  if (table.firstRow > 0 && table.rowCount == 1) {
    return fmt::format("row {} of {}", table.endRow(), allRows);
  }
  if (table.firstRow > 0 && table.rowCount > 0) {
    return fmt::format("rows {} to {} of {}", table.firstRow + 1, table.endRow(), allRows);
  }
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

std::vector<std::string> headingsOf(moxDataMatrix const& matrix,
                                    std::map<std::string, std::string> const& headings) {
  std::vector<std::string> texts;
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    auto const name = matrix.columnAt(i)->getName();
    auto const heading = headings.find(name);
    texts.push_back(heading != headings.end() && !heading->second.empty() ? heading->second : name);
  }
  return texts;
}

/// Adds up the time that a sink takes.
class TimedSink final : public ByteSink {
 public:
  TimedSink(ByteSink& sink, double& seconds) : sink_(sink), seconds_(seconds) {}

  void write(std::string_view bytes) override {
    timed([&] { sink_.write(bytes); });
  }

  template <class Work>
  void timed(Work work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

 private:
  ByteSink& sink_;
  double& seconds_;
};

}  // namespace

ResultPrinter::ResultPrinter(OutputOptions const& options, bool quiet)
    : target_(options.out.empty() ? openStandardOutput() : openOutputFile(options.out)),
      format_(options.format),
      quiet_(quiet) {
  if (format_.empty()) {
    format_ = target_->isTerminal() ? "table" : "csv";
  }
}

void ResultPrinter::print(std::shared_ptr<moxDataMatrix> const& matrix, unsigned int rowLimit,
                          std::function<void(std::int64_t)> onRows) {
  if (exporter_ && format_ == "csv") {
    print([&](OutputBuffer& out) {
      exportCsv(*exporter_, matrix, out, formatted_,
                {{.forTerminal = target_->isTerminal()}, rowLimit, std::move(onRows)});
    });
    return;
  }
  print({isTable() || formatted_ ? formattedColumnsOf(*matrix) : columnsOf(*matrix),
         std::min(rowLimit, matrix->rowCount()), std::move(onRows),
         isTable() ? headingsOf(*matrix, headings_) : std::vector<std::string>()},
        matrix->rowCount());
}

void ResultPrinter::print(ResultTable const& table, unsigned int allRows) {
  print([&](OutputBuffer& out) { write(out, table, allRows); });
}

void ResultPrinter::print(std::function<void(OutputBuffer&)> const& write) {
  TimedSink sink(*target_, writingSeconds_);
  OutputBuffer out(sink);
  write(out);
  out.flush();
  sink.timed([&] { target_->commit(); });
}

void ResultPrinter::write(OutputBuffer& out, ResultTable const& table, unsigned int allRows) {
  if (isTable()) {
    bool const forTerminal = target_->isTerminal();
    auto const leftOut = writeTable(out, table, {target_->width(), forTerminal && wantsStyles()});
    summary_ = quiet_ ? "" : summaryText(table, allRows, leftOut);
  } else if (format_ == "csv") {
    writeCsv(out, table, {.forTerminal = target_->isTerminal()});
  } else if (format_ == "json") {
    writeJson(out, table);
  } else {
    writeNdjson(out, table);
  }
}

void ResultPrinter::tell() const {
  if (!summary_.empty()) {
    std::fputs((summary_ + "\n").c_str(), stderr);
  }
}

}  // namespace mox::cli
