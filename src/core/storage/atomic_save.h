#pragma once

#include <cstddef>
#include <string>

namespace mox::core {

/// Makes `count` bytes the content of the file at `path`, all or nothing: written beside it,
/// synced, and renamed over it. Throws FileError, leaving neither a part of the new content nor a
/// temporary file. A device or pipe is written to in place.
void saveAtomically(std::string const& path, char const* bytes, std::size_t count);

}  // namespace mox::core
