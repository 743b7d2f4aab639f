#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/commands/text_column.h"
#include "cli/definitions/definition_list.h"
#include "cli/host.h"
#include "cli/notes.h"
#include "cli/output/result_printer.h"

namespace mox::cli {

namespace {

struct ItemsOptions {
  std::string kind;  // empty: every kind
  OutputOptions output;
};

std::shared_ptr<moxDataMatrix> listItems(Host& host, std::string const& kind) {
  auto matrix = host.make<moxDataMatrix>("moxDataMatrix");
  auto const description = addTextColumn(host, *matrix, "description");
  auto const kinds = addTextColumn(host, *matrix, "kind");
  auto const library = addTextColumn(host, *matrix, "library");
  auto const classes = addTextColumn(host, *matrix, "class");
  for (auto const& item : usableDefinitions(host)) {
    auto const word = kindWord(*item);
    if (kind.empty() || word == kind) {
      description->appendValue(item->description());
      kinds->appendValue(word);
      library->appendValue(item->getParentLibName());
      classes->appendValue(item->name());
    }
  }
  return matrix;
}

void runItems(GlobalOptions const& globals, ItemsOptions const& options) {
  ResultPrinter printer(options.output, globals.quiet);
  Host host(globals);
  Notes notes;
  noteSkippedElements(host, notes);
  printer.print(listItems(host, options.kind));
  printer.tell();
  notes.tell();
}

}  // namespace

Command addItemsCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("items", "List the definitions");
  parser->footer(
      "\nThe definitions of the collections in [ZYNCollectionDirs] that the session may\n"
      "use, in the order of their descriptions. Of several with one description the\n"
      "first is the one that is found by it. Elements of the collections that no\n"
      "loaded library knows are told on standard error.");
  auto const options = std::make_shared<ItemsOptions>();
  parser
      ->add_option("--kind", options->kind,
                   "Only one kind: search, pack, formatter,\n"
                   "data-source, indicator or data-processor")
      ->option_text("KIND")
      ->check(CLI::IsMember(kindWords()));
  addOutputOptions(*parser, options->output);
  return {parser, [options](GlobalOptions const& globals) { runItems(globals, *options); }};
}

}  // namespace mox::cli
