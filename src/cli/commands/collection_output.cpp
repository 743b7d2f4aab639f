#include "cli/commands/collection_output.h"

#include <CLI/CLI.hpp>

#include "cli/not_empty.h"
#include "mox/zyn/items/zyn_utils.h"

namespace mox::cli {

void addOutOption(CLI::App& command, std::string& out, std::string const& form) {
  command
      .add_option("--out", out,
                  "Write to " + form +
                      ", which appears, or is\n"
                      "replaced, only when everything went well")
      ->option_text(form)
      ->required()
      ->check(notEmpty());
}

std::shared_ptr<moxZYNFileFormat> fileFormat(Host& host) {
  auto format = std::dynamic_pointer_cast<moxZYNFileFormat>(host.make<moxZYNUtils>("moxZYNUtils"));
  if (!format) {
    throw moxDefaultErrorImpl<moxError>("the loaded module does not tell the form of its files");
  }
  return format;
}

}  // namespace mox::cli
