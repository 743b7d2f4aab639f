#include "core/session/settings_user_directory.h"

#include <gtest/gtest.h>

#include "core/app/settings.h"
#include "mox/core/error.h"

using mox::core::Settings;
using mox::core::SettingsUserDirectory;
using mox::core::User;
using mox::core::UserUnit;

namespace {

User findIn(std::string const& toml, std::string const& login) {
  auto const settings = Settings::parse(toml, "/srv/zyn.toml");
  return SettingsUserDirectory(settings).find(login);
}

std::string failureOf(std::string const& toml, std::string const& login) {
  try {
    findIn(toml, login);
    return "";
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

}  // namespace

TEST(SettingsUserDirectory, ReadsEveryKey) {
  auto const user = findIn(
      "[users]\n"
      "maria = {id = 7, name = \"Maria José\", default_unit = 3, head_office = 1, units = [4, 3],"
      " works_by_units = true, libraries = [\"ZYNC\", \"OUTRA\"], student = true}\n",
      "maria");
  EXPECT_EQ(user.id, 7);
  EXPECT_EQ(user.login, "maria");
  EXPECT_EQ(user.name, "Maria José");
  EXPECT_EQ(user.defaultUnit, 3);
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{3, 1}, {4, 1}}));
  EXPECT_TRUE(user.worksByUnits);
  EXPECT_EQ(user.libraries, (std::set<std::string>{"OUTRA", "ZYNC"}));
  EXPECT_TRUE(user.student);
}

TEST(SettingsUserDirectory, EveryKeyButTheIdMayBeLeftOut) {
  auto const user = findIn("[users.joao]\nid = 1\n", "joao");
  EXPECT_EQ(user.name, "joao");
  EXPECT_EQ(user.defaultUnit, 0);
  EXPECT_TRUE(user.units.empty());
  EXPECT_FALSE(user.worksByUnits);
  EXPECT_TRUE(user.libraries.empty());
  EXPECT_FALSE(user.student);
}

TEST(SettingsUserDirectory, TheDefaultUnitIsOneOfTheUnits) {
  auto const user = findIn("[users.joao]\nid = 1\ndefault_unit = 5\nhead_office = 2\n", "joao");
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{5, 2}}));
}

TEST(SettingsUserDirectory, AnUnknownUserIsAnError) {
  EXPECT_EQ(failureOf("[users.joao]\nid = 1\n", "maria"), "user 'maria' is not known");
  EXPECT_EQ(failureOf("[users.joao]\nid = 1\n", "JOAO"), "user 'JOAO' is not known");
  EXPECT_EQ(failureOf("", "joao"), "user 'joao' is not known");
}

TEST(SettingsUserDirectory, AUserWithoutIdIsAnError) {
  EXPECT_EQ(
      failureOf("[users.joao]\nname = \"João\"\n", "joao"),
      "user 'joao' in the settings needs 'id' as a whole number of 32 bits; write for example "
      "id = 7");
}

TEST(SettingsUserDirectory, ANumberBeyond32BitsIsAnError) {
  EXPECT_EQ(failureOf("[users.joao]\nid = 1\nunits = [3000000000]\n", "joao"),
            "user 'joao' in the settings needs 'units' as a whole number of 32 bits; write for "
            "example units = [3, 4]");
}
