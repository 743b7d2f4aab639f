#include <CLI/CLI.hpp>

#include "cli/commands/collection_output.h"
#include "cli/commands/commands.h"
#include "cli/host.h"
#include "cli/not_empty.h"
#include "cli/output/output_target.h"
#include "mox/core/blob.h"
#include "mox/core/file_operations.h"

namespace mox::cli {

namespace {

struct UnpackOptions {
  std::string file;
  std::string out;
};

void runUnpack(GlobalOptions const& globals, UnpackOptions const& options) {
  auto const target = openOutputFile(options.out);
  Host host(globals, Parts::kClasses);
  auto const file = host.make<moxFileOperations>("moxFileOperations")->readFile(options.file);
  auto const document = fileFormat(host)->documentOf(*file, options.file);
  target->write({document->data(), document->size()});
  target->commit();
}

}  // namespace

Command addUnpackCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("unpack", "Write the XML of a collection file");
  parser->footer("\nThe text is written as it was packed, byte by byte.");
  auto const options = std::make_shared<UnpackOptions>();
  parser->add_option("FILE", options->file, "The collection file (.zcf)")
      ->required()
      ->option_text(" ")
      ->check(notEmpty());
  addOutOption(*parser, options->out, "FILE.xml");
  return {parser, [options](GlobalOptions const& globals) { runUnpack(globals, *options); }};
}

}  // namespace mox::cli
