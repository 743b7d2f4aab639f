#include "zyn/items/zyn_utils.h"

#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "mox/zyn/items/zyn_file_format.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "support/temporary_directory.h"
#include "unit/items/items_fixture.h"

using items_test::ItemsTest;
using items_test::messageOf;

namespace {

class ZynUtils : public ItemsTest {
 protected:
  std::string path(std::string const& name) { return (folder_.path() / name).string(); }

  void write(std::string const& name, std::string const& bytes) {
    std::ofstream(path(name), std::ios::binary) << bytes;
  }

  std::string read(std::string const& name) {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::string loadMessage(std::string const& bytes) {
    write("x.zcf", bytes);
    return messageOf([&] { utils_->loadBinaryFile(path("x.zcf")); });
  }

  std::vector<std::string> detailsOf(std::string const& bytes) {
    write("x.zcf", bytes);
    try {
      utils_->loadBinaryFile(path("x.zcf"));
    } catch (moxError const& error) {
      return error.errorDetails();
    }
    return {};
  }

  TemporaryDirectory folder_;
  std::shared_ptr<moxZYNUtils> utils_ = host_.get<moxZYNUtils>("moxZYNUtils");
};

std::string const kSignature("\x01\x00MOXZYNC\x00", 10);
constexpr char const* kWrongHeader = "Cabeçalho de dados incorreto.";
constexpr char const* kItems = "<moxTestItem name=\"Ação\"/><moxZYNPack name=\"p\"/>";

}  // namespace

TEST_F(ZynUtils, IsOneForTheProcess) {
  EXPECT_EQ(utils_->name(), "moxZYNUtils");
  EXPECT_EQ(host_.get<moxZYNUtils>("moxZYNUtils"), utils_);
}

TEST_F(ZynUtils, ABinaryFileIsTheTenBytesAndTheCompressedDocument) {
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems, "L"));
  std::string const bytes = read("a.zcf");
  ASSERT_GT(bytes.size(), 10u);
  EXPECT_EQ(bytes.substr(0, 10), kSignature);
  std::string plain(1000, '\0');
  uLongf size = plain.size();
  ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(plain.data()), &size,
                       reinterpret_cast<Bytef const*>(bytes.data()) + 10, bytes.size() - 10),
            Z_OK);
  auto const document = utils_->getPlainData(collection(kItems, "L"), false);
  EXPECT_EQ(plain.substr(0, size), std::string(document->data(), document->size()));
}

TEST_F(ZynUtils, BothFilesReadBack) {
  auto const original = collection(kItems, "L");
  utils_->saveBinaryToFile(path("a.zcf"), original);
  utils_->savePlainToFile(path("a.xml"), original);
  EXPECT_EQ(textOf(*utils_->loadBinaryFile(path("a.zcf"))), textOf(*original));
  EXPECT_EQ(textOf(*utils_->loadPlainFile(path("a.xml"))), textOf(*original));
}

TEST_F(ZynUtils, FromPlainToBinaryAndBackGivesTheSameBytes) {
  std::string const text = "<?xml version=\"1.0\"?>\r\n<!-- kept -->\n<moxZYNCollection  />\n";
  write("a.xml", text);
  utils_->plainToBinary(path("a.xml"), path("a.zcf"));
  utils_->binaryToPlain(path("a.zcf"), path("b.xml"));
  EXPECT_EQ(read("b.xml"), text);
  utils_->plainToBinary(path("b.xml"), path("b.zcf"));
  EXPECT_EQ(read("b.zcf"), read("a.zcf"));
}

TEST_F(ZynUtils, ARightHeaderWithoutDataGoesToTheDecompressorWithEmptyInput) {
  EXPECT_EQ(loadMessage(kSignature), "The compressed data is empty.");
}

TEST_F(ZynUtils, AFileShorterThanTenBytesHasAWrongHeader) {
  for (std::size_t size = 0; size < 10; ++size) {
    EXPECT_EQ(loadMessage(kSignature.substr(0, size)), kWrongHeader) << size;
  }
}

TEST_F(ZynUtils, AFirstByteOfTwoIsAWrongHeader) {
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems));
  std::string bytes = read("a.zcf");
  bytes[0] = 2;
  EXPECT_EQ(loadMessage(bytes), kWrongHeader);
}

