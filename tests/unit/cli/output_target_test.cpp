#include "cli/output/output_target.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "mox/core/error.h"

namespace mox::cli {
namespace {

namespace fs = std::filesystem;

class OutputFile : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = ::testing::TempDir() + "zyn-output-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string path(std::string const& name) const { return folder_ / name; }

  void put(std::string const& name, std::string const& text) const {
    std::ofstream(path(name)) << text;
  }

  std::string read(std::string const& name) const {
    std::ostringstream text;
    text << std::ifstream(path(name)).rdbuf();
    return text.str();
  }

  std::size_t fileCount() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  fs::path folder_;
};

std::string refusal(std::string const& path) {
  try {
    openOutputFile(path);
  } catch (moxError const& error) {
    return error.errorMessage();
  }
  return "accepted";
}

TEST_F(OutputFile, AppearsOnlyOnCommit) {
  {
    auto const target = openOutputFile(path("a.csv"));
    target->write("half");
    EXPECT_FALSE(fs::exists(path("a.csv")));
    target->write(" and half");
    target->commit();
  }
  EXPECT_EQ(read("a.csv"), "half and half");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(OutputFile, LeavesNothingBehindWithoutCommit) {
  openOutputFile(path("a.csv"))->write("half");
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(OutputFile, KeepsTheOldFileWithoutCommit) {
  put("a.csv", "old");
  openOutputFile(path("a.csv"))->write("half");
  EXPECT_EQ(read("a.csv"), "old");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(OutputFile, ReplacesAFileAndKeepsItsRights) {
  put("a.csv", "old");
  ASSERT_EQ(chmod(path("a.csv").c_str(), 0640), 0);
  auto const target = openOutputFile(path("a.csv"));
  target->write("new");
  target->commit();
  struct stat status = {};
  ASSERT_EQ(stat(path("a.csv").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_EQ(read("a.csv"), "new");
}

TEST_F(OutputFile, GivesANewFileTheUsualRights) {
  mode_t const mask = umask(027);
  auto const target = openOutputFile(path("a.csv"));
  target->commit();
  umask(mask);
  struct stat status = {};
  ASSERT_EQ(stat(path("a.csv").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(OutputFile, ReplacesWhatALinkPointsTo) {
  put("real.csv", "old");
  fs::create_symlink("real.csv", path("link.csv"));
  auto const target = openOutputFile(path("link.csv"));
  target->write("new");
  target->commit();
  EXPECT_TRUE(fs::is_symlink(path("link.csv")));
  EXPECT_EQ(read("real.csv"), "new");
}

TEST_F(OutputFile, WritesToADeviceInPlace) {
  auto const target = openOutputFile("/dev/null");
  target->write("gone");
  target->commit();
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(OutputFile, SaysWhenADeviceIsFull) {
  auto const target = openOutputFile("/dev/full");
  EXPECT_THROW(target->write("x"), moxError);
}

TEST_F(OutputFile, RefusesAFolderAndAPlaceThatIsNotThere) {
  EXPECT_EQ(refusal(folder_), "Cannot write \"" + folder_.string() + "\": Is a directory.");
  EXPECT_EQ(refusal(path("none/a.csv")),
            "Cannot write \"" + path("none/a.csv") + "\": No such file or directory.");
}

}  // namespace
}  // namespace mox::cli
