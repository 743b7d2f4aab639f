#pragma once

#include <string>

namespace CLI {
class App;
}

namespace mox::cli {

/// How and where a result is to be written.
struct OutputOptions {
  std::string format;  // "table", "csv", "json" or "ndjson"; empty: by the place it goes to
  std::string out;     // a file; empty: standard output
};

/// Adds `--format` and `--out` to a command.
void addOutputOptions(CLI::App& command, OutputOptions& options);

}  // namespace mox::cli
