#include "core/app/database_password.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "mox/core/error.h"
#include "support/temporary_directory.h"

using mox::core::databasePassword;
using mox::core::Settings;

namespace {

constexpr char const* kVariable = "ZYN_TEST_PASSWORD";

class DatabasePassword : public testing::Test {
 protected:
  ~DatabasePassword() override { unsetenv(kVariable); }

  std::string fileWith(std::string const& content) const {
    auto const file = directory_.path() / "password.txt";
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }

  std::string failure() const {
    try {
      databasePassword(settings_);
      return "no failure";
    } catch (moxError const& error) {
      return error.errorMessage();
    }
  }

  TemporaryDirectory const directory_;
  Settings settings_;
};

}  // namespace

TEST_F(DatabasePassword, IsEmptyWhenTheSettingsNameNone) {
  EXPECT_EQ(databasePassword(settings_), "");
}

TEST_F(DatabasePassword, ComesFromTheEnvironment) {
  settings_.set("database", "password_env", {kVariable});
  setenv(kVariable, "segredo ", 1);
  EXPECT_EQ(databasePassword(settings_), "segredo ");
}

TEST_F(DatabasePassword, AVariableThatIsNotSetIsAnError) {
  settings_.set("database", "password_env", {kVariable});
  EXPECT_EQ(failure(),
            "[database] password_env names the environment variable ZYN_TEST_PASSWORD, which is "
            "not set");
}

TEST_F(DatabasePassword, IsTheFirstLineOfTheFile) {
  settings_.set("database", "password_file", {fileWith("segredo \nsecond\n")});
  EXPECT_EQ(databasePassword(settings_), "segredo ");
}

TEST_F(DatabasePassword, TheFilesLineEndMayBeMissingOrOfAnotherSystem) {
  settings_.set("database", "password_file", {fileWith("segredo")});
  EXPECT_EQ(databasePassword(settings_), "segredo");
  settings_.set("database", "password_file", {fileWith("segredo\r\n")});
  EXPECT_EQ(databasePassword(settings_), "segredo");
}

TEST_F(DatabasePassword, AnEmptyFileIsAnEmptyPassword) {
  settings_.set("database", "password_file", {fileWith("")});
  EXPECT_EQ(databasePassword(settings_), "");
}

TEST_F(DatabasePassword, AFileThatIsNotThereIsAnError) {
  settings_.set("database", "password_file", {"/nowhere/password.txt"});
  EXPECT_EQ(failure(), "[database] password_file '/nowhere/password.txt' cannot be read");
}

TEST_F(DatabasePassword, ADirectoryIsAnError) {
  settings_.set("database", "password_file", {directory_.path().string()});
  EXPECT_EQ(failure(),
            "[database] password_file '" + directory_.path().string() + "' cannot be read");
}

TEST_F(DatabasePassword, BothSourcesAtOnceAreAnError) {
  settings_.set("database", "password_env", {kVariable});
  settings_.set("database", "password_file", {fileWith("segredo")});
  EXPECT_EQ(failure(), "[database] has both password_env and password_file; keep one of them");
}