TEST_F(ZynUtils, AWrongHeaderIsToldFromOtherFailuresAndNamesTheFile) {
  write("x.zcf", "something else");
  try {
    utils_->loadBinaryFile(path("x.zcf"));
    FAIL();
  } catch (moxZYNUtils::FormatError const& error) {
    EXPECT_NE(dynamic_cast<zynUtils::FError const*>(&error), nullptr);
    EXPECT_EQ(error.errorDetails().at(0), "file: " + path("x.zcf"));
  }
}

TEST_F(ZynUtils, AWrongHeaderSaysWhatStandsWhere) {
  struct Case {
    std::string bytes;
    std::string where;
  };
  std::string const newer = "\x02" + kSignature.substr(1);
  std::string const later("\x01\x01MOXZYNC\x00", 10);
  for (auto const& [bytes, where] : {
           Case{"", "it ends after 0 bytes, and the header has 10"},
           Case{kSignature.substr(0, 7), "it ends after 7 bytes, and the header has 10"},
           Case{newer, "byte 0, the version of the format, is 0x02 where 0x01 belongs"},
           Case{later, "byte 1, the version of the format, is 0x01 where 0x00 belongs"},
           Case{kSignature.substr(0, 8) + "\xC7", "byte 8 is 0xC7 where 0x43 belongs"},
           Case{kSignature.substr(0, 9) + "!", "byte 9 is 0x21 where 0x00 belongs"},
           Case{"<?xml version='1.0'?>", "it begins like an open XML document"},
           Case{"\xEF\xBB\xBF<a/>", "it begins like an open XML document"},
       }) {
    EXPECT_EQ(detailsOf(bytes), (std::vector{"file: " + path("x.zcf"), where}));
  }
}

TEST_F(ZynUtils, DamagedDataIsToldWithItsPlaceInTheFile) {
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems));
  std::string const whole = read("a.zcf");
  std::string const begin = "the compressed data begins at byte 10 of the file";
  auto const noticed = [](std::size_t at, std::string const& reason = "") {
    return "noticed at byte " + std::to_string(at) + " of the compressed data" + reason;
  };
  std::vector const empty{"file: " + path("x.zcf"), begin};
  EXPECT_EQ(detailsOf(kSignature), empty);
  std::vector const cut{"file: " + path("x.zcf"), noticed(whole.size() - 11), begin};
  EXPECT_EQ(detailsOf(whole.substr(0, whole.size() - 1)), cut);
  std::vector const more{"file: " + path("x.zcf"), noticed(whole.size() - 10), begin};
  EXPECT_EQ(detailsOf(whole + "x"), more);
  std::string changed = whole;
  changed.back() = static_cast<char>(~changed.back());
  std::vector const damaged{"file: " + path("x.zcf"),
                            noticed(whole.size() - 10, ": incorrect data check"), begin};
  EXPECT_EQ(detailsOf(changed), damaged);
}

TEST_F(ZynUtils, TheFormOfFilesIsOfferedForBytesInMemory) {
  auto const format = std::dynamic_pointer_cast<moxZYNFileFormat>(utils_);
  ASSERT_NE(format, nullptr);
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems, "L"));
  auto const document = utils_->getPlainData(collection(kItems, "L"), false);
  auto const content = format->toFileContent(*document);
  EXPECT_EQ(std::string(content->data(), content->size()), read("a.zcf"));
  auto const again = format->documentOf(*content, "a.zcf");
  EXPECT_EQ(std::string(again->data(), again->size()),
            std::string(document->data(), document->size()));
}

TEST_F(ZynUtils, AFileCutAtAnyByteIsRefusedAndNothingIsWritten) {
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems));
  std::string const whole = read("a.zcf");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    std::string const message = loadMessage(whole.substr(0, size));
    std::string const expected = size < 10    ? kWrongHeader
                                 : size == 10 ? "The compressed data is empty."
                                              : "The compressed data ends too early.";
    ASSERT_EQ(message, expected) << "cut at " << size;
    ASSERT_EQ(messageOf([&] { utils_->binaryToPlain(path("x.zcf"), path("out.xml")); }), expected);
    ASSERT_FALSE(std::filesystem::exists(path("out.xml")));
  }
}

TEST_F(ZynUtils, EveryChangedByteIsNoticedAndTheFileNamed) {
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems));
  std::string const whole = read("a.zcf");
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(~damaged[at]);
    write("x.zcf", damaged);
    try {
      utils_->loadBinaryFile(path("x.zcf"));
      FAIL() << "byte " << at;
    } catch (moxError const& error) {
      ASSERT_EQ(at < 10, error.errorMessage() == kWrongHeader) << "byte " << at;
      ASSERT_EQ(error.errorDetails().at(0), "file: " + path("x.zcf")) << "byte " << at;
    }
  }
}

