#include "core/app/settings.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <system_error>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr char const* kEnvironmentVariable = "ZYN_CONFIG";
constexpr char const* kFileName = "zyn.toml";
constexpr char const* kSystemFile = "/etc/zyn/zyn.toml";

bool isFile(std::filesystem::path const& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored) && !std::filesystem::is_directory(path, ignored);
}

std::filesystem::path demandFile(std::filesystem::path const& path, std::string_view askedBy) {
  if (!isFile(path)) {
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("settings file '{}', named by {}, does not exist; "
                    "correct the name or create the file",
                    path.string(), askedBy));
  }
  return path;
}

}  // namespace

std::optional<std::filesystem::path> Settings::locate(
    std::optional<std::filesystem::path> const& option) {
  if (option) {
    return demandFile(*option, "--config");
  }
  if (char const* const named = std::getenv(kEnvironmentVariable);
      named != nullptr && *named != '\0') {
    return demandFile(named, kEnvironmentVariable);
  }
  for (auto const* const candidate : {kFileName, kSystemFile}) {
    if (isFile(candidate)) {
      return candidate;
    }
  }
  return std::nullopt;
}

std::vector<std::string> Settings::keys(std::string const& section) const {
  std::vector<std::string> names;
  if (auto const found = sections_.find(section); found != sections_.end()) {
    std::transform(found->second.begin(), found->second.end(), std::back_inserter(names),
                   [](Entry const& entry) { return entry.first; });
  }
  return names;
}

std::string Settings::value(std::string const& section, std::string const& key,
                            std::string const& defaultValue) const {
  auto const* const entry = find(section, key);
  if (entry == nullptr) {
    return defaultValue;
  }
  std::string joined;
  for (auto const& element : entry->second) {
    joined += joined.empty() ? element : "\n" + element;
  }
  return joined;
}

std::vector<std::string> Settings::list(std::string const& section, std::string const& key) const {
  auto const* const entry = find(section, key);
  return entry != nullptr ? entry->second : std::vector<std::string>{};
}

bool Settings::has(std::string const& section, std::string const& key) const {
  return find(section, key) != nullptr;
}

std::filesystem::path Settings::baseDirectory() const {
  return file_.empty() ? std::filesystem::current_path() : file_.parent_path();
}

std::filesystem::path Settings::resolve(std::filesystem::path const& path) const {
  return path.is_absolute() ? path : (baseDirectory() / path).lexically_normal();
}

void Settings::set(std::string const& section, std::string const& key,
                   std::vector<std::string> values) {
  auto& entries = sections_[section];
  auto const found = std::find_if(entries.begin(), entries.end(),
                                  [&](Entry const& entry) { return entry.first == key; });
  if (found != entries.end()) {
    found->second = std::move(values);
  } else {
    entries.emplace_back(key, std::move(values));
  }
}

Settings::Entry const* Settings::find(std::string const& section, std::string const& key) const {
  auto const found = sections_.find(section);
  if (found == sections_.end()) {
    return nullptr;
  }
  auto const entry = std::find_if(found->second.begin(), found->second.end(),
                                  [&](Entry const& candidate) { return candidate.first == key; });
  return entry != found->second.end() ? &*entry : nullptr;
}

}  // namespace mox::core
