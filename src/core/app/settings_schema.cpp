#include "core/app/settings_schema.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace mox::core {

namespace {

char lower(char character) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      std::size_t const above = row[j];
      std::size_t const replaced = diagonal + (lower(from[i - 1]) == lower(to[j - 1]) ? 0 : 1);
      row[j] = std::min({replaced, above + 1, row[j - 1] + 1});
      diagonal = above;
    }
  }
  return row.back();
}

constexpr std::size_t kLongestNameCompared = 64;

// A third of the letters may differ: more would suggest names that have nothing in common.
bool isNear(std::size_t distance, std::string_view name) {
  return distance <= 1 + name.size() / 3;
}

}  // namespace

std::vector<SettingSection> const& settingSections() {
  using enum SettingShape;
  using Keys = SettingSection::Keys;
  static std::vector<SettingSection> const sections{
      {"database",
       Keys::kListed,
       {{"url", kText, "url = \"sqlite:escola.db\""},
        {"password_env", kText, "password_env = \"ZYN_PASSWORD\""},
        {"password_file", kPath, "password_file = \"password.txt\""}}},
      {"modules", Keys::kListed, {{"paths", kPathList, "paths = [\"libmox_zyn.so\"]"}}},
      {"ZYNCollectionDirs", Keys::kAnyPath, {}},
      {"menu", Keys::kListed, {{"dir", kPath, "dir = \"menu\""}}},
      {"chart", Keys::kListed, {{"url", kText, "url = \"http://127.0.0.1:3000/chart\""}}},
      {"limits",
       Keys::kListed,
       {{"rows", kInteger, "rows = 100000000"},
        {"columns", kInteger, "columns = 10000"},
        {"cells", kInteger, "cells = 200000000"}}},
      {"server", Keys::kListed, {{"listen", kText, "listen = \"127.0.0.1:8080\""}}},
      {"users",
       Keys::kTables,
       {{"id", kInteger, "id = 7"},
        {"name", kText, "name = \"Maria\""},
        {"default_unit", kInteger, "default_unit = 3"},
        {"head_office", kInteger, "head_office = 1"},
        {"units", kIntegerList, "units = [3, 4]"},
        {"works_by_units", kBoolean, "works_by_units = true"},
        {"libraries", kTextList, "libraries = [\"ZYNC\"]"},
        {"student", kBoolean, "student = false"}}}};
  return sections;
}

SettingSection const* findSection(std::string_view name) {
  auto const& sections = settingSections();
  auto const found = std::find_if(sections.begin(), sections.end(),
                                  [&](auto const& section) { return section.name == name; });
  return found != sections.end() ? &*found : nullptr;
}

SettingKey const* findKey(SettingSection const& section, std::string_view name) {
  auto const found = std::find_if(section.known.begin(), section.known.end(),
                                  [&](auto const& key) { return key.name == name; });
  return found != section.known.end() ? &*found : nullptr;
}

std::string_view describeShape(SettingShape shape) {
  switch (shape) {
    case SettingShape::kText:
      return "a text";
    case SettingShape::kPath:
      return "a path as a text";
    case SettingShape::kInteger:
      return "a whole number";
    case SettingShape::kBoolean:
      return "true or false";
    case SettingShape::kTextList:
      return "a list of texts";
    case SettingShape::kIntegerList:
      return "a list of whole numbers";
    case SettingShape::kPathList:
      return "a list of paths as texts";
  }
  return "another value";
}

std::string suggestName(std::string_view name, std::vector<std::string_view> const& known) {
  std::string_view nearest;
  std::size_t nearestDistance = kLongestNameCompared;
  for (auto const candidate : known) {
    auto const distance =
        name.size() > kLongestNameCompared ? kLongestNameCompared : editDistance(name, candidate);
    if (distance < nearestDistance) {
      nearest = candidate;
      nearestDistance = distance;
    }
  }
  return !nearest.empty() && isNear(nearestDistance, nearest)
             ? fmt::format(", did you mean '{}'?", nearest)
             : fmt::format("; known are: {}", fmt::join(known, ", "));
}

}  // namespace mox::core
