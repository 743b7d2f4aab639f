#include "cli/output/csv_cells.h"

#include "cli/output/column_visit.h"
#include "cli/output/value_text.h"

namespace mox::cli {

namespace {

/// One overload a kind of column.
struct CellWriterMaker {
  CsvOptions const& options;

  CsvCellWriter operator()(moxDataMatrixTypedColumn<int> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) { out.appendInt(column.getValue(row)); };
  }

  CsvCellWriter operator()(moxDataMatrixTypedColumn<double> const& column) const {
    return
        [&column](OutputBuffer& out, unsigned int row) { out.appendDouble(column.getValue(row)); };
  }

  CsvCellWriter operator()(moxDataMatrixTypedColumn<std::string> const& column) const {
    return [&column, choice = options](OutputBuffer& out, unsigned int row) {
      writeCsvField(out, column.getValue(row), choice);
    };
  }

  CsvCellWriter operator()(moxDataMatrixTypedColumn<datetime_t> const& column) const {
    return [&column, withTime = hasTimes(column)](OutputBuffer& out, unsigned int row) {
      if (datetime_t const moment = column.getValue(row)) {
        out.append(formatMoment(moment, withTime));
      }
    };
  }

  CsvCellWriter operator()(
      moxDataMatrixTypedColumn<std::shared_ptr<moxReadBlob>> const& column) const {
    return [&column](OutputBuffer& out, unsigned int row) {
      writeCsvField(out, base64(bytesOf(column.getValue(row))), {});
    };
  }
};

}  // namespace

CsvCellWriter csvCellWriter(moxDataMatrixColumn const& column, CsvOptions const& options) {
  return visitColumn(column, CellWriterMaker{options});
}

}  // namespace mox::cli
