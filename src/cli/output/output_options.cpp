#include "cli/output/output_options.h"

#include <CLI/CLI.hpp>

namespace mox::cli {

void addOutputOptions(CLI::App& command, OutputOptions& options) {
  command
      .add_option(
          "--format", options.format,
          "table, csv, json or ndjson; a table on a terminal and csv elsewhere when not given")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"table", "csv", "json", "ndjson"}));
  command.add_option("--out", options.out, "Write to FILE, which is replaced when all went well")
      ->type_name("FILE");
}

}  // namespace mox::cli
