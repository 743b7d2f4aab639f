#include "cli/output/output_options.h"

#include <CLI/CLI.hpp>

#include "cli/not_empty.h"

namespace mox::cli {

void addOutputOptions(CLI::App& command, OutputOptions& options) {
  command
      .add_option("--format", options.format,
                  "table, csv, json or ndjson; without it a\n"
                  "table on a terminal, and csv elsewhere")
      ->option_text("FORMAT")
      ->check(CLI::IsMember({"table", "csv", "json", "ndjson"}));
  command
      .add_option("--out", options.out,
                  "Write to FILE, which appears, or is replaced,\n"
                  "only when everything went well")
      ->option_text("FILE")
      ->check(notEmpty());
}

}  // namespace mox::cli
