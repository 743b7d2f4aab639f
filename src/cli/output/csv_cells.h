#pragma once

#include <functional>

#include "cli/output/csv_fields.h"
#include "mox/zyn/matrix/data_matrix_column.h"

namespace mox::cli {

/// Writes the cell of a row that is not null as a field.
using CsvCellWriter = std::function<void(OutputBuffer& out, unsigned int row)>;

/// The writer of a column's plain values: numbers as formatDouble, moments as YYYY-MM-DD, with the
/// time when any row of the column has one, blobs as base64. It looks at the column's kind once.
/// The column outlives it.
CsvCellWriter csvCellWriter(moxDataMatrixColumn const& column, CsvOptions const& options);

}  // namespace mox::cli
