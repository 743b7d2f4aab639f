#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/definitions/definition_list.h"
#include "cli/definitions/view_json.h"
#include "cli/definitions/view_tree.h"
#include "cli/host.h"
#include "cli/not_empty.h"
#include "cli/output/display_text.h"
#include "cli/output/output_target.h"
#include "mox/core/xml.h"

namespace mox::cli {

namespace {

struct ShowOptions {
  std::string name;
  bool xml = false;
  std::string format = "tree";
  std::string out;
};

/// The element as the definition writes itself, in a document of its own.
std::string xmlOf(Host& host, moxZYNItem const& item) {
  auto const document = host.make<moxXMLDocument>("moxXMLDocument");
  document->create(item.name());
  if (!item.save(document->root())) {
    throw moxDefaultErrorImpl<moxError>("the definition \"" + item.description() +
                                        "\" cannot be written as XML");
  }
  auto text = document->writeText(1, 1);
  return text.ends_with('\n') ? text : text + "\n";
}

/// A text of several lines that steers no terminal.
std::string harmless(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    auto const end = std::min(text.find('\n'), text.size());
    appendDisplayText(shown, text.substr(0, end), kNoWidthLimit);
    shown += '\n';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return shown;
}

std::string shownText(Host& host, ShowOptions const& options, bool onTerminal) {
  auto const item = findDefinition(host, options.name);
  if (options.xml) {
    auto const text = xmlOf(host, *item);
    return onTerminal ? harmless(text) : text;
  }
  auto const view = viewOf(*item);
  return options.format == "json" ? jsonText(view) : treeText(view);
}

void runShow(GlobalOptions const& globals, ShowOptions const& options) {
  auto const target = options.out.empty() ? openStandardOutput() : openOutputFile(options.out);
  Host host(globals);
  target->write(shownText(host, options, target->isTerminal()));
  target->commit();
}

}  // namespace

Command addShowCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("show", "Tell what a definition holds");
  parser->footer(
      "\nNAME is a description that zyn items lists. Behind -- it may start with a\n"
      "dash.");
  auto const options = std::make_shared<ShowOptions>();
  parser->add_option("NAME", options->name, "The definition's description")
      ->required()
      ->option_text(" ");
  auto* const format =
      parser->add_option("--format", options->format, "tree, which is for people, or json")
          ->option_text("FORMAT")
          ->check(CLI::IsMember({"tree", "json"}));
  parser->add_flag("--xml", options->xml, "The XML of the definition, as a collection\nholds it")
      ->excludes(format);
  parser
      ->add_option("--out", options->out,
                   "Write to FILE, which appears, or is replaced,\n"
                   "only when everything went well")
      ->option_text("FILE")
      ->check(notEmpty());
  return {parser, [options](GlobalOptions const& globals) { runShow(globals, *options); }};
}

}  // namespace mox::cli
