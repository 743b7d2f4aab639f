#include "zyn/operations/packed_keys.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <vector>

#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

class PackedKeysTest : public testing::Test {
 protected:
  /// More rows than the first guess looks at; the last ones, which it does not see, have `late`.
  static MatrixColumn longColumn(Cells cells, Cell const& early, Cell const& late) {
    constexpr std::size_t kRows = std::size_t{PackedKeys::kBlock} * 40;
    cells.values.assign(kRows, early);
    cells.values.back() = late;
    return column("k", cells);
  }

  static std::uint64_t lastWord(PackedKeys const& keys, std::uint32_t rows, bool* known) {
    std::array<std::uint64_t, PackedKeys::kBlock> words{};
    *known = keys.words(rows - 1, 1, words.data());
    return words[0];
  }

  TestHost host_;
};

TEST_F(PackedKeysTest, EqualWordsMeanEqualKeys) {
  std::vector<MatrixColumn> const keys = {column("k", ints(1, null, 0, -5, 1, null)),
                                          column("t", texts("b", "a", "", null, "b", "a"))};
  PackedKeys const packed(keys, 6);
  ASSERT_TRUE(packed.isPossible());
  std::array<std::uint64_t, PackedKeys::kBlock> words{};
  ASSERT_TRUE(packed.words(0, 6, words.data()));

  EXPECT_EQ(words[0], words[4]);
  EXPECT_EQ(words[1], words[5]);
  EXPECT_EQ(std::set<std::uint64_t>(words.begin(), words.begin() + 4).size(), 4U);
}

TEST_F(PackedKeysTest, NullIsNotTheValueThatStandsForNothing) {
  std::vector<MatrixColumn> const keys = {column("k", ints(0, null))};
  PackedKeys const packed(keys, 2);
  std::array<std::uint64_t, PackedKeys::kBlock> words{};
  ASSERT_TRUE(packed.words(0, 2, words.data()));
  EXPECT_NE(words[0], words[1]);
}

TEST_F(PackedKeysTest, OneKeyForAllTakesNoBits) {
  PackedKeys const packed({column("k", ints(7, 7, 7))}, 3);
  EXPECT_EQ(packed.bits(), 0U);
}

TEST_F(PackedKeysTest, AnUnexpectedValueIsToldAndThenKnown) {
  auto const key = longColumn(ints(), Cell(1), Cell(70000));
  PackedKeys packed({key}, key->numRows());
  bool known = true;
  lastWord(packed, key->numRows(), &known);
  EXPECT_FALSE(known);

  packed.lookAtAll();

  ASSERT_TRUE(packed.isPossible());
  EXPECT_NE(lastWord(packed, key->numRows(), &known), 0U);
  EXPECT_TRUE(known);
}

TEST_F(PackedKeysTest, ALongTextCannotBePacked) {
  auto const key =
      longColumn(texts(), Cell(std::string("short")), Cell(std::string("longer than a reference")));
  PackedKeys packed({key}, key->numRows());
  EXPECT_TRUE(packed.isPossible());
  bool known = true;
  lastWord(packed, key->numRows(), &known);
  EXPECT_FALSE(known);

  packed.lookAtAll();

  EXPECT_FALSE(packed.isPossible());
}

TEST_F(PackedKeysTest, FractionsAndBlobsAreNotPacked) {
  EXPECT_FALSE(PackedKeys({column("k", doubles(1.0))}, 1).isPossible());
  EXPECT_FALSE(PackedKeys({column("k", blobs("b"))}, 1).isPossible());
}

TEST_F(PackedKeysTest, KeysThatDifferInMoreBitsThanAWordHasAreNotPacked) {
  std::vector<MatrixColumn> const keys = {column("k", ints(0, -1, null)),
                                          column("j", ints(-1, 0, null))};
  EXPECT_FALSE(PackedKeys(keys, 3).isPossible());
}

}  // namespace
