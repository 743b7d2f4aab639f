#pragma once

#include <string>

namespace mox::core {

/// Whether a file is a library of this machine's kind that was cut short: its headers name bytes
/// past its end. The system's loader maps such a file and dies of reading it, so it is asked about
/// ahead. False for a file that cannot be read or is no library: the loader has a reason of its own
/// for those.
bool isCutShort(std::string const& path);

}  // namespace mox::core
