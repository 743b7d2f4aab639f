#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/commands/collection_output.h"
#include "cli/commands/commands.h"
#include "cli/definitions/collection_reader.h"
#include "cli/definitions/collection_text.h"
#include "cli/definitions/source_files.h"
#include "cli/host.h"
#include "cli/not_empty.h"
#include "cli/output/output_target.h"
#include "core/documents/text_decoder.h"
#include "mox/core/blob.h"
#include "mox/core/xml.h"

namespace mox::cli {

namespace {

struct PackOptions {
  std::vector<std::string> sources;
  std::string library;  // empty: the one that the files name
  std::string out;
};

/// The library that all files agree on, and that was asked for; a file may leave it out.
std::string commonLibrary(std::string const& asked, std::vector<OpenCollection> const& files) {
  std::string library = asked;
  std::string teller = "--library";
  for (auto const& file : files) {
    if (library.empty()) {
      library = file.library;
      teller = file.path;
    } else if (!file.library.empty() && file.library != library) {
      throw moxDefaultErrorImpl<moxError>(
          fmt::format("{} belongs to the library \"{}\", and {} tells \"{}\"", file.path,
                      file.library, teller, library));
    }
  }
  return library;
}

std::shared_ptr<moxBlob> blobOf(Host& host, std::string const& text) {
  auto blob = host.make<moxBlob>("moxBlob");
  blob->assign(text.data(), text.size());
  return blob;
}

/// A single file keeps its text to the byte, unless it has to be given a library.
std::shared_ptr<moxBlob> documentOf(Host& host, std::string const& library,
                                    std::vector<OpenCollection> const& files) {
  if (files.size() == 1 && files.front().library == library) {
    return files.front().bytes;
  }
  std::vector<std::string> texts;
  texts.reserve(files.size());
  for (auto const& file : files) {
    texts.push_back(core::decodeXml({file.bytes->data(), file.bytes->size()}));
  }
  auto merged = blobOf(host, mergedCollection(library, texts));
  // Together they may go beyond what a document may have.
  host.make<moxXMLDocument>("moxXMLDocument")->parse(*merged);
  return merged;
}

void runPack(GlobalOptions const& globals, PackOptions const& options) {
  auto const paths = sourceFiles(options.sources);
  auto const target = openOutputFile(options.out);
  Host host(globals, Parts::kClasses);
  Notes notes;
  CollectionReader reader(host, notes);
  std::vector<OpenCollection> files;
  files.reserve(paths.size());
  for (auto const& path : paths) {
    files.push_back(reader.read(path));
  }
  auto const document = documentOf(host, commonLibrary(options.library, files), files);
  auto const format = fileFormat(host);
  auto const content = format->toFileContent(*document);
  // What is squeezed too well is refused by every reader, so it must not be written.
  format->documentOf(*content, options.out);
  target->write({content->data(), content->size()});
  target->commit();
  notes.tell();
}

}  // namespace

Command addPackCommand(CLI::App& program) {
  auto* const parser = program.add_subcommand("pack", "Make a collection file of open XML");
  parser->footer(
      "\nSRC is an open collection, or a folder that stands for every .xml file below\n"
      "it, by the bytes of their paths. The text of a single file is packed as it is;\n"
      "the definitions of several come into one collection.");
  auto const options = std::make_shared<PackOptions>();
  parser->add_option("SRC", options->sources, "Open XML files and folders")
      ->required()
      ->option_text("...")
      ->check(notEmpty());
  addOutOption(*parser, options->out, "FILE.zcf");
  parser
      ->add_option("--library", options->library,
                   "The library that the definitions belong to,\n"
                   "when the files do not say")
      ->option_text("NAME")
      ->check(notEmpty());
  return {parser, [options](GlobalOptions const& globals) { runPack(globals, *options); }};
}

}  // namespace mox::cli
