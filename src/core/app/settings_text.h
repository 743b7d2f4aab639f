#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace mox::core {

/// A place of a settings text that must not reach the TOML parser. Its what() also says what to do.
class SettingsTextFault : public std::runtime_error {
 public:
  SettingsTextFault(std::size_t line, std::string const& what)
      : std::runtime_error(what), line_(line) {}

  std::size_t line() const { return line_; }

 private:
  std::size_t line_;
};

/// The same settings in ASCII, line by line: letters beyond it are escaped between quotes and left
/// out of comments. A text that is no TOML may come out as any other that is none.
///
/// It exists because the parser is undefined for letters and blanks beyond ASCII at many places: it
/// takes them for impossible wherever it looks for blanks or for the end of a value. Throws
/// SettingsTextFault for such characters outside of quotes and comments, for control characters and
/// bytes that are no UTF-8, and for texts of several lines, which settings have no use for.
std::string asciiSettings(std::string_view text);

}  // namespace mox::core
