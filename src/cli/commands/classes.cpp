#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/commands/text_column.h"
#include "cli/host.h"
#include "cli/output/result_printer.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

namespace {

std::shared_ptr<moxDataMatrix> listClasses(Host& host) {
  auto matrix = host.make<moxDataMatrix>("moxDataMatrix");
  auto const name = addTextColumn(host, *matrix, "name");
  auto const container = addTextColumn(host, *matrix, "container");
  auto const library = addTextColumn(host, *matrix, "library");
  auto const available = addTextColumn(host, *matrix, "available");
  for (auto const& entry : host.application().registry().classes()) {
    name->appendValue(entry.name);
    container->appendValue(entry.containerKind);
    library->appendValue(entry.library);
    available->appendValue(entry.available ? "yes" : "no");
  }
  return matrix;
}

void runClasses(GlobalOptions const& globals, OutputOptions const& output) {
  ResultPrinter printer(output, globals.quiet);
  Host host(globals);
  printer.print(listClasses(host));
  printer.tell();
}

}  // namespace

Command addClassesCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("classes", "List the classes of the registry");
  parser->footer(
      "\nThe classes come in the order of their registration, each with the kind of its\n"
      "container, the library that brought it, and whether the session may use it.");
  auto const output = std::make_shared<OutputOptions>();
  addOutputOptions(*parser, *output);
  return {parser, [output](GlobalOptions const& globals) { runClasses(globals, *output); }};
}

}  // namespace mox::cli
