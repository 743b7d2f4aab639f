#pragma once

#include <functional>

#include "cli/global_options.h"

namespace CLI {
class App;
}

namespace mox::cli {

/// A command of the program.
struct Command {
  CLI::App* parser;                               // owned by the program's parser
  std::function<void(GlobalOptions const&)> run;  // throws what goes wrong
};

/// Each adds a command's options to the program's parser. Defined in the file named like the
/// command.
Command addClassesCommand(CLI::App& program);
Command addExplainCommand(CLI::App& program);
Command addItemsCommand(CLI::App& program);
Command addPackCommand(CLI::App& program);
Command addRunCommand(CLI::App& program);
Command addSearchCommand(CLI::App& program);
Command addShowCommand(CLI::App& program);
Command addSqlCommand(CLI::App& program);
Command addUnpackCommand(CLI::App& program);

}  // namespace mox::cli
