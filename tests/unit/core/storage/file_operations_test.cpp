#include "core/storage/file_operations.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "core/storage/blob.h"
#include "core/storage/z_compress.h"
#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using mox::test::errorMessageOf;
namespace fs = std::filesystem;

/// A directory of the test's own, removed with it.
class FileOperationsTest : public testing::Test {
 protected:
  FileOperationsTest() {
    std::string pattern = (fs::temp_directory_path() / "mox-files-XXXXXX").string();
    directory_ = ::mkdtemp(pattern.data());
  }
  ~FileOperationsTest() override {
    ::chmod(directory_.c_str(), 0700);
    fs::remove_all(directory_);
  }

  std::string path(std::string const& name) const { return (directory_ / name).string(); }

  void put(std::string const& name, std::string const& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }

  std::string get(std::string const& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::vector<std::string> everything() const {
    std::vector<std::string> names;
    for (auto const& entry : fs::directory_iterator(directory_)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  std::string saveFailure(std::string const& file, std::string const& content) const {
    return errorMessageOf([&] { files_.saveFile(file, Blob(content)); });
  }
  std::string readFailure(std::string const& file) const {
    return errorMessageOf([&] { files_.readFile(file); });
  }
  std::string openFailure(std::string const& file) const {
    return errorMessageOf([&] { files_.openRead(file); });
  }

  fs::path directory_;
  FileOperations files_;
};

std::string contentOf(moxReadBlob const& blob) {
  return std::string(blob.data(), blob.size());
}

mode_t modeOf(std::string const& path) {
  struct stat found = {};
  EXPECT_EQ(::stat(path.c_str(), &found), 0);
  return found.st_mode & 07777;
}

TEST_F(FileOperationsTest, IsNamedAsItIsRegistered) {
  EXPECT_EQ(files_.name(), "moxFileOperations");
}

TEST_F(FileOperationsTest, SavesAndReadsWholeFiles) {
  for (std::size_t const size : {0U, 1U, 65535U, 65536U, 65537U, 1000000U}) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
      content[i] = static_cast<char>(i * 7);
    }
    files_.saveFile(path("data"), Blob(content));
    EXPECT_EQ(contentOf(*files_.readFile(path("data"))), content);
    EXPECT_EQ(get("data"), content);
  }
  EXPECT_EQ(everything(), std::vector<std::string>{"data"});
}

TEST_F(FileOperationsTest, ReadsFilesThatTellNoSize) {
  EXPECT_NE(files_.readFile("/proc/self/status")->size(), 0U);
}

TEST_F(FileOperationsTest, ANameWithoutDirectoryIsSavedWhereTheProcessIs) {
  fs::path const before = fs::current_path();
  fs::current_path(directory_);
  files_.saveFile("plain", Blob("x"));
  fs::current_path(before);
  EXPECT_EQ(get("plain"), "x");
}

TEST_F(FileOperationsTest, AFileBeyondTheBoundIsNotRead) {
  put("ten", "0123456789");
  EXPECT_EQ(files_.readFile(path("ten"), 10)->size(), 10U);
  EXPECT_EQ(files_.readFile(path("ten"), std::numeric_limits<std::size_t>::max())->size(), 10U);
  EXPECT_EQ(errorMessageOf([&] { files_.readFile(path("ten"), 9); }),
            "Cannot read \"" + path("ten") + "\": it is longer than 9 bytes.");
  EXPECT_EQ(errorMessageOf([&] { files_.readFile("/proc/self/status", 9); }),
            "Cannot read \"/proc/self/status\": it is longer than 9 bytes.");
}

TEST_F(FileOperationsTest, AMissingFileIsNamedWithItsErrorNumber) {
  std::string const expected = "Cannot read \"" + path("none") + "\": No such file or directory.";
  EXPECT_EQ(readFailure(path("none")), expected);
  EXPECT_EQ(openFailure(path("none")), expected);
  try {
    files_.readFile(path("none"));
    FAIL();
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorCode(), std::to_string(ENOENT));
  }
}

