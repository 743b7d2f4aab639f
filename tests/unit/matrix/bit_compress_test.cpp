#include "zyn/matrix/bit_compress.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

std::uint64_t bitByBit(std::uint64_t word, std::uint64_t mask) {
  std::uint64_t result = 0;
  unsigned int place = 0;
  for (unsigned int bit = 0; bit < 64; ++bit) {
    if (((mask >> bit) & 1U) != 0) {
      result |= ((word >> bit) & 1U) << place++;
    }
  }
  return result;
}

std::vector<std::uint64_t> someMasks(std::mt19937_64& random) {
  std::vector<std::uint64_t> masks = {
      0, 1, ~std::uint64_t{0}, std::uint64_t{1} << 63, 0x1F1F1F1F1F1F1F1F, 0xAAAAAAAAAAAAAAAA};
  for (int i = 0; i < 500; ++i) {
    masks.push_back(random() & random());
    masks.push_back(random() | random());
  }
  return masks;
}

}  // namespace

TEST(BitCompress, BringsTheMasksBitsTogether) {
  std::mt19937_64 random(7);
  for (std::uint64_t const mask : someMasks(random)) {
    std::uint64_t const word = random();
    std::uint64_t compressed = word;
    std::uint64_t portable = word;
    BitCompress(mask).apply(&compressed, 1);
    BitCompress(mask).applyPortable(&portable, 1);

    ASSERT_EQ(compressed, bitByBit(word, mask)) << std::hex << mask;
    ASSERT_EQ(portable, bitByBit(word, mask)) << std::hex << mask;
  }
}

TEST(BitCompress, TellsHowManyBitsAreLeft) {
  EXPECT_EQ(BitCompress(0).bits(), 0U);
  EXPECT_EQ(BitCompress(0x1F1F).bits(), 10U);
}
