#include "core/session/settings_user_directory.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr char const* kSection = "users";

/// Reads the keys of one user's section.
class UserReader {
 public:
  UserReader(moxSettings const& settings, std::string login)
      : settings_(settings),
        login_(std::move(login)),
        section_(fmt::format("{}.{}", kSection, login_)) {}

  User read() const {
    User user;
    user.login = login_;
    user.name = text("name", login_);
    user.id = integer("id", text("id", ""), "id = 7");
    user.defaultUnit = integer("default_unit", text("default_unit", "0"), "default_unit = 3");
    user.worksByUnits = text("works_by_units", "false") == "true";
    user.student = text("student", "false") == "true";
    int const headOffice = integer("head_office", text("head_office", "0"), "head_office = 1");
    for (auto const& unit : elements("units")) {
      user.units.push_back({integer("units", unit, "units = [3, 4]"), headOffice});
    }
    for (auto& library : elements("libraries")) {
      user.libraries.insert(std::move(library));
    }
    normalizeUnits(user, headOffice);
    return user;
  }

 private:
  std::string text(char const* key, std::string const& defaultValue) const {
    return settings_.value(section_, key, defaultValue);
  }

  // A list stands in the settings as lines.
  std::vector<std::string> elements(char const* key) const {
    std::vector<std::string> lines;
    std::string const joined = text(key, "");
    for (std::size_t begin = 0; begin < joined.size();) {
      auto const end = std::min(joined.find('\n', begin), joined.size());
      lines.push_back(joined.substr(begin, end - begin));
      begin = end + 1;
    }
    return lines;
  }

  int integer(char const* key, std::string const& value, char const* example) const {
    int number = 0;
    auto const result = std::from_chars(value.data(), value.data() + value.size(), number);
    if (result.ec != std::errc() || result.ptr != value.data() + value.size()) {
      throw moxDefaultErrorImpl<moxError>(fmt::format(
          "user '{}' in the settings needs '{}' as a whole number of 32 bits; write for "
          "example {}",
          login_, key, example));
    }
    return number;
  }

  moxSettings const& settings_;
  std::string const login_;
  std::string const section_;
};

}  // namespace

User SettingsUserDirectory::find(std::string const& login) const {
  auto const logins = settings_.keys(kSection);
  if (std::find(logins.begin(), logins.end(), login) == logins.end()) {
    throw moxDefaultErrorImpl<moxError>(fmt::format("user '{}' is not known", login));
  }
  return UserReader(settings_, login).read();
}

}  // namespace mox::core
