#include "cli/definitions/source_files.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "mox/core/error.h"
#include "support/temporary_directory.h"

namespace mox::cli {
namespace {

namespace fs = std::filesystem;

class SourceFiles : public ::testing::Test {
 protected:
  std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

  void put(std::string const& name) const {
    fs::create_directories(fs::path(path(name)).parent_path());
    std::ofstream(path(name)) << "<x/>";
  }

  std::vector<std::string> paths(std::vector<std::string> const& names) const {
    std::vector<std::string> all;
    for (auto const& name : names) {
      all.push_back(path(name));
    }
    return all;
  }

  std::string refusal(std::vector<std::string> const& sources) const {
    try {
      sourceFiles(sources);
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return "accepted";
  }

  TemporaryDirectory folder_;
};

TEST_F(SourceFiles, AFolderStandsForItsXmlFilesByTheBytesOfTheirPaths) {
  for (auto const* name : {"d/b.xml", "d/a/z.xml", "d/B.xml", "d/á.xml", "d/c.XML", "d/d.xml.bak",
                           "d/xml", "d/sub/deep/a.xml"}) {
    put(name);
  }
  EXPECT_EQ(sourceFiles({path("d")}),
            paths({"d/B.xml", "d/a/z.xml", "d/b.xml", "d/sub/deep/a.xml", "d/á.xml"}));
}

TEST_F(SourceFiles, SourcesKeepTheirOrderAndAFileIsTakenOnce) {
  put("d/a.xml");
  put("d/b.xml");
  put("c.txt");
  fs::create_symlink(path("d/b.xml"), path("link.xml"));
  EXPECT_EQ(sourceFiles({path("d/b.xml"), path("c.txt"), path("d"), path("link.xml")}),
            paths({"d/b.xml", "c.txt", "d/a.xml"}));
}

TEST_F(SourceFiles, LinksToFoldersAreNotFollowed) {
  put("d/a.xml");
  fs::create_directory_symlink(path("d"), path("d/again"));
  EXPECT_EQ(sourceFiles({path("d")}), paths({"d/a.xml"}));
}

TEST_F(SourceFiles, WhatIsNotThereIsRefused) {
  EXPECT_EQ(refusal({path("nix")}),
            "Cannot read \"" + path("nix") + "\": No such file or directory.");
}

TEST_F(SourceFiles, AFolderWithoutXmlFilesIsRefused) {
  fs::create_directory(path("d"));
  EXPECT_EQ(refusal({path("d")}),
            "Cannot pack \"" + path("d") + "\": there is no .xml file below it.");
}

}  // namespace
}  // namespace mox::cli
