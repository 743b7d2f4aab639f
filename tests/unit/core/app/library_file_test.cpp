#include "core/app/library_file.h"

#include <gtest/gtest.h>
#include <link.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

#include "support/temporary_directory.h"

namespace mox::core {
namespace {

constexpr std::size_t kWholeSize = 300;

/// A library of one segment, which is all of the file.
struct SmallLibrary {
  ElfW(Ehdr) file{};
  ElfW(Phdr) segment{};

  SmallLibrary() {
    std::memcpy(file.e_ident, ELFMAG, SELFMAG);
    file.e_phoff = sizeof file;
    file.e_phentsize = sizeof segment;
    file.e_phnum = 1;
    segment.p_type = PT_LOAD;
    segment.p_filesz = kWholeSize;
  }

  std::string bytes() const {
    std::string text(kWholeSize, 'x');
    std::memcpy(text.data(), &file, sizeof file);
    std::memcpy(text.data() + sizeof file, &segment, sizeof segment);
    return text;
  }
};

class LibraryFile : public ::testing::Test {
 protected:
  bool cutShort(std::string const& bytes) const {
    auto const path = directory_.path() / "module.so";
    std::ofstream(path, std::ios::binary) << bytes;
    return isCutShort(path);
  }

  TemporaryDirectory directory_;
};

TEST_F(LibraryFile, IsCutShortAtEveryPlaceBehindItsFirstHeader) {
  std::string const whole = SmallLibrary().bytes();
  for (std::size_t size = sizeof(ElfW(Ehdr)); size < kWholeSize; ++size) {
    EXPECT_TRUE(cutShort(whole.substr(0, size))) << size;
  }
  EXPECT_FALSE(cutShort(whole));
}

TEST_F(LibraryFile, LeavesWhatIsNoLibraryToTheLoader) {
  std::string const whole = SmallLibrary().bytes();
  for (std::size_t size = 0; size < sizeof(ElfW(Ehdr)); ++size) {
    EXPECT_FALSE(cutShort(whole.substr(0, size))) << size;
  }
  EXPECT_FALSE(cutShort(std::string(1000, 'x')));
  EXPECT_FALSE(isCutShort(directory_.path() / "none.so"));
  EXPECT_FALSE(isCutShort(directory_.path()));
}

TEST_F(LibraryFile, WithASegmentBeyondAllBoundsIsCutShort) {
  SmallLibrary library;
  library.segment.p_offset = std::numeric_limits<decltype(library.segment.p_offset)>::max();
  EXPECT_TRUE(cutShort(library.bytes()));
  library.file.e_phoff = std::numeric_limits<decltype(library.file.e_phoff)>::max();
  EXPECT_TRUE(cutShort(library.bytes()));
}

TEST_F(LibraryFile, IsWholeWhenItIsThisProgram) {
  EXPECT_FALSE(isCutShort("/proc/self/exe"));
}

}  // namespace
}  // namespace mox::core
