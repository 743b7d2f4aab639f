#include "zyn/format/number_text.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace mox_test {

namespace {

class Separators final : public std::numpunct<char> {
 public:
  explicit Separators(NumberLayout const& layout) : layout_(layout) {}

 protected:
  char do_decimal_point() const override { return layout_.decimalSeparator; }
  char do_thousands_sep() const override { return layout_.groupSeparator; }
  std::string do_grouping() const override {
    return std::string(1, static_cast<char>(layout_.groupSize));
  }

 private:
  NumberLayout layout_;
};

// The plain version: a stream with a facet, which is slow and right.
template <class Number>
std::string byStream(Number value, NumberLayout const& layout) {
  std::ostringstream stream;
  stream.imbue(std::locale(std::locale::classic(), new Separators(layout)));
  stream.setf(std::ios::fixed, std::ios::floatfield);
  stream.setf(std::ios::right, std::ios::adjustfield);
  stream.width(layout.width);
  stream.fill(layout.filler);
  stream.precision(layout.precision);
  stream << value;
  return stream.str();
}

template <class Number>
std::string written(Number value, NumberLayout const& layout) {
  std::string text = "kept";
  if constexpr (std::is_integral_v<Number>) {
    appendInteger(text, value, layout);
  } else {
    appendDecimal(text, value, layout);
  }
  EXPECT_EQ(text.substr(0, 4), "kept");
  return text.substr(4);
}

class Numbers {
 public:
  explicit Numbers(std::uint64_t seed) : engine_(seed) {}

  std::uint64_t below(std::uint64_t limit) { return engine_() % limit; }

  double anyBits() {
    std::uint64_t const bits = engine_();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }

  // Amounts as people have them, and the halves that decide how rounding goes.
  double amount() {
    double const scale = std::pow(10.0, static_cast<double>(below(10)));
    auto const units = static_cast<double>(static_cast<std::int64_t>(below(2'000'000'000)) - 1e9);
    return below(2) == 0 ? units / scale : std::ldexp(units, -static_cast<int>(below(40)));
  }

  NumberLayout layout() {
    return {.decimalSeparator = ",.x\0"[below(4)],
            .groupSeparator = ".,' \0"[below(5)],
            .filler = "0 *\0"[below(4)],
            .groupSize = below(2) == 0 ? 3 : static_cast<unsigned int>(below(8)),
            .precision = static_cast<unsigned int>(below(below(20) == 0 ? 512 : 22)),
            .width = static_cast<unsigned int>(below(3) == 0 ? below(60) : 0)};
  }

 private:
  std::mt19937_64 engine_;
};

TEST(NumberText, DoublesReadAsAStreamWritesThem) {
  Numbers numbers(20240801);
  for (int i = 0; i < 100'000; ++i) {
    auto const layout = numbers.layout();
    double const value = i % 4 == 0 ? numbers.anyBits() : numbers.amount();
    ASSERT_EQ(written(value, layout), byStream(value, layout))
        << value << " precision " << layout.precision << " group " << layout.groupSize;
  }
}

TEST(NumberText, LongDoublesReadAsAStreamWritesThem) {
  Numbers numbers(7);
  for (int i = 0; i < 3000; ++i) {
    auto const layout = numbers.layout();
    long double const value =
        std::ldexp(static_cast<long double>(numbers.amount()) + 0x1p-60L * numbers.amount(),
                   static_cast<int>(numbers.below(i % 8 == 0 ? 16000 : 40)));
    ASSERT_EQ(written(value, layout), byStream(value, layout)) << value;
  }
}

TEST(NumberText, WholeNumbersReadAsAStreamWritesThem) {
  Numbers numbers(11);
  for (int i = 0; i < 50'000; ++i) {
    auto const layout = numbers.layout();
    auto const bits = numbers.below(std::numeric_limits<std::uint64_t>::max());
    auto const value = static_cast<long long>(bits) >> numbers.below(64);
    ASSERT_EQ(written(value, layout), byStream(value, layout)) << value;
  }
}

TEST(NumberText, EdgesOfTheRangeReadAsAStreamWritesThem) {
  using Double = std::numeric_limits<double>;
  using Long = std::numeric_limits<long long>;
  NumberLayout layout{.filler = '*', .groupSize = 3};
  for (unsigned int const precision : {0U, 1U, 2U, 9U, 17U, 18U, 19U, 60U, 512U}) {
    layout.precision = precision;
    for (unsigned int const width : {0U, 5U, 40U}) {
      layout.width = width;
      for (double const magnitude : {0.0,
                                     0.5,
                                     1.5,
                                     2.5,
                                     0.125,
                                     0.375,
                                     999.5,
                                     9.995,
                                     0.99999999999999989,
                                     0x1p-11,
                                     0x1p-12,
                                     0x1p52 + 0.5,
                                     0x1p53,
                                     0x1p63,
                                     9223372036854774784.0,
                                     1e300,
                                     Double::max(),
                                     Double::min(),
                                     Double::denorm_min(),
                                     Double::infinity(),
                                     Double::quiet_NaN()}) {
        EXPECT_EQ(written(magnitude, layout), byStream(magnitude, layout)) << magnitude;
        EXPECT_EQ(written(-magnitude, layout), byStream(-magnitude, layout)) << -magnitude;
      }
      for (long long const value : {0LL, 999LL, 1000LL, -1000LL, Long::max(), Long::min()}) {
        EXPECT_EQ(written(value, layout), byStream(value, layout)) << value;
      }
    }
  }
}

TEST(NumberText, EveryGroupSizeReadsAsAStreamWritesIt) {
  for (unsigned int size = 0; size <= 126; ++size) {
    NumberLayout const layout{.groupSize = size, .precision = 1};
    EXPECT_EQ(written(1234567890123.5, layout), byStream(1234567890123.5, layout)) << size;
    EXPECT_EQ(written(1e200, layout), byStream(1e200, layout)) << size;
    EXPECT_EQ(written(-1234567890123LL, layout), byStream(-1234567890123LL, layout)) << size;
  }
}

TEST(NumberText, HalvesGoToTheEvenNeighbourByTheExactValue) {
  EXPECT_EQ(written(0.5, {}), "0");
  EXPECT_EQ(written(1.5, {}), "2");
  EXPECT_EQ(written(2.5, {}), "2");
  EXPECT_EQ(written(0.125, {.precision = 2}), "0.12");
  EXPECT_EQ(written(0.375, {.precision = 2}), "0.38");
  EXPECT_EQ(written(1.005, {.precision = 2}), "1.00");
  EXPECT_EQ(written(-0.4, {}), "-0");
  EXPECT_EQ(written(9.999, {.precision = 2}), "10.00");
}

TEST(NumberText, InfinityAndNanHaveNeitherGroupsNorDecimals) {
  NumberLayout const layout{.filler = ' ', .groupSize = 1, .precision = 4, .width = 6};
  EXPECT_EQ(written(std::numeric_limits<double>::infinity(), layout), "   inf");
  EXPECT_EQ(written(-std::numeric_limits<double>::infinity(), layout), "  -inf");
  EXPECT_EQ(written(std::numeric_limits<double>::quiet_NaN(), layout), "   nan");
}

TEST(NumberText, WidthAndPrecisionOfHostileFilesAreBounded) {
  constexpr auto kHuge = std::numeric_limits<unsigned int>::max();
  EXPECT_EQ(written(1.0, {.filler = ' ', .width = kHuge}).size(), 65'536U);
  EXPECT_EQ(written(1.0, {.precision = kHuge}), "1." + std::string(512, '0'));
  EXPECT_EQ(written(1LL, {.filler = ' ', .width = kHuge}).size(), 65'536U);
}

TEST(NumberText, GroupSizesOutside1To126AreNone) {
  EXPECT_EQ(NumberLayout::groupSizeOf(0), 0U);
  EXPECT_EQ(NumberLayout::groupSizeOf(-1), 0U);
  EXPECT_EQ(NumberLayout::groupSizeOf(127), 0U);
  EXPECT_EQ(NumberLayout::groupSizeOf(259), 0U);
  EXPECT_EQ(NumberLayout::groupSizeOf(1), 1U);
  EXPECT_EQ(NumberLayout::groupSizeOf(126), 126U);
}

}  // namespace

}  // namespace mox_test
