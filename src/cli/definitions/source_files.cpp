#include "cli/definitions/source_files.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "core/storage/file_error.h"

namespace mox::cli {

namespace {

namespace fs = std::filesystem;

void check(std::error_code const& error, std::string const& path) {
  if (error) {
    throw core::FileError("read", path, error.value());
  }
}

std::vector<std::string> xmlFilesBelow(std::string const& folder) {
  std::vector<std::string> files;
  std::error_code error;
  fs::recursive_directory_iterator entry(folder, error);
  check(error, folder);
  while (entry != fs::recursive_directory_iterator()) {
    if (entry->path().extension() == ".xml" && entry->is_regular_file(error)) {
      files.push_back(entry->path().string());
    }
    check(error, entry->path().string());
    entry.increment(error);
    check(error, folder);
  }
  if (files.empty()) {
    throw core::FileError("pack", folder, "there is no .xml file below it");
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<std::string> sourceFiles(std::vector<std::string> const& sources) {
  std::vector<std::string> files;
  std::set<fs::path> seen;
  for (auto const& source : sources) {
    std::error_code error;
    bool const isFolder = fs::is_directory(source, error);
    check(error, source);
    for (auto const& file : isFolder ? xmlFilesBelow(source) : std::vector{source}) {
      auto const place = fs::canonical(file, error);
      check(error, file);
      if (seen.insert(place).second) {
        files.push_back(file);
      }
    }
  }
  return files;
}

}  // namespace mox::cli
