#include "cli/definition_options.h"

#include <CLI/CLI.hpp>

#include "cli/error_text.h"
#include "cli/not_empty.h"

namespace mox::cli {

void addDefinitionOptions(CLI::App& command, DefinitionOptions& options) {
  command.add_option("NAME", options.name, "The definition, by its description")
      ->required()
      ->option_text(" ")
      ->check(notEmpty());
  command
      .add_option("--filter", options.filters,
                  "Narrow the result: COLUMN=VALUE,\n"
                  "COLUMN=MIN..MAX or COLUMN=A,B,C, as the\n"
                  "definition offers (repeatable)")
      ->option_text("COLUMN=VALUE")
      ->expected(1, CLI::detail::expected_max_vector_size)
      ->allow_extra_args(false);
}

/// Without units the result would be empty, which nobody expects who forgot an option.
void demandUnits(bool keepsToUnits, GlobalOptions const& globals, std::string const& name) {
  if (globals.user.empty() && globals.units.empty() && keepsToUnits) {
    throw UsageError("the definition " + core::quotedForMessage(name) +
                     " keeps to business units; it needs --user or --unit");
  }
}

std::unique_ptr<core::DefinitionRun> prepareRun(Host& host, GlobalOptions const& globals,
                                                DefinitionOptions const& options) {
  auto run = std::make_unique<core::DefinitionRun>(host.application(),
                                                   host.application().sessions(), options.name);
  demandUnits(run->keepsToUnits(), globals, options.name);
  run->setUnits(host.units());
  try {
    run->setFilters(options.filters);
  } catch (core::FilterArgumentError const& error) {
    throw UsageError(errorLine(error));
  }
  return run;
}

}  // namespace mox::cli
