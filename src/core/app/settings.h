#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox/core/settings.h"

namespace mox::core {

/// The settings of one TOML file, checked against what the application knows, or none at all.
/// Constant once made, so safe from any thread.
///
/// A table inside a section is a section of its own, named with a dot ("users.maria"); the section
/// above has it among its keys. Values are kept as texts: integers in decimal, booleans as "true"
/// and "false". A value that is a path is kept absolute: what is relative in the file is meant from
/// the file's folder.
class Settings final : public moxSettings {
 public:
  /// Without any section.
  Settings() = default;

  /// The file that holds: `option` (from the command line) when given, else the one named by the
  /// environment's ZYN_CONFIG, else zyn.toml in the working directory, else /etc/zyn/zyn.toml.
  /// Empty when there is none. Throws moxError when the file that was asked for does not exist.
  static std::optional<std::filesystem::path> locate(
      std::optional<std::filesystem::path> const& option);

  /// Reads a file. Throws moxError with file, line, what is wrong and what to do about it.
  static Settings load(std::filesystem::path const& file);

  /// As load, for a text that stands for the content of `file`; the file is not touched.
  static Settings parse(std::string_view text, std::filesystem::path const& file);

  std::vector<std::string> keys(std::string const& section) const override;

  /// Elements of a list are parted by line breaks.
  std::string value(std::string const& section, std::string const& key,
                    std::string const& defaultValue) const override;

  /// The elements of a list; a single value is a list of one, and a missing key one of none.
  std::vector<std::string> list(std::string const& section, std::string const& key) const;

  bool hasSection(std::string const& section) const { return sections_.count(section) == 1; }
  bool has(std::string const& section, std::string const& key) const;

  /// The file, absolute; empty for settings without one.
  std::filesystem::path const& file() const { return file_; }

  /// The folder from which relative paths are meant; the working directory for settings without a
  /// file.
  std::filesystem::path baseDirectory() const;

  /// `path` itself when absolute, else from the base directory.
  std::filesystem::path resolve(std::filesystem::path const& path) const;

  /// Adds a section's key behind the others, or replaces its value: for whoever makes settings
  /// without a file.
  void set(std::string const& section, std::string const& key, std::vector<std::string> values);

  /// Adds a section, as an empty one when no key follows.
  void addSection(std::string const& section) { sections_.try_emplace(section); }

 private:
  using Entry = std::pair<std::string, std::vector<std::string>>;  // key, values

  Entry const* find(std::string const& section, std::string const& key) const;

  std::filesystem::path file_;
  std::map<std::string, std::vector<Entry>> sections_;  // keys of each in the order of the file
};

}  // namespace mox::core