TEST_F(FileOperationsTest, ADirectoryIsNoFile) {
  std::string const here = directory_.string();
  EXPECT_EQ(readFailure(here), "Cannot read \"" + here + "\": Is a directory.");
  EXPECT_EQ(openFailure(here), "Cannot read \"" + here + "\": Is a directory.");
  EXPECT_EQ(saveFailure(here, "x"), "Cannot write \"" + here + "\": Is a directory.");
}

TEST_F(FileOperationsTest, APipeOrDeviceIsNotReadAndDoesNotBlock) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(readFailure(path("pipe")),
            "Cannot read \"" + path("pipe") + "\": it is no regular file.");
  EXPECT_EQ(readFailure("/dev/zero"), "Cannot read \"/dev/zero\": it is no regular file.");
  EXPECT_EQ(openFailure("/dev/zero"), "Cannot read \"/dev/zero\": it is no regular file.");
}

TEST_F(FileOperationsTest, APathWithANulIsRefused) {
  std::string const wicked("good\0.txt", 9);
  EXPECT_EQ(readFailure(wicked), "Cannot read \"good?.txt\": the path has a NUL in it.");
  EXPECT_EQ(openFailure(wicked), "Cannot read \"good?.txt\": the path has a NUL in it.");
  EXPECT_EQ(saveFailure(wicked, "x"), "Cannot write \"good?.txt\": the path has a NUL in it.");
  EXPECT_EQ(errorMessageOf([&] { files_.listFiles(wicked); }),
            "Cannot list \"good?.txt\": the path has a NUL in it.");
}

TEST_F(FileOperationsTest, AMessageStaysOneLine) {
  EXPECT_EQ(readFailure(path("a\nb")),
            "Cannot read \"" + path("a?b") + "\": No such file or directory.");
}

TEST_F(FileOperationsTest, ASavedFileKeepsItsMode) {
  put("old", "old content");
  ASSERT_EQ(::chmod(path("old").c_str(), 0640), 0);
  files_.saveFile(path("old"), Blob("new"));
  EXPECT_EQ(get("old"), "new");
  EXPECT_EQ(modeOf(path("old")), 0640U);
}

TEST_F(FileOperationsTest, ANewFileGetsTheModeOfTheProcess) {
  mode_t const before = ::umask(0027);
  files_.saveFile(path("new"), Blob("x"));
  ::umask(before);
  EXPECT_EQ(modeOf(path("new")), 0640U);
}

TEST_F(FileOperationsTest, AFileBehindALinkIsReplacedWhereItLies) {
  fs::create_directory(path("sub"));
  put("sub/real", "old");
  fs::create_symlink(path("sub/real"), path("link"));
  files_.saveFile(path("link"), Blob("new"));
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(get("sub/real"), "new");
}

TEST_F(FileOperationsTest, AnOpenReaderKeepsTheOldContent) {
  put("data", "old content");
  auto const reader = files_.openRead(path("data"));
  files_.saveFile(path("data"), Blob("new"));
  char bytes[32];
  EXPECT_EQ(std::string(bytes, reader->read(bytes, sizeof(bytes))), "old content");
}

TEST_F(FileOperationsTest, AMissingDirectoryIsAnError) {
  EXPECT_EQ(saveFailure(path("no/data"), "x"),
            "Cannot write \"" + path("no/data") + "\": No such file or directory.");
}

TEST_F(FileOperationsTest, AnEmptyPathIsAnError) {
  EXPECT_EQ(readFailure(""), "Cannot read \"\": No such file or directory.");
  EXPECT_NE(saveFailure("", "x"), "");
}

