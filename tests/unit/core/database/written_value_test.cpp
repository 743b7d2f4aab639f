#include "core/database/written_value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace mox::core {
namespace {

std::string numeral(double value) {
  std::string sql;
  appendNumeral(sql, value);
  return sql;
}

std::string hexadecimal(std::string_view text) {
  std::string sql = "x = ";
  appendHexadecimal(sql, text);
  return sql;
}

TEST(WrittenValue, NumeralsOfDoublesAreFloatingOnes) {
  EXPECT_EQ(numeral(1.5), "1.5e+00");
  EXPECT_EQ(numeral(-0.0), "-0e+00");
  EXPECT_EQ(numeral(100), "1e+02");
  EXPECT_EQ(numeral(std::numeric_limits<double>::max()), "1.7976931348623157e+308");
}

TEST(WrittenValue, NumeralsReadBackToTheSameDouble) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> exponents(-300, 300);
  for (int i = 0; i < 10000; ++i) {
    double const value = std::pow(10.0, exponents(random)) * (i % 2 == 0 ? 1 : -1);
    EXPECT_EQ(std::strtod(numeral(value).c_str(), nullptr), value);
  }
}

TEST(WrittenValue, TextsBecomeHexadecimalDigits) {
  EXPECT_EQ(hexadecimal(""), "x = _utf8mb4 x''");
  EXPECT_EQ(hexadecimal("é'\\"), "x = _utf8mb4 x'C3A9275C'");
}

TEST(WrittenValue, NoByteOfATextReachesTheStatement) {
  std::string every;
  for (int byte = 0; byte < 256; ++byte) {
    every += static_cast<char>(byte);
  }
  auto const digits = hexadecimal(every).substr(std::string("x = _utf8mb4 x'").size());
  EXPECT_EQ(digits.size(), 513U);
  EXPECT_EQ(digits.find_first_not_of("0123456789ABCDEF"), 512U);
}

}  // namespace
}  // namespace mox::core
