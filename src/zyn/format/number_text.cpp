#include "zyn/format/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace {

// 20 digits with a separator each, the decimal separator, 18 decimals and the sign fit.
constexpr std::size_t kSmallNumber = 64;
constexpr unsigned int kMaxFastPrecision = 18;
constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;
constexpr double kSmallestFastFraction = 0x1p-11;

__extension__ using Wide = unsigned __int128;

constexpr auto kDigitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

constexpr auto kPowersOfTen = [] {
  std::array<std::uint64_t, kMaxFastPrecision + 1> powers{};
  std::uint64_t power = 1;
  for (auto& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

// Numbers are written from their last byte to the first; each function gives the new first byte.

char* putPairBefore(char* first, std::uint64_t pair) {
  first -= 2;
  std::memcpy(first, &kDigitPairs[2 * pair], 2);
  return first;
}

char* putDigitsBefore(char* first, std::uint64_t value) {
  while (value >= 100) {
    first = putPairBefore(first, value % 100);
    value /= 100;
  }
  if (value >= 10) {
    return putPairBefore(first, value);
  }
  *--first = static_cast<char>('0' + value);
  return first;
}

char* putThousandsBefore(char* first, std::uint64_t value, char separator) {
  while (value >= 1000) {
    std::uint64_t const group = value % 1000;
    value /= 1000;
    first = putPairBefore(first, group % 100);
    *--first = static_cast<char>('0' + group / 100);
    *--first = separator;
  }
  return putDigitsBefore(first, value);
}

char* putGroupsBefore(char* first, std::uint64_t value, NumberLayout const& layout) {
  for (unsigned int inGroup = 0; value >= 10; value /= 10) {
    *--first = static_cast<char>('0' + value % 10);
    if (++inGroup == layout.groupSize) {
      *--first = layout.groupSeparator;
      inGroup = 0;
    }
  }
  *--first = static_cast<char>('0' + value);
  return first;
}

char* putWholeBefore(char* first, std::uint64_t value, NumberLayout const& layout) {
  if (layout.groupSize == 0) {
    return putDigitsBefore(first, value);
  }
  return layout.groupSize == 3 ? putThousandsBefore(first, value, layout.groupSeparator)
                               : putGroupsBefore(first, value, layout);
}

char* putDecimalsBefore(char* first, std::uint64_t decimals, unsigned int count) {
  for (; count >= 2; count -= 2) {
    first = putPairBefore(first, decimals % 100);
    decimals /= 100;
  }
  if (count != 0) {
    *--first = static_cast<char>('0' + decimals);
  }
  return first;
}

void appendPadded(std::string& out, std::string_view number, NumberLayout const& layout) {
  std::size_t const width = std::min(layout.width, NumberLayout::kMaxWidth);
  if (number.size() < width) {
    out.append(width - number.size(), layout.filler);
  }
  out.append(number);
}

struct FixedPoint {
  std::uint64_t whole;
  std::uint64_t decimals;
};

// The fraction is taken as a multiple of 2^-64, which holds it exactly because the caller lets no
// smaller numbers in; times the power of ten it is the decimals above and the exact rest below the
// 64th bit, so that rounding needs no guess.
FixedPoint toFixedPoint(double magnitude, unsigned int precision) {
  auto whole = static_cast<std::uint64_t>(static_cast<std::int64_t>(magnitude));
  double const fraction = magnitude - static_cast<double>(static_cast<std::int64_t>(whole));
  Wide const scaled =
      static_cast<Wide>(static_cast<std::uint64_t>(fraction * kTwoTo64)) * kPowersOfTen[precision];
  auto decimals = static_cast<std::uint64_t>(scaled >> 64);
  auto const rest = static_cast<std::uint64_t>(scaled);
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
  bool const isOdd = ((precision == 0 ? whole : decimals) & 1) != 0;
  if (rest > kHalf || (rest == kHalf && isOdd)) {
    ++decimals;
  }
  if (decimals == kPowersOfTen[precision]) {
    decimals = 0;
    ++whole;
  }
  return {whole, decimals};
}

bool isFast(double magnitude, unsigned int precision) {
  return precision <= kMaxFastPrecision && magnitude < kTwoTo63 &&
         (magnitude >= kSmallestFastFraction || magnitude == 0);
}

void appendFixedPoint(std::string& out, FixedPoint number, bool isNegative,
                      NumberLayout const& layout) {
  std::array<char, kSmallNumber> buffer;
  char* const end = buffer.data() + buffer.size();
  char* first = end;
  if (layout.precision != 0) {
    first = putDecimalsBefore(first, number.decimals, layout.precision);
    *--first = layout.decimalSeparator;
  }
  first = putWholeBefore(first, number.whole, layout);
  if (isNegative) {
    *--first = '-';
  }
  appendPadded(out, {first, static_cast<std::size_t>(end - first)}, layout);
}

void appendGrouped(std::string& out, std::string_view digits, NumberLayout const& layout) {
  if (layout.groupSize == 0) {
    out.append(digits);
    return;
  }
  std::size_t const beyond = digits.size() % layout.groupSize;
  std::size_t from = beyond == 0 ? std::min<std::size_t>(layout.groupSize, digits.size()) : beyond;
  out.append(digits.substr(0, from));
  for (; from < digits.size(); from += layout.groupSize) {
    out += layout.groupSeparator;
    out.append(digits.substr(from, layout.groupSize));
  }
}

// The road for all that is rare: many decimals, tiny and huge numbers, infinities.
template <class Float>
void appendThroughLibrary(std::string& out, Float value, NumberLayout const& layout) {
  std::array<char, std::numeric_limits<Float>::max_exponent10 + NumberLayout::kMaxPrecision + 8>
      buffer;
  auto const written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                     std::chars_format::fixed, static_cast<int>(layout.precision));
  std::string_view const text(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
  if (!std::isfinite(value)) {
    appendPadded(out, text, layout);
    return;
  }
  std::size_t const sign = text.starts_with('-') ? 1 : 0;
  std::size_t const point = std::min(text.find('.'), text.size());
  std::string number(text.substr(0, sign));
  appendGrouped(number, text.substr(sign, point - sign), layout);
  if (point != text.size()) {
    number += layout.decimalSeparator;
    number.append(text.substr(point + 1));
  }
  appendPadded(out, number, layout);
}

NumberLayout withinBounds(NumberLayout layout) {
  layout.precision = std::min(layout.precision, NumberLayout::kMaxPrecision);
  return layout;
}

}  // namespace

void appendInteger(std::string& out, long long value, NumberLayout const& layout) {
  auto const bits = static_cast<std::uint64_t>(value);
  std::array<char, kSmallNumber> buffer;
  char* const end = buffer.data() + buffer.size();
  char* first = putWholeBefore(end, value < 0 ? 0 - bits : bits, layout);
  if (value < 0) {
    *--first = '-';
  }
  appendPadded(out, {first, static_cast<std::size_t>(end - first)}, layout);
}

void appendDecimal(std::string& out, double value, NumberLayout const& layout) {
  double const magnitude = std::fabs(value);
  if (isFast(magnitude, layout.precision)) {
    appendFixedPoint(out, toFixedPoint(magnitude, layout.precision), std::signbit(value), layout);
  } else {
    appendThroughLibrary(out, value, withinBounds(layout));
  }
}

void appendDecimal(std::string& out, long double value, NumberLayout const& layout) {
  auto const narrow = static_cast<double>(value);
  if (static_cast<long double>(narrow) == value) {
    appendDecimal(out, narrow, layout);
  } else {
    appendThroughLibrary(out, value, withinBounds(layout));
  }
}
