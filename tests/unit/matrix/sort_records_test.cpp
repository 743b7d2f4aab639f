#include "zyn/matrix/sort_records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

std::vector<WideSortRecord> randomWide(std::mt19937_64& random, std::size_t count) {
  std::uint64_t const highMask = random() & random();
  std::uint64_t const keyMask = (random() & random()) << 32;
  std::vector<WideSortRecord> records(count);
  for (std::size_t row = 0; row < count; ++row) {
    records[row] = {random() & highMask, (random() & keyMask) | row};
  }
  return records;
}

std::vector<NarrowSortRecord> randomNarrow(std::mt19937_64& random, std::size_t count,
                                           unsigned int keyBits) {
  std::uint64_t const keyMask = (random() & random()) << (64 - keyBits);
  std::vector<NarrowSortRecord> records(count);
  for (std::size_t row = 0; row < count; ++row) {
    records[row] = {(random() & keyMask) | row};
  }
  return records;
}

template <class Record>
void expectSorted(std::vector<Record> records, unsigned int keyBits) {
  std::vector<Record> scratch;
  std::vector<Record> expected = records;
  std::sort(expected.begin(), expected.end());

  sortRecords(records.data(), records.size(), keyBits, scratch);

  ASSERT_TRUE(std::equal(records.begin(), records.end(), expected.begin(),
                         [&](Record const& left, Record const& right) {
                           return left.hasKeyOf(right, keyBits) &&
                                  left.row(keyBits) == right.row(keyBits);
                         }));
}

constexpr std::size_t kCounts[] = {0, 1, 2, 24, 25, 300, 5000, 70000};

}  // namespace

TEST(SortRecords, OrdersWideOnesByAllBitsAndKeepsEqualKeysInRowOrder) {
  std::mt19937_64 random(11);
  for (std::size_t const count : kCounts) {
    for (int i = 0; i < 20; ++i) {
      expectSorted(randomWide(random, count), WideSortRecord::kKeyBits);
    }
  }
}

TEST(SortRecords, OrdersNarrowOnesByAllBitsAndKeepsEqualKeysInRowOrder) {
  std::mt19937_64 random(12);
  for (std::size_t const count : kCounts) {
    for (unsigned int const keyBits : {32U, 40U, 47U}) {
      for (int i = 0; i < 7; ++i) {
        expectSorted(randomNarrow(random, count, keyBits), keyBits);
      }
    }
  }
}

TEST(SortRecords, MadeOfAKeyTheyHoldItsLowestBitsAndTheRow) {
  auto const narrow = NarrowSortRecord::make(0xABCDE, 16, 7);
  EXPECT_EQ(narrow.high, (std::uint64_t{0xBCDE} << 48) | 7);
  EXPECT_EQ(narrow.row(40), 7U);
  auto const wide = WideSortRecord::make(0xBCDE, 16, 7);
  EXPECT_EQ(wide.high, std::uint64_t{0xBCDE} << 48);
  EXPECT_EQ(wide.low, 7U);
  EXPECT_EQ(NarrowSortRecord::make(5, 0, 9).high, 9U);
  EXPECT_EQ(WideSortRecord::make(5, 0, 9).high, 0U);
}
