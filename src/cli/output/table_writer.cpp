#include "cli/output/table_writer.h"

#include <algorithm>

#include "cli/output/column_visit.h"
#include "cli/output/column_widths.h"
#include "cli/output/display_text.h"
#include "cli/output/formatted_column.h"
#include "cli/output/value_text.h"

namespace mox::cli {

namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr std::string_view kLine = "\xE2\x94\x80";
constexpr std::string_view kNull = "null";
constexpr int kNullWidth = 4;
constexpr int kLeastTextWidth = 8;  // shorter than this a shortened text says too little

/// The text of a cell that is not null, replacing what the string held.
using CellText = std::function<void(std::string& text, unsigned int row)>;

struct TableColumn {
  moxDataMatrixColumn const* column;
  std::string header;
  CellText cellText;
  bool toTheRight;
  bool mayShorten;
  int width = 0;
};

void setNumber(std::string& text, double value) {
  text.resize(kLongestDouble);
  text.resize(static_cast<std::size_t>(formatDouble(text.data(), value) - text.data()));
}

/// One overload a kind of column.
struct CellTextMaker {
  CellText operator()(moxDataMatrixTypedColumn<int> const& column) const {
    return [&column](std::string& text, unsigned int row) {
      text = std::to_string(column.getValue(row));
    };
  }

  CellText operator()(moxDataMatrixTypedColumn<double> const& column) const {
    return
        [&column](std::string& text, unsigned int row) { setNumber(text, column.getValue(row)); };
  }

  CellText operator()(moxDataMatrixTypedColumn<std::string> const& column) const {
    return [&column](std::string& text, unsigned int row) { text = column.getValue(row); };
  }

  CellText operator()(moxDataMatrixTypedColumn<datetime_t> const& column) const {
    return [&column, withTime = hasTimes(column)](std::string& text, unsigned int row) {
      datetime_t const moment = column.getValue(row);
      text = moment ? formatMoment(moment, withTime) : std::string();
    };
  }

  CellText operator()(moxDataMatrixTypedColumn<std::shared_ptr<moxReadBlob>> const& column) const {
    return [&column](std::string& text, unsigned int row) {
      text = "<blob " + std::to_string(bytesOf(column.getValue(row)).size()) + " bytes>";
    };
  }
};

TableColumn makeColumn(moxDataMatrixColumn const& column, std::string header) {
  auto const type = typeOfValues(column);
  bool const isNumber = type == moxDataMatrixTypes::Int || type == moxDataMatrixTypes::Double;
  return {&column, std::move(header), visitColumn(column, CellTextMaker{}), isNumber,
          type == moxDataMatrixTypes::Text};
}

class TableWriter {
 public:
  TableWriter(OutputBuffer& out, ResultTable const& table, TableOptions const& options)
      : out_(out), table_(table), options_(options) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      auto const& column = *table.columns[i];
      columns_.push_back(
          makeColumn(column, table.headings.empty() ? column.getName() : table.headings[i]));
    }
  }

  std::vector<std::string> write() {
    auto leftOut = fit();
    writeHeader();
    writeLine();
    for (unsigned int row = table_.firstRow; row < table_.endRow(); ++row) {
      writeRow(row);
      table_.rowWritten(row);
    }
    return leftOut;
  }

 private:
  /// Decides the widths and drops the columns that do not fit; gives the names of those.
  std::vector<std::string> fit() {
    std::vector<WidthWish> wishes;
    for (auto const& column : columns_) {
      wishes.push_back(wishOf(column));
    }
    auto const plan = planWidths(wishes, options_.width);
    leavesOut_ = plan.leavesOut;
    std::vector<std::string> leftOut;
    for (std::size_t i = plan.widths.size(); i < columns_.size(); ++i) {
      leftOut.push_back(columns_[i].header);
    }
    columns_.resize(plan.widths.size(), TableColumn{});
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      columns_[i].width = plan.widths[i];
    }
    return leftOut;
  }

  WidthWish wishOf(TableColumn const& column) {
    // No terminal is wider than the limit, so a column need not be measured beyond.
    int const limit = options_.width > 0 ? options_.width : kNoWidthLimit;
    int cells = 1;
    for (unsigned int row = table_.firstRow; row < table_.endRow() && cells < limit; ++row) {
      cells = std::max(cells, cellWidth(column, row, limit));
    }
    int const wanted = std::max(cells, displayWidth(column.header, limit));
    return {wanted, std::min(wanted, column.mayShorten ? kLeastTextWidth : cells)};
  }

  int cellWidth(TableColumn const& column, unsigned int row, int limit) {
    if (column.column->isNull(row)) {
      return kNullWidth;
    }
    column.cellText(cell_, row);
    return displayWidth(cell_, limit);
  }

  void writeHeader() {
    for (auto const& column : columns_) {
      shown_.clear();
      int const width = appendDisplayText(shown_, column.header, column.width);
      writeAligned(column, shown_, width, "\x1b[1m", "\x1b[22m");
    }
    endRow();
  }

  void writeLine() {
    for (auto const& column : columns_) {
      startCell(column);
      for (int i = 0; i < column.width; ++i) {
        out_.append(kLine);
      }
    }
    if (leavesOut_) {
      out_.pad(kColumnGap);
      out_.append(kLine);
    }
    out_.append('\n');
  }

  void writeRow(unsigned int row) {
    for (auto const& column : columns_) {
      shown_.clear();
      if (column.column->isNull(row)) {
        int const width = appendDisplayText(shown_, kNull, column.width);
        writeAligned(column, shown_, width, "\x1b[2m", "\x1b[22m");
        continue;
      }
      column.cellText(cell_, row);
      int const width = appendDisplayText(shown_, cell_, column.width);
      writeAligned(column, shown_, width, {}, {});
    }
    endRow();
  }

  /// `styleOn` and `styleOff` surround the text of a styled table. The last column is not filled
  /// up, so that lines do not end in blanks.
  void writeAligned(TableColumn const& column, std::string_view text, int width,
                    std::string_view styleOn, std::string_view styleOff) {
    startCell(column);
    int const padding = column.width - width;
    out_.pad(column.toTheRight ? padding : 0);
    out_.append(options_.styled ? styleOn : "");
    out_.append(text);
    out_.append(options_.styled ? styleOff : "");
    bool const isLast = &column == &columns_.back() && !leavesOut_;
    out_.pad(column.toTheRight || isLast ? 0 : padding);
  }

  void startCell(TableColumn const& column) {
    if (&column != columns_.data()) {
      out_.pad(kColumnGap);
    }
  }

  void endRow() {
    if (leavesOut_) {
      out_.pad(kColumnGap);
      out_.append(kEllipsis);
    }
    out_.append('\n');
  }

  OutputBuffer& out_;
  ResultTable const& table_;
  TableOptions options_;
  std::vector<TableColumn> columns_;
  bool leavesOut_ = false;
  std::string cell_;   // the cell at work, kept for its room
  std::string shown_;  // its harmless form
};

}  // namespace

std::vector<std::string> writeTable(OutputBuffer& out, ResultTable const& table,
                                    TableOptions const& options) {
  if (table.columns.empty()) {
    return {};
  }
  return TableWriter(out, table, options).write();
}

}  // namespace mox::cli
