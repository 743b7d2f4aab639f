#include "core/app/settings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "mox/core/error.h"
#include "support/temporary_directory.h"

using mox::core::Settings;

namespace {

Settings parse(std::string const& text) {
  return Settings::parse(text, "/srv/escola/zyn.toml");
}

std::string failureOf(std::string const& text) {
  try {
    parse(text);
    return "no failure";
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

template <class Call>
std::string messageOf(Call const& call) {
  try {
    call();
    return "no failure";
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

void write(std::filesystem::path const& file, std::string const& text) {
  std::ofstream(file, std::ios::binary) << text;
}

/// Working directory and ZYN_CONFIG as a test wants them, and afterwards as they were.
class SettingsLocation : public testing::Test {
 protected:
  SettingsLocation() {
    unsetenv("ZYN_CONFIG");
    std::filesystem::current_path(directory_.path());
  }
  ~SettingsLocation() override {
    unsetenv("ZYN_CONFIG");
    std::filesystem::current_path(before_);
  }

  std::filesystem::path const before_ = std::filesystem::current_path();
  TemporaryDirectory const directory_;
};

}  // namespace

TEST(Settings, WithoutAFileHaveNothing) {
  Settings const settings;
  EXPECT_TRUE(settings.keys("database").empty());
  EXPECT_EQ(settings.value("database", "url", "none"), "none");
  EXPECT_TRUE(settings.file().empty());
}

TEST(Settings, KeysComeInTheOrderOfTheFile) {
  auto const settings = parse("[ZYNCollectionDirs]\nzeta = \"/z\"\nalfa = \"/a\"\nmeio = \"/m\"\n");
  EXPECT_EQ(settings.keys("ZYNCollectionDirs"), (std::vector<std::string>{"zeta", "alfa", "meio"}));
}

TEST(Settings, KeysOfOneLineComeInItsOrder) {
  auto const settings = parse("[users]\nm = {units = [1], id = 2, default_unit = 1}\n");
  EXPECT_EQ(settings.keys("users.m"), (std::vector<std::string>{"units", "id", "default_unit"}));
}

TEST(Settings, AnUnknownSectionHasNoKeys) {
  auto const settings = parse("[menu]\ndir = \"/m\"\n");
  EXPECT_TRUE(settings.keys("other").empty());
  EXPECT_EQ(settings.value("other", "key", "default"), "default");
  EXPECT_EQ(settings.value("menu", "other", "default"), "default");
}

TEST(Settings, ValuesAreTexts) {
  auto const settings = parse(
      "[database]\nurl = \"sqlite:escola.db\"\n"
      "[users.maria]\nid = -7\nworks_by_units = true\nstudent = false\n");
  EXPECT_EQ(settings.value("database", "url", ""), "sqlite:escola.db");
  EXPECT_EQ(settings.value("users.maria", "id", ""), "-7");
  EXPECT_EQ(settings.value("users.maria", "works_by_units", ""), "true");
  EXPECT_EQ(settings.value("users.maria", "student", ""), "false");
}

TEST(Settings, ListsAreLinesOfAText) {
  auto const settings = parse("[users.maria]\nid = 1\nunits = [3, 4]\nlibraries = []\n");
  EXPECT_EQ(settings.value("users.maria", "units", ""), "3\n4");
  EXPECT_EQ(settings.list("users.maria", "units"), (std::vector<std::string>{"3", "4"}));
  EXPECT_EQ(settings.value("users.maria", "libraries", "none"), "");
  EXPECT_TRUE(settings.list("users.maria", "none").empty());
}

TEST(Settings, AnEmptySectionIsThere) {
  auto const settings = parse("[users]\n");
  EXPECT_TRUE(settings.hasSection("users"));
  EXPECT_FALSE(settings.hasSection("menu"));
}

TEST(Settings, PathsAreMeantFromTheFilesFolder) {
  auto const settings = parse(
      "[ZYNCollectionDirs]\na = \"items\"\nb = \"../comum\"\nc = \"/abs\"\nd = \"\"\n"
      "[modules]\npaths = [\"lib/um.so\", \"/lib/dois.so\"]\n"
      "[menu]\ndir = \"menu\"\n");
  EXPECT_EQ(settings.value("ZYNCollectionDirs", "a", ""), "/srv/escola/items");
  EXPECT_EQ(settings.value("ZYNCollectionDirs", "b", ""), "/srv/comum");
  EXPECT_EQ(settings.value("ZYNCollectionDirs", "c", ""), "/abs");
  EXPECT_EQ(settings.value("ZYNCollectionDirs", "d", "none"), "");
  EXPECT_EQ(settings.list("modules", "paths"),
            (std::vector<std::string>{"/srv/escola/lib/um.so", "/lib/dois.so"}));
  EXPECT_EQ(settings.value("menu", "dir", ""), "/srv/escola/menu");
  EXPECT_EQ(settings.resolve("x/y"), "/srv/escola/x/y");
  EXPECT_EQ(settings.resolve("/x"), "/x");
}

TEST(Settings, TextsKeepTheirAccents) {
  EXPECT_EQ(parse("[users.m]\nname = \"José Conceição\"\n").value("users.m", "name", ""),
            "José Conceição");
}

TEST(Settings, AnUnknownSectionIsRefusedWithTheNearestName) {
  EXPECT_EQ(failureOf("\n[databse]\nurl = \"x\"\n"),
            "/srv/escola/zyn.toml:2: unknown section [databse], did you mean 'database'?");
  EXPECT_EQ(failureOf("[zyncollectiondirs]\n"),
            "/srv/escola/zyn.toml:1: unknown section [zyncollectiondirs], did you mean "
            "'ZYNCollectionDirs'?");
}

TEST(Settings, AnUnknownSectionLikeNoOtherIsRefusedWithAllNames) {
  EXPECT_EQ(failureOf("[qwertyuiop]\n"),
            "/srv/escola/zyn.toml:1: unknown section [qwertyuiop]; known are: database, modules, "
            "ZYNCollectionDirs, menu, chart, limits, server, users");
}

TEST(Settings, AnUnknownKeyIsRefusedWithTheNearestName) {
  EXPECT_EQ(failureOf("[database]\nurl = \"x\"\npasswd_env = \"Y\"\n"),
            "/srv/escola/zyn.toml:3: unknown key 'passwd_env' in [database], did you mean "
            "'password_env'?");
  EXPECT_EQ(failureOf("[users.m]\nid = 1\nunit = [1]\n"),
            "/srv/escola/zyn.toml:3: unknown key 'unit' in [users.m], did you mean 'units'?");
}

TEST(Settings, NoMessageShowsThePasswordThatSomebodyWroteIntoTheFile) {
  auto const message = failureOf("[database]\npassword = \"segredo\"\n");
  EXPECT_NE(message.find("unknown key 'password' in [database]"), std::string::npos);
  EXPECT_EQ(message.find("segredo"), std::string::npos);
}

TEST(Settings, AKeyOutsideASectionIsRefused) {
  EXPECT_EQ(failureOf("database = \"x\"\n"),
            "/srv/escola/zyn.toml:1: 'database' stands outside of every section; put it below the "
            "[section] that it belongs to");
}

TEST(Settings, AValueOfTheWrongKindIsRefused) {
  EXPECT_EQ(failureOf("[database]\nurl = 5\n"),
            "/srv/escola/zyn.toml:2: 'url' in [database] must be a text, not a whole number; write "
            "for example url = \"sqlite:escola.db\"");
  EXPECT_EQ(failureOf("[users.m]\nid = \"7\"\n"),
            "/srv/escola/zyn.toml:2: 'id' in [users.m] must be a whole number, not a text; write "
            "for example id = 7");
  EXPECT_EQ(failureOf("[users.m]\nstudent = 1\n"),
            "/srv/escola/zyn.toml:2: 'student' in [users.m] must be true or false, not a whole "
            "number; write for example student = false");
  EXPECT_EQ(failureOf("[users.m]\nid = 7.5\n"),
            "/srv/escola/zyn.toml:2: 'id' in [users.m] must be a whole number, not a number with "
            "decimals; write for example id = 7");
  EXPECT_EQ(failureOf("[menu]\ndir = 2024-01-01\n"),
            "/srv/escola/zyn.toml:2: 'dir' in [menu] must be a path as a text, not a date or time; "
            "write for example dir = \"menu\"");
  EXPECT_EQ(failureOf("[menu]\ndir = {a = 1}\n"),
            "/srv/escola/zyn.toml:2: 'dir' in [menu] must be a path as a text, not a table; write "
            "for example dir = \"menu\"");
}

TEST(Settings, AListWhereOneValueBelongsIsRefusedAndTheOtherWayRound) {
  EXPECT_EQ(failureOf("[ZYNCollectionDirs]\na = [\"x\"]\n"),
            "/srv/escola/zyn.toml:2: 'a' in [ZYNCollectionDirs] must be a path as a text, not a "
            "list; write for example comum = \"items\"");
  EXPECT_EQ(failureOf("[modules]\npaths = \"x\"\n"),
            "/srv/escola/zyn.toml:2: 'paths' in [modules] must be a list of paths as texts, not a "
            "text; write for example paths = [\"libmox_zyn.so\"]");
  EXPECT_EQ(failureOf("[users.m]\nunits = [1, \"2\"]\n"),
            "/srv/escola/zyn.toml:2: 'units' in [users.m] must be a list of whole numbers, not one "
            "with a text in it; write for example units = [3, 4]");
}

TEST(Settings, AUserThatIsNoTableIsRefused) {
  EXPECT_EQ(failureOf("[users]\nmaria = 7\n"),
            "/srv/escola/zyn.toml:2: 'maria' in [users] must be a table, not a whole number; write "
            "it as [users.maria] with its keys below");
}

TEST(Settings, BrokenTomlTellsFileAndLine) {
  auto const message = failureOf("[database]\nurl = \"sqlite:x\"\nurl 5\n");
  EXPECT_EQ(message.substr(0, 24), "/srv/escola/zyn.toml:3: ");
  EXPECT_EQ(message.find('\n'), std::string::npos);
}

TEST(Settings, ARepeatedKeyIsRefused) {
  EXPECT_EQ(failureOf("[menu]\ndir = \"a\"\ndir = \"b\"\n").substr(0, 24),
            "/srv/escola/zyn.toml:3: ");
}

TEST(Settings, AMessageIsOneLineWhateverTheFileHolds) {
  auto const message = failureOf("\"a\\nb\\u001b[31m\" = 1\n");
  EXPECT_EQ(message.find('\n'), std::string::npos);
  EXPECT_EQ(message.find('\x1b'), std::string::npos);
  EXPECT_LT(failureOf('"' + std::string(100000, 'x') + "\" = 1\n").size(), 1000U);
}

TEST(Settings, ANulInAPathIsRefused) {
  EXPECT_EQ(failureOf("[menu]\ndir = \"a\\u0000b\"\n"),
            "/srv/escola/zyn.toml:2: 'dir' in [menu] holds a NUL character; remove it");
}

TEST(Settings, DeepNestingIsRefusedAndDoesNotCrash) {
  EXPECT_NE(failureOf("a = " + std::string(200000, '[')), "no failure");
  EXPECT_NE(failureOf("a = " + std::string(200000, '{')), "no failure");
}

TEST(Settings, WhatTheParserMustNotSeeIsRefusedWithFileAndLine) {
  EXPECT_EQ(failureOf("[menu]\ndir = \"\"\"a\"\"\"\n"),
            "/srv/escola/zyn.toml:2: a text of several lines has no use here; write it in one line "
            "between single marks");
}

TEST(Settings, AHeaderWithoutANameIsRefused) {
  for (auto const* const header : {"[?]\n", "[", "[]", "[[\n", "[ #"}) {
    EXPECT_EQ(failureOf(header).substr(0, 24), "/srv/escola/zyn.toml:1: ") << header;
  }
}

TEST(Settings, InvalidUtf8IsRefused) {
  EXPECT_EQ(failureOf("[menu]\ndir = \"\xff\xfe\"\n").substr(0, 24), "/srv/escola/zyn.toml:2: ");
}

TEST_F(SettingsLocation, AFileThatCannotBeReadIsNamed) {
  EXPECT_EQ(messageOf([] { Settings::load("missing.toml"); }),
            "settings file 'missing.toml' cannot be read: No such file or directory");
  EXPECT_EQ(messageOf([&] { Settings::load(directory_.path()); }),
            "settings file '" + directory_.path().string() + "' cannot be read: Is a directory");
}

TEST_F(SettingsLocation, AFileThatIsTooLargeIsRefused) {
  write("zyn.toml", std::string(1024 * 1024 + 1, '\n'));
  EXPECT_EQ(messageOf([] { Settings::load("zyn.toml"); }),
            "settings file 'zyn.toml' is larger than 1048576 bytes; is it the right file?");
}

TEST_F(SettingsLocation, LoadKeepsTheAbsoluteFile) {
  write("zyn.toml", "[menu]\ndir = \"menu\"\n");
  auto const settings = Settings::load("zyn.toml");
  EXPECT_EQ(settings.file(), std::filesystem::current_path() / "zyn.toml");
  EXPECT_EQ(settings.value("menu", "dir", ""), (std::filesystem::current_path() / "menu").string());
}

TEST_F(SettingsLocation, TheOptionComesFirst) {
  write("option.toml", "");
  write("environment.toml", "");
  write("zyn.toml", "");
  setenv("ZYN_CONFIG", "environment.toml", 1);
  EXPECT_EQ(Settings::locate("option.toml"), "option.toml");
}

TEST_F(SettingsLocation, TheEnvironmentComesBeforeTheWorkingDirectory) {
  write("environment.toml", "");
  write("zyn.toml", "");
  setenv("ZYN_CONFIG", "environment.toml", 1);
  EXPECT_EQ(Settings::locate(std::nullopt), "environment.toml");
}

TEST_F(SettingsLocation, TheWorkingDirectoryComesBeforeTheSystem) {
  write("zyn.toml", "");
  setenv("ZYN_CONFIG", "", 1);
  EXPECT_EQ(Settings::locate(std::nullopt), "zyn.toml");
}

TEST_F(SettingsLocation, AFileThatWasAskedForMustBeThere) {
  write("zyn.toml", "");
  EXPECT_EQ(messageOf([] { Settings::locate("option.toml"); }),
            "settings file 'option.toml', named by --config, does not exist; correct the name or "
            "create the file");
  setenv("ZYN_CONFIG", "environment.toml", 1);
  EXPECT_EQ(messageOf([] { Settings::locate(std::nullopt); }),
            "settings file 'environment.toml', named by ZYN_CONFIG, does not exist; correct the "
            "name or create the file");
}
