#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/definition_options.h"
#include "cli/error_text.h"
#include "cli/explanation_text.h"
#include "cli/not_empty.h"
#include "cli/output/output_target.h"
#include "core/run/explanation.h"

namespace mox::cli {

namespace {

struct ExplainOptions {
  DefinitionOptions definition;
  ChainOptions chain;  // composesOnly is --dry-run
  std::string format = "text";
  std::string out;
};

using Report = core::DefinitionRun::Report;

class ExplainCommand {
 public:
  ExplainCommand(GlobalOptions const& globals, ExplainOptions const& options)
      : options_(options),
        kind_(options.chain.composesOnly ? Report::kComposeOnly : Report::kKept),
        target_(options.out.empty() ? openStandardOutput() : openOutputFile(options.out)),
        host_(globals),
        run_(prepareRun(host_, globals, options.definition, options.chain)) {}

  void execute() {
    run_->keepReport(kind_);
    try {
      run_->run();
    } catch (moxError const& error) {
      // Who asks why something fails wants to see how far it came, most of all.
      if (!run_->report().sources.empty()) {
        write(errorLine(error));
      }
      throw;
    }
    write("");
  }

 private:
  void write(std::string const& error) {
    auto const explanation = core::explain(*run_, kind_, error);
    target_->write(options_.format == "json" ? core::explanationJson(explanation)
                                             : explanationText(explanation));
    target_->commit();
  }

  ExplainOptions const& options_;
  Report kind_;
  std::unique_ptr<OutputTarget> target_;
  Host host_;
  std::unique_ptr<core::DefinitionRun> run_;
};

}  // namespace

Command addExplainCommand(CLI::App& program) {
  auto* const parser =
      program.add_subcommand("explain", "Tell why a definition's result is what it is");
  parser->footer(
      "\nThe definition is run, but for --dry-run. Told are the sources in the order of\n"
      "running, each statement as sent, every bound value and where it came from, the\n"
      "units, filters that nothing used, rows and time.");
  auto const options = std::make_shared<ExplainOptions>();
  addDefinitionOptions(*parser, options->definition);
  addChainOptions(*parser, options->chain);
  parser
      ->add_flag("--dry-run", options->chain.composesOnly,
                 "Put the statements together; run only what a\n"
                 "later one needs")
      ->option_text(" ");
  parser->add_option("--format", options->format, "text, which is usual, or json")
      ->option_text("FORMAT")
      ->check(CLI::IsMember({"text", "json"}));
  parser
      ->add_option("--out", options->out,
                   "Write to FILE, which appears, or is replaced,\n"
                   "only when the explanation is complete")
      ->option_text("FILE")
      ->check(notEmpty());
  return {parser,
          [options](GlobalOptions const& globals) { ExplainCommand(globals, *options).execute(); }};
}

}  // namespace mox::cli
