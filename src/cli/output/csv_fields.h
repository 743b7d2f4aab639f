#pragma once

#include <string_view>

#include "cli/output/output_buffer.h"

namespace mox::cli {

struct CsvOptions {
  bool forTerminal = false;  // control characters inside fields become visible pictures
};

/// A text as a field: in double quotes, inner ones doubled, when it holds a comma, a quote or a
/// line end, and when it is empty, so that it is told from a null.
void writeCsvField(OutputBuffer& out, std::string_view text, CsvOptions const& options);

}  // namespace mox::cli
