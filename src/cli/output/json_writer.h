#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/output/output_buffer.h"
#include "cli/output/result_table.h"

namespace mox::cli {

/// An array of objects, one a line, keys in the order of the columns. Nulls, numbers that are not
/// finite and empty dates are null; moments are texts as in CSV, blobs base64 texts; bytes that are
/// no UTF-8 become U+FFFD.
void writeJson(OutputBuffer& out, ResultTable const& table);

/// The same objects, one a line, with nothing around them.
void writeNdjson(OutputBuffer& out, ResultTable const& table);

/// A text as a JSON string with its quotes.
void writeJsonText(OutputBuffer& out, std::string_view text);

/// Names made different: the second "nome" becomes "nome_2", or the next number that no column has.
std::vector<std::string> distinctNames(std::vector<std::string> const& names);

}  // namespace mox::cli
