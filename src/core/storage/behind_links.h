#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace mox::core {

/// Where a path leads through all its symbolic links, so that a file which is replaced leaves the
/// link to it; the path itself when nothing is there yet.
inline std::filesystem::path behindLinks(std::string const& path) {
  std::error_code error;
  std::filesystem::path resolved = std::filesystem::canonical(path, error);
  return error ? std::filesystem::path(path) : resolved;
}

}  // namespace mox::core
