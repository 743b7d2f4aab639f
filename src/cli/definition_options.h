#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/host.h"
#include "cli/sort_order.h"
#include "core/run/definition_run.h"

namespace CLI {
class App;
}

namespace mox::cli {

/// Which definition to run, and what the user asks of it.
struct DefinitionOptions {
  std::string name;
  std::vector<std::string> filters;  // COLUMN=VALUE
};

/// What the user asks of a chain of sources beside its filters.
struct ChainOptions {
  std::vector<std::string> sort;  // COLUMN[:desc],...
  bool agreesToChanges = false;
  bool composesOnly = false;  // not the user's to set: nothing is changed
};

/// Adds NAME and `--filter` to a command.
void addDefinitionOptions(CLI::App& command, DefinitionOptions& options);

/// Adds `--sort` and `--yes` to a command.
void addChainOptions(CLI::App& command, ChainOptions& options);

/// The columns of several orders in a row. Throws UsageError.
std::vector<SortColumn> parseSortOrders(std::vector<std::string> const& texts);

/// Throws UsageError where units are needed and nobody named a user or a unit.
void demandUnits(bool keepsToUnits, GlobalOptions const& globals, std::string const& name);

/// A run of the definition for the units of the host, with filters and order set. Throws moxError
/// for an unknown definition, and UsageError for a wrong filter or order, where units are needed
/// and nobody named a user or a unit, and where data would be changed and nobody agreed to it.
std::unique_ptr<core::DefinitionRun> prepareRun(Host& host, GlobalOptions const& globals,
                                                DefinitionOptions const& options,
                                                ChainOptions const& chain);

}  // namespace mox::cli
