#include "cli/output/csv_format.h"

#include <algorithm>
#include <vector>

#include "cli/output/csv_cells.h"
#include "cli/output/output_target.h"
#include "cli/output/plain_formatter.h"
#include "cli/output/result_table.h"
#include "mox/zyn/matrix/iterator.h"

namespace mox::cli {

namespace {

/// A column with what is asked of it in every row.
struct Field {
  std::shared_ptr<moxDataMatrixExporterColumn> column;
  std::shared_ptr<moxIterator> cell;  // moves with the row
  CsvCellWriter write;
};

/// Plain values go to the output as they are; other formatters are asked for a text, for which
/// there is room that is kept from cell to cell.
CsvCellWriter writerOf(moxDataMatrixExporterColumn const& column, moxDataMatrixTypes::Types type,
                       CsvOptions const& options) {
  auto const* const known = dynamic_cast<ColumnFormatter const*>(column.getFormatter().get());
  if (known != nullptr && known->plainColumn() != nullptr) {
    return csvCellWriter(*known->plainColumn(), options);
  }
  bool const emptyIsNull = type == moxDataMatrixTypes::Date;
  return [&column, emptyIsNull, options, text = std::string()](OutputBuffer& out,
                                                               unsigned int) mutable {
    text.clear();
    column.appendValue(text);
    if (!text.empty() || !emptyIsNull) {
      writeCsvField(out, text, options);
    }
  };
}

std::vector<Field> fieldsOf(moxDataMatrixExporterRow const& row, CsvOptions const& options) {
  std::vector<Field> fields;
  for (unsigned int i = 0; i < row.columnCount(); ++i) {
    auto const column = row.column(i);
    auto const cell = column->getIterator();
    fields.push_back({column, cell, writerOf(*column, cell->getType(), options)});
  }
  return fields;
}

bool hasRow(std::vector<Field> const& fields) {
  return std::none_of(fields.begin(), fields.end(),
                      [](Field const& field) { return field.cell->atEnd(); });
}

void writeHeader(OutputBuffer& out, std::vector<Field> const& fields, CsvOptions const& options) {
  for (auto const& field : fields) {
    if (&field != &fields.front()) {
      out.append(',');
    }
    writeCsvField(out, field.column->columnName(), options);
  }
  out.append('\n');
}

void writeRow(OutputBuffer& out, std::vector<Field> const& fields, unsigned int row) {
  for (auto const& field : fields) {
    if (&field != &fields.front()) {
      out.append(',');
    }
    if (!field.cell->isNull()) {
      field.write(out, row);
    }
  }
  out.append('\n');
}

}  // namespace

void CsvFormat::exportToFile(std::string const& fileName,
                             std::shared_ptr<moxDataMatrixExporterRow> row) const {
  if (out_ != nullptr) {
    write(*out_, *row);
    return;
  }
  auto const target = openOutputFile(fileName);
  OutputBuffer out(*target);
  write(out, *row);
  out.flush();
  target->commit();
}

void CsvFormat::write(OutputBuffer& out, moxDataMatrixExporterRow& row) const {
  auto const fields = fieldsOf(row, choices_.fields);
  if (fields.empty()) {
    return;
  }
  writeHeader(out, fields, choices_.fields);
  ResultTable progress;
  progress.onRows = choices_.onRows;
  unsigned int written = 0;
  for (bool more = hasRow(fields); more && written < choices_.rowLimit; more = row.next()) {
    writeRow(out, fields, fields.front().cell->pos());
    progress.rowWritten(written++);
  }
}

}  // namespace mox::cli
