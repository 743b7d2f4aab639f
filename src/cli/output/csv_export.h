#pragma once

#include <memory>

#include "cli/output/csv_format.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_exporter.h"

namespace mox::cli {

/// Has an exporter write a matrix as comma-separated text: every column in order, those of one name
/// too, with plain values or, `formatted`, as the formatter of a column says that has one. The
/// exporter is new, and of an application that knows CsvFormat.
void exportCsv(moxDataMatrixExporter& exporter, std::shared_ptr<moxDataMatrix> const& matrix,
               OutputBuffer& out, bool formatted, CsvFormat::Choices choices);

}  // namespace mox::cli
