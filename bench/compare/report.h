#pragma once

#include <string>
#include <vector>

#include "compare/case_result.h"

namespace bench {

/// The table as text in columns, for the terminal.
std::string plainTable(std::vector<CaseResult> const& results);

/// Machine and table, to stand in a document.
std::string markdownReport(std::vector<CaseResult> const& results, int rounds);

/// Puts the report between the document's two marker lines. Throws std::runtime_error when the
/// document cannot be read or written, or has no markers.
void writeIntoDocument(std::string const& file, std::string const& report);

}  // namespace bench
