#include "cli/output/csv_writer.h"

#include "cli/output/column_visit.h"
#include "cli/output/display_text.h"
#include "cli/output/value_text.h"

namespace mox::cli {

namespace {

/// Writes the cell of a row that is not null.
using CellWriter = std::function<void(OutputBuffer& out, unsigned int row)>;

void writeQuoted(OutputBuffer& out, std::string_view text) {
  out.append('"');
  for (std::size_t quote = text.find('"'); quote != text.npos; quote = text.find('"')) {
    out.append(text.substr(0, quote + 1));
    out.append('"');
    text.remove_prefix(quote + 1);
  }
  out.append(text);
  out.append('"');
}

void writeField(OutputBuffer& out, std::string_view text) {
  if (text.empty() || text.find_first_of(",\"\r\n") != text.npos) {
    writeQuoted(out, text);
  } else {
    out.append(text);
  }
}

void writeText(OutputBuffer& out, std::string_view text, CsvOptions const& options) {
  if (!options.forTerminal) {
    writeField(out, text);
    return;
  }
  std::string harmless;
  appendDisplayText(harmless, text, kNoWidthLimit);
  writeField(out, harmless);
}

/// One overload a kind of column.
struct CellWriterMaker {
  CsvOptions const& options;

  CellWriter operator()(moxDataMatrixTypedColumn<int> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) { out.appendInt(column.getValue(row)); };
  }

  CellWriter operator()(moxDataMatrixTypedColumn<double> const& column) const {
    return
        [&column](OutputBuffer& out, unsigned int row) { out.appendDouble(column.getValue(row)); };
  }

  CellWriter operator()(moxDataMatrixTypedColumn<std::string> const& column) const {
    return [&column, choice = options](OutputBuffer& out, unsigned int row) {
      writeText(out, column.getValue(row), choice);
    };
  }

  CellWriter operator()(moxDataMatrixTypedColumn<datetime_t> const& column) const {
    return [&column, withTime = hasTimes(column)](OutputBuffer& out, unsigned int row) {
      if (datetime_t const moment = column.getValue(row)) {
        out.append(formatMoment(moment, withTime));
      }
    };
  }

  CellWriter operator()(
      moxDataMatrixTypedColumn<std::shared_ptr<moxReadBlob>> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) {
      writeField(out, base64(bytesOf(column.getValue(row))));
    };
  }
};

void writeHeader(OutputBuffer& out, ResultTable const& table, CsvOptions const& options) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (i != 0) {
      out.append(',');
    }
    writeText(out, table.columns[i]->getName(), options);
  }
  out.append('\n');
}

}  // namespace

void writeCsv(OutputBuffer& out, ResultTable const& table, CsvOptions const& options) {
  if (table.columns.empty()) {
    return;
  }
  writeHeader(out, table, options);
  std::vector<CellWriter> writers;
  for (auto const& column : table.columns) {
    writers.push_back(visitColumn(*column, CellWriterMaker{options}));
  }
  for (unsigned int row = table.firstRow; row < table.endRow(); ++row) {
    for (std::size_t i = 0; i < writers.size(); ++i) {
      if (i != 0) {
        out.append(',');
      }
      if (!table.columns[i]->isNull(row)) {
        writers[i](out, row);
      }
    }
    out.append('\n');
    table.rowWritten(row);
  }
}

}  // namespace mox::cli
