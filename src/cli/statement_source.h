#pragma once

#include <string>

namespace mox::cli {

/// The statement that the user gave: the text itself, or for "-" all of standard input. Throws
/// UsageError when it is empty, and moxError when it cannot be read or is larger than 16 MiB.
std::string readStatement(std::string const& argument);

}  // namespace mox::cli
