#include "zyn/items/zync_loader_service.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/settings.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_utils.h"

namespace {

namespace fs = std::filesystem;

constexpr char const* kSection = "ZYNCollectionDirs";

bool isCollectionName(std::string const& name) {
  auto const point = name.rfind('.');
  return point != name.npos && name.compare(point, name.npos, ".zcf") == 0;
}

/// Sorted, since a directory's own order would decide by chance which of two definitions of one
/// description comes first.
std::vector<std::string> collectionFiles(std::string const& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unknownKind;  // whatever cannot be told is left to the reader to complain of
    auto name = entry->path().filename().string();
    if (isCollectionName(name) && !entry->is_directory(unknownKind)) {
      names.push_back(std::move(name));
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

void loadFromPath(std::string path) {
  if (path.empty()) {
    return;
  }
  auto const cache = moxApp->get<moxZYNCache>("moxZYNCache");
  auto const utils = moxApp->get<moxZYNUtils>("moxZYNUtils");
  if (path.back() != '/') {
    path += '/';
  }
  for (auto const& name : collectionFiles(path)) {
    cache->appendCollection(utils->loadBinaryFile(path + name));
  }
}

}  // namespace

void ZYNCLoaderService::start() {
  auto const& settings = moxApp->settings();
  for (auto const& key : settings.keys(kSection)) {
    loadFromPath(settings.value(kSection, key, ""));
  }
}

void ZYNCLoaderService::stop() {
  moxApp->get<moxZYNCache>("moxZYNCache")->clear();
}
