#include "zyn/matrix/null_bits.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

/// Around the borders of words, where an off-by-one would show.
constexpr std::size_t kSizes[] = {0, 1, 63, 64, 65, 127, 128, 129, 1000};

bool everyThird(std::size_t row) {
  return row % 3 == 0;
}

NullBits bitsOf(std::size_t rows) {
  NullBits bits;
  for (std::size_t row = 0; row < rows; ++row) {
    bits.push(everyThird(row));
  }
  return bits;
}

}  // namespace

TEST(NullBits, KeepsWhatWasPushed) {
  for (std::size_t const rows : kSizes) {
    NullBits const bits = bitsOf(rows);

    ASSERT_EQ(bits.size(), rows);
    for (std::size_t row = 0; row < rows; ++row) {
      ASSERT_EQ(bits.test(row), everyThird(row)) << row << " of " << rows;
    }
  }
}

TEST(NullBits, AppendsTheFirstRowsOfOthers) {
  for (std::size_t const ahead : kSizes) {
    for (std::size_t const rows : kSizes) {
      NullBits bits = bitsOf(ahead);

      bits.append(bitsOf(1000), rows);
      bits.push(true);

      ASSERT_EQ(bits.size(), ahead + rows + 1);
      for (std::size_t row = 0; row < ahead; ++row) {
        ASSERT_EQ(bits.test(row), everyThird(row)) << row << " of " << ahead;
      }
      for (std::size_t row = 0; row < rows; ++row) {
        ASSERT_EQ(bits.test(ahead + row), everyThird(row)) << row << " behind " << ahead;
      }
      ASSERT_TRUE(bits.test(ahead + rows));
    }
  }
}

TEST(NullBits, PushesNullsBehindAnyNumberOfRows) {
  for (std::size_t const ahead : kSizes) {
    for (std::size_t const rows : kSizes) {
      NullBits bits = bitsOf(ahead);

      bits.pushNulls(rows);
      bits.push(false);

      ASSERT_EQ(bits.size(), ahead + rows + 1);
      for (std::size_t row = 0; row < rows; ++row) {
        ASSERT_TRUE(bits.test(ahead + row)) << row << " behind " << ahead;
      }
      ASSERT_FALSE(bits.test(ahead + rows));
    }
  }
}

TEST(NullBits, SetEightSetsTheRowsOfTheMaskAndLeavesTheOthers) {
  NullBits bits = bitsOf(200);

  bits.setEight(120, 0b10000110);

  for (std::size_t row = 0; row < 200; ++row) {
    bool const isMasked = row == 121 || row == 122 || row == 127;
    ASSERT_EQ(bits.test(row), everyThird(row) || isMasked) << row;
  }
}

TEST(NullBits, SetAndResetTouchOneRow) {
  NullBits bits = bitsOf(200);

  bits.set(64);
  bits.reset(63);

  for (std::size_t row = 0; row < 200; ++row) {
    bool const expected = row == 64 || (row != 63 && everyThird(row));
    ASSERT_EQ(bits.test(row), expected) << row;
  }
}

TEST(NullBits, PushValidAddsRowsThatAreNotNull) {
  for (std::size_t const before : kSizes) {
    for (std::size_t const added : kSizes) {
      NullBits bits = bitsOf(before);

      bits.pushValid(added);
      bits.push(true);

      ASSERT_EQ(bits.size(), before + added + 1);
      for (std::size_t row = 0; row < before + added; ++row) {
        ASSERT_EQ(bits.test(row), row < before && everyThird(row));
      }
      ASSERT_TRUE(bits.test(before + added));
    }
  }
}

TEST(NullBits, BitsPastTheEndAreZero) {
  NullBits bits = bitsOf(65);

  EXPECT_EQ(bits.words()[1], 0U);  // row 64 is not null

  bits.push(true);
  EXPECT_EQ(bits.words()[1], 2U);
}

TEST(NullBits, AnyTellsWhetherSomeRowIsNull) {
  NullBits bits;
  EXPECT_FALSE(bits.any());

  bits.pushValid(130);
  EXPECT_FALSE(bits.any());

  bits.set(129);
  EXPECT_TRUE(bits.any());

  bits.clear();
  EXPECT_FALSE(bits.any());
  EXPECT_EQ(bits.size(), 0U);
}

TEST(NullBits, AClearedOneStartsAnew) {
  NullBits bits = bitsOf(64);

  bits.clear();
  bits.push(false);
  bits.push(true);

  EXPECT_FALSE(bits.test(0));
  EXPECT_TRUE(bits.test(1));
}

TEST(NullBits, OnlyARowThatHadAValueMayCoverOne) {
  NullBits bits;
  bits.push(true);
  bits.pushValid(8);
  bits.pushNulls(3);
  bits.setBlank(1);
  bits.setEight(0, 0xFF);
  EXPECT_FALSE(bits.mayCoverValues());

  bits.set(8);
  EXPECT_TRUE(bits.mayCoverValues());

  bits.clear();
  EXPECT_FALSE(bits.mayCoverValues());
}

TEST(NullBits, CoveredValuesAreToldOnToCopies) {
  NullBits covering;
  covering.pushValid(1);
  covering.set(0);

  NullBits appended;
  appended.append(covering, 1);
  NullBits told;
  told.coverAs(covering);
  told.coverAs(NullBits());

  EXPECT_TRUE(appended.mayCoverValues());
  EXPECT_TRUE(told.mayCoverValues());
}
