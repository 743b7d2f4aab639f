#pragma once

#include <string>
#include <vector>

/// The application's settings: sections of keys with text values. Constant after start, so safe for
/// all threads.
class moxSettings {
 public:
  virtual ~moxSettings() = default;

  /// Keys of a section in the order of the file; empty for an unknown section.
  virtual std::vector<std::string> keys(std::string const& section) const = 0;

  /// The value as text, or `defaultValue` when the section or the key is not there.
  virtual std::string value(std::string const& section, std::string const& key,
                            std::string const& defaultValue) const = 0;
};
