#include "cli/program.h"

#include <csignal>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/error_text.h"
#include "cli/global_options.h"
#include "cli/not_empty.h"
#include "cli/output/output_target.h"
#include "mox/core/error.h"

namespace mox::cli {

namespace {

constexpr int kFailed = 1;
constexpr int kBadUsage = 2;
constexpr int kHelpColumn = 28;

constexpr char const* kDescription =
    "Asks a database through the zyn module and prints what it answers.\n";
constexpr char const* kFooter =
    "\nThe options above may also stand behind the command. Settings are read from\n"
    "the file given by --config or by ZYN_CONFIG, else from zyn.toml in the working\n"
    "directory, else from /etc/zyn/zyn.toml.\n"
    "Exit status: 0 done; 1 failed, one line on standard error says why; 2 called\n"
    "wrongly.";
constexpr char const* kShortHelp =
    "usage: zyn [OPTIONS] COMMAND\n"
    "commands: {}\n"
    "zyn --help tells more, zyn COMMAND --help all of one\n";

/// The line's one write keeps it whole beside the output of other programs.
void reportFailure(std::string const& line) {
  std::string const text = "zyn: " + line + "\n";
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void printOut(std::string const& text) {
  auto const target = openStandardOutput();
  target->write(text);
  target->commit();
}

/// The command line and what was read from it.
class Program {
 public:
  Program() : parser_(kDescription, "zyn") {
    parser_.set_help_flag("-h,--help", "Print this help and exit");
    parser_.set_version_flag("--version", "zyn " ZYN_VERSION, "Print the version and exit");
    parser_.footer(kFooter);
    parser_.get_formatter()->column_width(kHelpColumn);
    parser_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    parser_.get_formatter()->label("Positionals", "Arguments");
    parser_.require_subcommand(0, 1);
    parser_.fallthrough();
    addGlobalOptions();
    commands_ = {addClassesCommand(parser_), addItemsCommand(parser_),   addShowCommand(parser_),
                 addPackCommand(parser_),    addUnpackCommand(parser_),  addRunCommand(parser_),
                 addSearchCommand(parser_),  addExplainCommand(parser_), addSqlCommand(parser_)};
    for (auto const& command : commands_) {
      command.parser->group("Commands");
      command.parser->footer(command.parser->get_footer() +
                             "\nSee zyn --help for the global options.");
    }
  }

  int run(int argc, char const* const* argv) {
    try {
      parser_.parse(argc, argv);
    } catch (CLI::CallForHelp const&) {
      printOut(helpText());
      return 0;
    } catch (CLI::CallForVersion const& version) {
      printOut(std::string(version.what()) + "\n");
      return 0;
    } catch (CLI::ExtrasError const& error) {
      throw UsageError(parser_.get_subcommands().empty() ? unknownCommand() : error.what());
    } catch (CLI::ParseError const& error) {
      throw UsageError(error.what());
    }
    return runChosen();
  }

  /// How to call for help on what was asked: "zyn sql --help".
  std::string helpCall() const {
    auto const chosen = parser_.get_subcommands();
    return chosen.empty() ? "zyn --help" : "zyn " + chosen.front()->get_name() + " --help";
  }

 private:
  void addGlobalOptions() {
    parser_.add_option("--config", options_.config, "Read the settings from FILE")
        ->option_text("FILE")
        ->check(notEmpty());
    parser_.add_option("--user", options_.user, "Log in as NAME, a user of settings or database")
        ->option_text("NAME")
        ->check(notEmpty());
    parser_.add_option("--unit", options_.units, "Work for the business unit ID (repeatable)")
        ->option_text("ID")
        ->allow_extra_args(false)
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    parser_.add_flag("--quiet", options_.quiet, "Print neither progress nor row counts");
  }

  std::string helpText() {
    std::string help = parser_.help();
    return help.ends_with('\n') ? help : help + "\n";
  }

  /// What could not be placed, when no command was chosen: usually a command's name, mistyped.
  std::string unknownCommand() const {
    return fmt::format("there is no command or option {}; the commands are {}",
                       parser_.remaining().front(), commandNames());
  }

  std::string commandNames() const {
    std::vector<std::string> names;
    for (auto const& command : commands_) {
      names.push_back(command.parser->get_name());
    }
    return fmt::to_string(fmt::join(names, ", "));
  }

  int runChosen() {
    for (auto const& command : commands_) {
      if (command.parser->parsed()) {
        command.run(options_);
        return 0;
      }
    }
    std::fputs(fmt::format(kShortHelp, commandNames()).c_str(), stderr);
    return kBadUsage;
  }

  CLI::App parser_;
  GlobalOptions options_;
  std::vector<Command> commands_;
};

int runGuarded(Program& program, int argc, char const* const* argv) {
  try {
    return program.run(argc, argv);
  } catch (UsageError const& error) {
    reportFailure(fmt::format("{} (see {})", errorLine(error), program.helpCall()));
    return kBadUsage;
  } catch (moxError const& error) {
    reportFailure(errorLine(error));
  } catch (std::exception const& error) {
    reportFailure(errorLine(error));
  }
  return kFailed;
}

}  // namespace

int runProgram(int argc, char const* const* argv) {
  // A database server or a reader that goes away shall be an error that is told, not a sudden end.
  std::signal(SIGPIPE, SIG_IGN);
  Program program;
  return runGuarded(program, argc, argv);
}

}  // namespace mox::cli
