#include "zyn/matrix/sort_records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

std::vector<SortRecord> randomRecords(std::mt19937_64& random, std::size_t count) {
  std::uint64_t const highMask = random() & random();
  std::uint64_t const keyMask = (random() & random()) << 32;
  std::vector<SortRecord> records(count);
  for (std::size_t row = 0; row < count; ++row) {
    records[row] = {random() & highMask, (random() & keyMask) | row};
  }
  return records;
}

}  // namespace

TEST(SortRecords, OrdersByAllBitsAndKeepsEqualKeysInRowOrder) {
  std::mt19937_64 random(11);
  std::vector<SortRecord> scratch;
  for (std::size_t const count : {0U, 1U, 2U, 24U, 25U, 300U, 5000U, 70000U}) {
    for (int i = 0; i < 20; ++i) {
      std::vector<SortRecord> records = randomRecords(random, count);
      std::vector<SortRecord> expected = records;
      std::sort(expected.begin(), expected.end());

      sortRecords(records.data(), records.size(), scratch);

      ASSERT_TRUE(std::equal(records.begin(), records.end(), expected.begin(),
                             [](SortRecord const& left, SortRecord const& right) {
                               return left.hasKeyOf(right) && left.row() == right.row();
                             }));
    }
  }
}
