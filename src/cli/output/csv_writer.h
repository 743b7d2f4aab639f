#pragma once

#include "cli/output/csv_fields.h"
#include "cli/output/output_buffer.h"
#include "cli/output/result_table.h"

namespace mox::cli {

/// Comma-separated text with a header line, lines ended by "\n", quotes only where the text needs
/// them. A null is an empty field and an empty text is "", so that the two stay apart. Numbers as
/// formatDouble; moments as YYYY-MM-DD, with the time when any row of the column has one; blobs as
/// base64. A table without columns gives nothing.
void writeCsv(OutputBuffer& out, ResultTable const& table, CsvOptions const& options);

}  // namespace mox::cli
