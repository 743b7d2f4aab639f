#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "fuzz/targets.h"

namespace mox::fuzz {
namespace {

/// Gives every file of a corpus to its target; how many there were.
int replay(std::string const& corpus, void (*target)(std::string_view)) {
  int count = 0;
  for (auto const& entry : std::filesystem::directory_iterator(
           std::filesystem::path(TEST_DATA_DIR) / ".." / "fuzz" / "corpus" / corpus)) {
    SCOPED_TRACE(entry.path().string());
    std::ifstream file(entry.path(), std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NO_THROW(target(bytes));
    ++count;
  }
  return count;
}

// The targets abort on a broken promise, so that to come back is to pass.

TEST(FuzzCorpus, XmlFilesReplay) {
  EXPECT_GE(replay("xml", readXml), 10);
}

TEST(FuzzCorpus, JsonFilesReplay) {
  EXPECT_GE(replay("json", readJson), 10);
}

TEST(FuzzCorpus, CompressedFilesReplay) {
  EXPECT_GE(replay("decompress", decompress), 10);
}

TEST(FuzzCorpus, SettingsFilesReplay) {
  EXPECT_GE(replay("settings", readSettings), 10);
}

TEST(FuzzCorpus, DateMasksReplay) {
  EXPECT_GE(replay("date_mask", readDateMask), 10);
}

TEST(FuzzCorpus, StatementScriptsReplay) {
  EXPECT_GE(replay("statement", splitStatements), 10);
}

TEST(FuzzCorpus, StatementsForSqliteReplay) {
  EXPECT_GE(replay("sqlite_rewrite", rewriteStatement), 10);
}

TEST(FuzzCorpus, CollectionFilesReplay) {
  EXPECT_GE(replay("collection", readCollection), 10);
}

TEST(FuzzCorpus, DefinitionsReplay) {
  EXPECT_GE(replay("definition", readDefinition), 40);
}

TEST(FuzzCorpus, FilterArgumentsReplay) {
  EXPECT_GE(replay("filter_argument", readFilter), 10);
}

TEST(FuzzCorpus, ExpressionsReplay) {
  EXPECT_GE(replay("expression", readExpression), 30);
}

}  // namespace
}  // namespace mox::fuzz
