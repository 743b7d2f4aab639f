#include "cli/output/value_text.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace mox::cli {
namespace {

std::string text(double value) {
  std::string buffer(kLongestDouble, '\0');
  buffer.resize(static_cast<std::size_t>(formatDouble(buffer.data(), value) - buffer.data()));
  return buffer;
}

TEST(FormatDouble, WritesShortDigitsWithoutAnExponentInTheUsualRange) {
  EXPECT_EQ(text(0), "0");
  EXPECT_EQ(text(-0.0), "-0");
  EXPECT_EQ(text(2.5), "2.5");
  EXPECT_EQ(text(100000), "100000");
  EXPECT_EQ(text(0.1), "0.1");
  EXPECT_EQ(text(0.00001), "0.00001");
  EXPECT_EQ(text(1234567890.25), "1234567890.25");
  EXPECT_EQ(text(9999999999999998), "9999999999999998");
}

TEST(FormatDouble, WritesAnExponentBeyond) {
  EXPECT_EQ(text(1e16), "1e+16");
  EXPECT_EQ(text(1e-6), "1e-06");
  EXPECT_EQ(text(-1.7976931348623157e308), "-1.7976931348623157e+308");
}

TEST(FormatDouble, NamesWhatIsNoFiniteNumber) {
  EXPECT_EQ(text(std::nan("")), "NaN");
  EXPECT_EQ(text(std::numeric_limits<double>::infinity()), "Infinity");
  EXPECT_EQ(text(-std::numeric_limits<double>::infinity()), "-Infinity");
}

TEST(FormatDouble, ReadsBackAsTheSameNumberAndFitsItsRoom) {
  std::mt19937_64 random(20240305);
  for (int i = 0; i < 100000; ++i) {
    std::uint64_t const bits = random();
    double value = 0;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) {
      continue;
    }
    if (i % 2 == 0) {
      value = std::fmod(value, 1e16);
    }
    std::string const written = text(value);
    ASSERT_LT(written.size(), kLongestDouble);
    double back = 0;
    std::from_chars(written.data(), written.data() + written.size(), back);
    ASSERT_EQ(back, value) << written;
  }
}

TEST(FormatMoment, PadsEveryPart) {
  EXPECT_EQ(formatMoment(datetime_t(5, 3, 24, 1, 2, 3), true), "0024-03-05 01:02:03");
  EXPECT_EQ(formatMoment(datetime_t(31, 12, 9999), false), "9999-12-31");
}

}  // namespace
}  // namespace mox::cli
