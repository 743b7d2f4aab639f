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

void addChainOptions(CLI::App& command, ChainOptions& options) {
  command
      .add_option("--sort", options.sort,
                  "Sort by columns that a sorter of the\n"
                  "definition offers to its user (repeatable)")
      ->option_text("COLUMN[:desc],...")
      ->allow_extra_args(false);
  command.add_flag("--yes", options.agreesToChanges, "Run a definition also when it changes data")
      ->option_text(" ");
}

std::vector<SortColumn> parseSortOrders(std::vector<std::string> const& texts) {
  std::vector<SortColumn> order;
  for (auto const& text : texts) {
    auto const columns = parseSortOrder(text);
    order.insert(order.end(), columns.begin(), columns.end());
  }
  return order;
}

/// Without units the result would be empty, which nobody expects who forgot an option.
void demandUnits(bool keepsToUnits, GlobalOptions const& globals, std::string const& name) {
  if (globals.user.empty() && globals.units.empty() && keepsToUnits) {
    throw UsageError("the definition " + core::quotedForMessage(name) +
                     " keeps to business units; it needs --user or --unit");
  }
}

namespace {

void demandConsent(core::DefinitionRun const& run, ChainOptions const& chain,
                   std::string const& name) {
  if (run.changesData() && !chain.agreesToChanges && !chain.composesOnly) {
    throw UsageError("the definition " + core::quotedForMessage(name) +
                     " changes data; it is run with --yes only");
  }
}

void setFilters(core::DefinitionRun& run, std::vector<std::string> const& filters) {
  try {
    run.setFilters(filters);
  } catch (core::FilterArgumentError const& error) {
    throw UsageError(errorLine(error));
  }
}

void setOrder(core::DefinitionRun& run, std::vector<std::string> const& texts) {
  std::vector<core::SortArgument> arguments;
  for (auto const& [column, descending] : parseSortOrders(texts)) {
    arguments.push_back({column, descending});
  }
  try {
    run.setOrder(arguments);
  } catch (core::SortArgumentError const& error) {
    throw UsageError("--sort: " + errorLine(error));
  }
}

}  // namespace

std::unique_ptr<core::DefinitionRun> prepareRun(Host& host, GlobalOptions const& globals,
                                                DefinitionOptions const& options,
                                                ChainOptions const& chain) {
  auto run = std::make_unique<core::DefinitionRun>(host.application(),
                                                   host.application().sessions(), options.name);
  demandUnits(run->keepsToUnits(), globals, options.name);
  demandConsent(*run, chain, options.name);
  run->setUnits(host.units());
  setFilters(*run, options.filters);
  setOrder(*run, chain.sort);
  if (chain.agreesToChanges) {
    run->agreeToChanges();
  }
  return run;
}

}  // namespace mox::cli