TEST_F(ZynUtils, BytesBehindTheEndAreRefused) {
  utils_->saveBinaryToFile(path("a.zcf"), collection(kItems));
  EXPECT_EQ(loadMessage(read("a.zcf") + "x"),
            "The compressed data has further bytes behind its end.");
}

TEST_F(ZynUtils, ADocumentThatGrowsOutOfAllProportionIsRefused) {
  std::string const blanks(std::size_t{8} << 20, ' ');
  std::string squeezed(compressBound(blanks.size()), '\0');
  uLongf size = squeezed.size();
  ASSERT_EQ(compress2(reinterpret_cast<Bytef*>(squeezed.data()), &size,
                      reinterpret_cast<Bytef const*>(blanks.data()), blanks.size(), 9),
            Z_OK);
  EXPECT_EQ(loadMessage(kSignature + squeezed.substr(0, size)),
            "The compressed data grows beyond 1000 times its size.");
}

TEST_F(ZynUtils, ADocumentThatIsNoXmlNamesTheFile) {
  write("a.xml", "<moxZYNCollection>");
  try {
    utils_->loadPlainFile(path("a.xml"));
    FAIL();
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorDetails().at(0), "file: " + path("a.xml"));
  }
}

TEST_F(ZynUtils, AMissingFileIsTheFrameworksErrorAsItIs) {
  auto const message = messageOf([&] { utils_->loadBinaryFile(path("nowhere.zcf")); });
  EXPECT_EQ(message, "Cannot read \"" + path("nowhere.zcf") + "\": No such file or directory.");
}

TEST_F(ZynUtils, AFileThatCannotBeReplacedKeepsItsContent) {
  write("a.zcf", "old");
  std::filesystem::create_directory(path("a.zcf.d"));
  EXPECT_NE(messageOf([&] { utils_->saveBinaryToFile(path("a.zcf.d"), collection("")); }), "");
  EXPECT_EQ(read("a.zcf"), "old");
}

TEST_F(ZynUtils, PlainDataIsLaidOutOnDemand) {
  auto const read = collection("<moxTestItem name=\"a\"/>");
  auto const text = [&](bool indent) {
    auto const blob = utils_->getPlainData(read, indent);
    return std::string(blob->data(), blob->size());
  };
  EXPECT_EQ(text(false).find('\n', text(false).find("<moxZYN")), std::string::npos);
  EXPECT_NE(text(true).find("\n  <moxTestItem name=\"a\""), std::string::npos);
  EXPECT_THROW(utils_->getPlainData({}, false), std::logic_error);
}

TEST_F(ZynUtils, WhatALoadedFileLeftOutNamesTheFile) {
  write("a.xml", "<moxZYNCollection><moxUnheardOf/></moxZYNCollection>");
  auto const loaded = utils_->loadPlainFile(path("a.xml"));
  auto const skipped = dynamic_cast<moxZYNLoadReport&>(*loaded).skippedElements();
  ASSERT_EQ(skipped.size(), 1u);
  EXPECT_EQ(skipped[0].file, path("a.xml"));
}

TEST_F(ZynUtils, DuplicateItemIsEqualAndIndependent) {
  auto const original = item("a");
  original->setParentLibraryName("L");
  auto const copy = utils_->duplicateItem(original);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, original);
  EXPECT_EQ(copy->description(), "a");
  EXPECT_EQ(copy->getParentLibName(), "L");
  original->setDescription("b");
  EXPECT_EQ(copy->description(), "a");
}

TEST_F(ZynUtils, DuplicateItemOfAnItemThatCannotBeSavedHasDefaultContent) {
  auto const original = item("a");
  original->unsaveable = true;
  auto const copy = utils_->duplicateItem(original);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->description(), "");
}

TEST_F(ZynUtils, DuplicateFormatterIsEqualAndIndependent) {
  auto const original = std::make_shared<items_test::TestFormatter>();
  original->setDescription("Moeda");
  auto const copy = utils_->duplicateFormatter(original);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, original);
  EXPECT_EQ(copy->getDescription(), "Moeda");
}

TEST_F(ZynUtils, NothingDuplicatesAsNothing) {
  EXPECT_EQ(utils_->duplicateItem({}), nullptr);
  EXPECT_EQ(utils_->duplicateFormatter({}), nullptr);
}
