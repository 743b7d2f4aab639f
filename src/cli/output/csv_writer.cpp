#include "cli/output/csv_writer.h"

#include "cli/output/csv_cells.h"

namespace mox::cli {

namespace {

void writeHeader(OutputBuffer& out, ResultTable const& table, CsvOptions const& options) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (i != 0) {
      out.append(',');
    }
    writeCsvField(out, table.columns[i]->getName(), options);
  }
  out.append('\n');
}

}  // namespace

void writeCsv(OutputBuffer& out, ResultTable const& table, CsvOptions const& options) {
  if (table.columns.empty()) {
    return;
  }
  writeHeader(out, table, options);
  std::vector<CsvCellWriter> writers;
  for (auto const& column : table.columns) {
    writers.push_back(csvCellWriter(*column, options));
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
