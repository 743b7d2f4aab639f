#include "core/app/document_folder.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "core/storage/blob.h"
#include "core/storage/z_compress.h"
#include "mox/core/error.h"
#include "support/temporary_directory.h"

namespace {

std::string textOf(moxReadBlob const& blob) {
  return {blob.data(), blob.size()};
}

class DocumentFolder : public testing::Test {
 protected:
  void write(std::string const& name, std::string const& content) const {
    std::ofstream(directory_.path() / name, std::ios::binary) << content;
  }

  std::vector<std::string> read() const {
    std::vector<std::string> texts;
    for (auto const& document : mox::core::readDocuments(directory_.path().string())) {
      texts.push_back(textOf(*document));
    }
    return texts;
  }

  TemporaryDirectory const directory_;
};

std::string compressed(std::string text) {
  return textOf(*mox::core::ZCompress().compress(mox::core::Blob(std::move(text))));
}

}  // namespace

TEST_F(DocumentFolder, DocumentsComeByTheNamesOfTheirFiles) {
  write("b.xml", "<b/>");
  write("a.xml", "<a/>");
  write("C.xml", "<c/>");
  EXPECT_EQ(read(), (std::vector<std::string>{"<c/>", "<a/>", "<b/>"}));
}

TEST_F(DocumentFolder, CompressedDocumentsComeDecompressed) {
  write("a.xml", compressed("<Menu id=\"1\"/>"));
  write("b.xml", "<Menu id=\"2\"/>");
  EXPECT_EQ(read(), (std::vector<std::string>{"<Menu id=\"1\"/>", "<Menu id=\"2\"/>"}));
}

TEST_F(DocumentFolder, ShortAndEmptyFilesComeAsTheyAre) {
  write("a", "");
  write("b", "x");
  EXPECT_EQ(read(), (std::vector<std::string>{"", "x"}));
}

TEST_F(DocumentFolder, ADamagedDocumentIsAnError) {
  auto content = compressed("<Menu id=\"1\"/>");
  content.pop_back();
  write("a.xml", content);
  EXPECT_THROW(read(), moxError);
}

TEST_F(DocumentFolder, SubdirectoriesAreNotVisited) {
  std::filesystem::create_directory(directory_.path() / "sub");
  write("sub/a.xml", "<a/>");
  EXPECT_TRUE(read().empty());
}

TEST_F(DocumentFolder, AMissingFolderIsEmpty) {
  EXPECT_TRUE(mox::core::readDocuments((directory_.path() / "none").string()).empty());
  EXPECT_TRUE(mox::core::readDocuments("").empty());
}
