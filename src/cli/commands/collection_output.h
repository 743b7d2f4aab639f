#pragma once

#include <memory>
#include <string>

#include "cli/host.h"
#include "mox/zyn/items/zyn_file_format.h"

namespace CLI {
class App;
}

namespace mox::cli {

/// Adds the option --out that names the file to be made.
void addOutOption(CLI::App& command, std::string& out, std::string const& form);

/// The form of collection files. Throws moxError for a module that does not offer it.
std::shared_ptr<moxZYNFileFormat> fileFormat(Host& host);

}  // namespace mox::cli