TEST_F(FileOperationsTest, WritesToADeviceInPlace) {
  files_.saveFile("/dev/null", Blob("x"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(FileOperationsTest, AFullDeviceIsReported) {
  EXPECT_EQ(saveFailure("/dev/full", "x"), "Cannot write \"/dev/full\": No space left on device.");
}

TEST_F(FileOperationsTest, APipeWithoutReaderIsReportedAndDoesNotBlock) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(saveFailure(path("pipe"), "x"),
            "Cannot write \"" + path("pipe") + "\": No such device or address.");
}

/// Limits and identities belong to a process: the check runs in a child, whose exit status tells.
template <class Check>
int inChild(Check check) {
  pid_t const child = ::fork();
  if (child == 0) {
    ::_exit(check());
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(FileOperationsTest, AWriteThatBreaksOffLeavesTheOldFileAndNothingElse) {
  put("data", "old content");
  int const status = inChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit const limit = {1000, 1000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::string const message = saveFailure(path("data"), std::string(100000, 'x'));
    return message == "Cannot write \"" + path("data") + "\": File too large." ? 0 : 1;
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(get("data"), "old content");
  EXPECT_EQ(everything(), std::vector<std::string>{"data"});
}

/// Root may write anywhere; somebody else may not.
void becomeSomebodyElse() {
  if (::geteuid() == 0 && ::setresuid(65534, 65534, 65534) != 0) {
    ::_exit(9);
  }
}

TEST_F(FileOperationsTest, ADirectoryThatIsNotToBeWrittenIsReported) {
  put("data", "old content");
  ::chmod(path("data").c_str(), 0666);
  ::chmod(directory_.c_str(), 0555);
  int const status = inChild([&] {
    becomeSomebodyElse();
    std::string const message = saveFailure(path("data"), "new");
    return message == "Cannot write \"" + path("data") + "\": Permission denied." ? 0 : 1;
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(get("data"), "old content");
}

TEST_F(FileOperationsTest, AFileThatIsNotToBeWrittenIsNotReplaced) {
  put("data", "old content");
  ::chmod(path("data").c_str(), 0444);
  ::chmod(directory_.c_str(), 0777);
  int const status = inChild([&] {
    becomeSomebodyElse();
    std::string const message = saveFailure(path("data"), "new");
    return message == "Cannot write \"" + path("data") + "\": Permission denied." ? 0 : 1;
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(get("data"), "old content");
  EXPECT_EQ(everything(), std::vector<std::string>{"data"});
}

TEST_F(FileOperationsTest, AnOpenFileIsReadInPieces) {
  put("data", "\x01header\x00payload");
  auto const reader = files_.openRead(path("data"));
  char bytes[64] = {};
  EXPECT_EQ(reader->read(bytes, 1), 1U);
  EXPECT_EQ(bytes[0], '\x01');
  EXPECT_EQ(reader->position(), 1U);
  EXPECT_EQ(reader->read(bytes, sizeof(bytes)), 6U);
  EXPECT_EQ(reader->position(), 7U);
  EXPECT_EQ(reader->read(bytes, sizeof(bytes)), 0U);
}

TEST_F(FileOperationsTest, TheRestOfAnOpenFileCanBeDecompressed) {
  put("data", "HEAD" + contentOf(*ZCompress().compress(Blob("plain document"))));
  auto const reader = files_.openRead(path("data"));
  char head[4];
  reader->read(head, sizeof(head));
  EXPECT_EQ(contentOf(*ZCompress().decompress(*reader)), "plain document");
}

TEST_F(FileOperationsTest, ListsRegularFilesInByteOrder) {
  put("b.zcf", "");
  put("a.zcf", "");
  put("B", "");
  put(".hidden", "");
  put("\xC3\xA1", "");
  fs::create_directory(path("folder"));
  fs::create_symlink(path("a.zcf"), path("link"));
  fs::create_symlink(path("folder"), path("folderlink"));
  fs::create_symlink(path("nowhere"), path("broken"));
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(files_.listFiles(directory_.string()),
            (std::vector<std::string>{".hidden", "B", "a.zcf", "b.zcf", "link", "\xC3\xA1"}));
  EXPECT_TRUE(files_.listFiles(path("folder")).empty());
}

TEST_F(FileOperationsTest, AMissingDirectoryCannotBeListed) {
  EXPECT_EQ(errorMessageOf([&] { files_.listFiles(path("none")); }),
            "Cannot list \"" + path("none") + "\": No such file or directory.");
  put("file", "");
  EXPECT_EQ(errorMessageOf([&] { files_.listFiles(path("file")); }),
            "Cannot list \"" + path("file") + "\": Not a directory.");
}

}  // namespace
}  // namespace mox::core
