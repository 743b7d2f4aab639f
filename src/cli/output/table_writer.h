#pragma once

#include <string>
#include <vector>

#include "cli/output/output_buffer.h"
#include "cli/output/result_table.h"

namespace mox::cli {

struct TableOptions {
  int width = 0;        // places of the terminal; 0 shortens nothing
  bool styled = false;  // bold headers and dim nulls
};

/// Aligned columns under a header and a line, for eyes: numbers to the right, all else to the left,
/// nulls as the word null, blobs by their size. Texts that are too long for the terminal end in an
/// ellipsis; when not even that makes the columns fit, the last ones are left out and an ellipsis
/// stands in their place. Gives the names of the columns left out. A table without columns gives
/// nothing.
std::vector<std::string> writeTable(OutputBuffer& out, ResultTable const& table,
                                    TableOptions const& options);

}  // namespace mox::cli
