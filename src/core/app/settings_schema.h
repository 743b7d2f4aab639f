#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mox::core {

/// What a setting's value may be.
enum class SettingShape { kText, kPath, kInteger, kBoolean, kTextList, kIntegerList, kPathList };

/// A key that the application knows.
struct SettingKey {
  std::string_view name;
  SettingShape shape = SettingShape::kText;
  std::string_view example;  // as it would stand in the file
};

/// A section that the application knows.
struct SettingSection {
  enum class Keys { kListed, kAnyPath, kTables };

  std::string_view name;
  Keys keys = Keys::kListed;
  std::vector<SettingKey>
      known;  // kListed: of the section; kTables: of each table in it; kAnyPath: none
};

/// Every section of the file, in the order in which they are told to people.
std::vector<SettingSection> const& settingSections();

/// Null for a name that is not known.
SettingSection const* findSection(std::string_view name);
SettingKey const* findKey(SettingSection const& section, std::string_view name);

/// What a value of that shape is called in a message: "a text", "a whole number", ...
std::string_view describeShape(SettingShape shape);

/// ", did you mean 'x'?" for the nearest of `known` when one is near, else "; known are: a, b, c".
std::string suggestName(std::string_view name, std::vector<std::string_view> const& known);

}  // namespace mox::core
