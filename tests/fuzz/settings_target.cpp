#include "core/app/settings.h"
#include "fuzz/promise.h"
#include "fuzz/targets.h"

namespace mox::fuzz {

namespace {

constexpr char const* kPathSections[] = {"ZYNCollectionDirs", "menu", "modules"};

bool isAbsoluteOrEmpty(std::string const& path) {
  return path.empty() || path.front() == '/';
}

}  // namespace

void readSettings(std::string_view bytes) {
  mox::core::Settings settings;
  if (!accepted([&] { settings = mox::core::Settings::parse(bytes, "/srv/zyn.toml"); })) {
    return;
  }
  for (auto const* const section : kPathSections) {
    for (auto const& key : settings.keys(section)) {
      for (auto const& path : settings.list(section, key)) {
        require(isAbsoluteOrEmpty(path), "a path is absolute");
        require(path.find('\0') == std::string::npos, "a path has no NUL");
      }
    }
  }
}

}  // namespace mox::fuzz
