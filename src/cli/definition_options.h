#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/host.h"
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

/// Adds NAME and `--filter` to a command.
void addDefinitionOptions(CLI::App& command, DefinitionOptions& options);

/// Throws UsageError where units are needed and nobody named a user or a unit.
void demandUnits(bool keepsToUnits, GlobalOptions const& globals, std::string const& name);

/// A run of the definition for the units of the host, with the filters set. Throws moxError for an
/// unknown definition, and UsageError for a wrong filter and where units are needed and nobody
/// named a user or a unit.
std::unique_ptr<core::DefinitionRun> prepareRun(Host& host, GlobalOptions const& globals,
                                                DefinitionOptions const& options);

}  // namespace mox::cli
