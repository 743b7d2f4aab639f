#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace mox::cli {

/// Refuses an empty value: mostly a variable of a script that was never set, which must not count
/// as an option that was not given.
inline CLI::Validator notEmpty() {
  return CLI::Validator(
      [](std::string const& value) {
        return value.empty() ? std::string("the value is empty") : std::string();
      },
      "");
}

}  // namespace mox::cli
