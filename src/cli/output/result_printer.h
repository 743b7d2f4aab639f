#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>

#include "cli/output/output_options.h"
#include "cli/output/output_target.h"
#include "cli/output/result_table.h"

class moxDataMatrixExporter;

namespace mox::cli {

/// Writes one result in the form and to the place that the user asked for, and tells its size on
/// standard error when people read along. Made ahead of the work, so that a place that cannot be
/// written is found before a long query and not after it.
class ResultPrinter {
 public:
  static constexpr unsigned int kAllRows = std::numeric_limits<unsigned int>::max();

  /// Throws moxError when the place cannot be written.
  ResultPrinter(OutputOptions const& options, bool quiet);

  /// Has columns with a formatter written as it says, in every form; a table always is.
  void setFormatted() { formatted_ = true; }

  /// What stands above a column in a table, by the column's name.
  void setHeadings(std::map<std::string, std::string> headings) { headings_ = std::move(headings); }

  /// Has comma-separated text of a matrix written by an exporter, which is new.
  void setExporter(std::shared_ptr<moxDataMatrixExporter> exporter) {
    exporter_ = std::move(exporter);
  }

  /// Whether the result goes to a terminal.
  bool toTerminal() const { return target_->isTerminal(); }

  /// Whether people read the result as a table.
  bool isTable() const { return format_ == "table"; }

  /// Writes the first `rowLimit` rows. `onRows` is told how many are written. Called once.
  void print(std::shared_ptr<moxDataMatrix> const& matrix, unsigned int rowLimit = kAllRows,
             std::function<void(std::int64_t)> onRows = {});

  /// Writes a table that was made elsewhere, of a result of `allRows` rows. In place of the other.
  void print(ResultTable const& table, unsigned int allRows);

  /// Writes what has a form of its own. In place of the others.
  void print(std::function<void(OutputBuffer&)> const& write);

  /// "table", "csv", "json" or "ndjson".
  std::string const& format() const { return format_; }

  /// Writes the line about the result, if there is one, to standard error. Called last: by then
  /// nothing else may be written there.
  void tell() const;

  /// How long print waited for the place that it wrote to.
  double writingSeconds() const { return writingSeconds_; }

 private:
  void write(OutputBuffer& out, ResultTable const& table, unsigned int allRows);

  std::unique_ptr<OutputTarget> target_;
  std::string format_;
  bool quiet_;
  bool formatted_ = false;
  std::map<std::string, std::string> headings_;
  std::shared_ptr<moxDataMatrixExporter> exporter_;
  double writingSeconds_ = 0;
  std::string summary_;
};

}  // namespace mox::cli
