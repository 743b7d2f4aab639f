#include "zyn/matrix/sort_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

/// A column of numbers, each a piece of its own of the width told.
class NumberColumn final : public SortColumn {
 public:
  NumberColumn(std::vector<std::uint64_t> numbers, unsigned int bits)
      : numbers_(std::move(numbers)), bits_(bits) {}

  unsigned int pieceCount() const override { return bits_ == 0 ? 0 : 1; }
  unsigned int pieceBits(unsigned int /*piece*/) const override { return bits_; }
  void encode(unsigned int /*piece*/, std::uint32_t firstRow, std::uint32_t count,
              std::uint64_t* codes) const override {
    std::copy_n(numbers_.begin() + firstRow, count, codes);
  }
  bool isExact() const override { return true; }
  int compare(std::uint32_t left, std::uint32_t right) const override {
    return numbers_[left] < numbers_[right] ? -1
                                            : static_cast<int>(numbers_[left] != numbers_[right]);
  }

 private:
  std::vector<std::uint64_t> numbers_;
  unsigned int bits_;
};

using Columns = std::vector<std::unique_ptr<SortColumn>>;

/// Numbers of `bits` bits that differ only in their lowest `varying` ones.
std::unique_ptr<SortColumn> numbers(std::mt19937_64& random, std::uint32_t rows, unsigned int bits,
                                    unsigned int varying) {
  std::uint64_t const mask = varying == 0 ? 0 : ~std::uint64_t{0} >> (64 - varying);
  std::uint64_t const fixed = bits == 0 ? 0 : random() >> (64 - bits) & ~mask;
  std::vector<std::uint64_t> made(rows);
  std::generate(made.begin(), made.end(), [&] { return fixed | (random() & mask); });
  return std::make_unique<NumberColumn>(std::move(made), bits);
}

void expectOrder(Columns const& columns, std::uint32_t rows) {
  std::vector<std::uint32_t> expected(rows);
  std::iota(expected.begin(), expected.end(), 0U);
  std::stable_sort(expected.begin(), expected.end(), [&](std::uint32_t left, std::uint32_t right) {
    for (auto const& column : columns) {
      if (int const order = column->compare(left, right); order != 0) {
        return order < 0;
      }
    }
    return false;
  });
  RowOrder const order = sortedRows(columns, rows);
  ASSERT_TRUE(std::equal(order.begin(), order.end(), expected.begin(), expected.end()));
}

/// Columns given as (bits, varying bits).
void expectOrderOf(std::vector<std::pair<unsigned int, unsigned int>> const& shapes,
                   std::uint32_t rows) {
  std::mt19937_64 random(rows + 7 * shapes.size());
  Columns columns;
  for (auto const& [bits, varying] : shapes) {
    columns.push_back(numbers(random, rows, bits, varying));
  }
  expectOrder(columns, rows);
}

constexpr std::uint32_t kMany = 200'000;  // enough for the sort to give up short keys on the way

}  // namespace

TEST(SortRows, KeysThatFitWithTheRowNumberIntoAWord) {
  for (std::uint32_t const rows : {0U, 1U, 2U, 1023U, 1024U, 1025U, 70'000U}) {
    expectOrderOf({{17, 12}, {20, 20}}, rows);
    expectOrderOf({{3, 3}}, rows);
    expectOrderOf({{0, 0}}, rows);
    expectOrderOf({}, rows);
  }
}

TEST(SortRows, APieceAsWideAsTheKey) {
  expectOrderOf({{64, 64}}, kMany);
  expectOrderOf({{64, 5}, {64, 9}}, 5'000);
}

TEST(SortRows, LongKeysThatMostlyDifferInTheirBeginning) {
  expectOrderOf({{17, 17}, {64, 64}}, kMany);
}

TEST(SortRows, LongKeysThatDifferOnlyInTheirEnd) {
  expectOrderOf({{32, 8}, {64, 12}}, kMany);
  expectOrderOf({{64, 3}, {20, 20}}, kMany);
}

TEST(SortRows, KeysLongerThanAnyRecord) {
  expectOrderOf({{64, 10}, {64, 4}, {64, 30}}, kMany);
}

TEST(SortRows, AllRowsEqual) {
  expectOrderOf({{64, 0}, {64, 0}}, kMany);
}
