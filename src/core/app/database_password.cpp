#include "core/app/database_password.h"

#include <cstdlib>
#include <fstream>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr char const* kSection = "database";

[[noreturn]] void fail(Settings const& settings, std::string const& what) {
  auto const where = settings.file().empty() ? std::string() : settings.file().string() + ": ";
  throw moxDefaultErrorImpl<moxError>(where + what);
}

std::string fromEnvironment(Settings const& settings, std::string const& variable) {
  char const* const password = std::getenv(variable.c_str());
  if (password == nullptr) {
    fail(settings,
         fmt::format("[database] password_env names the environment variable {}, which is not set",
                     variable));
  }
  return password;
}

std::string fromFile(Settings const& settings, std::string const& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string password;
  if (!stream || (!std::getline(stream, password) && stream.bad())) {
    fail(settings, fmt::format("[database] password_file '{}' cannot be read", file));
  }
  if (!password.empty() && password.back() == '\r') {
    password.pop_back();
  }
  return password;
}

}  // namespace

std::string databasePassword(Settings const& settings) {
  auto const variable = settings.value(kSection, "password_env", "");
  auto const file = settings.value(kSection, "password_file", "");
  if (!variable.empty() && !file.empty()) {
    fail(settings, "[database] has both password_env and password_file; keep one of them");
  }
  if (!variable.empty()) {
    return fromEnvironment(settings, variable);
  }
  return file.empty() ? std::string() : fromFile(settings, file);
}

}  // namespace mox::core
