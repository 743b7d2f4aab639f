#pragma once

#include <string>
#include <vector>

namespace mox::cli {

/// The files that sources name, each once, in the order of the sources. A folder stands for every
/// file below it whose name ends in ".xml", by the bytes of their paths; links to folders are not
/// followed. Throws moxError for what is not there or cannot be listed, and for a folder without
/// such a file.
std::vector<std::string> sourceFiles(std::vector<std::string> const& sources);

}  // namespace mox::cli
