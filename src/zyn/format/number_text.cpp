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

// 20 digits with a separator between any two, the decimal separator, 18 decimals and the sign fit,
// and three bytes behind them.
static_assert(kNumberRoom >= 20 + 19 + 1 + 18 + 1 + 3);

constexpr unsigned int kMaxFastPrecision = 18;
constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;
constexpr double kSmallestFastFraction = 0x1p-11;

__extension__ using Wide = unsigned __int128;

/// "000" to "999", behind each the number of its digits as a byte: 4 KiB, which stay in the nearest
/// cache.
constexpr auto kThreeDigits = [] {
  std::array<char, 4000> digits{};
  for (std::size_t i = 0; i < 1000; ++i) {
    digits[4 * i] = static_cast<char>('0' + i / 100);
    digits[4 * i + 1] = static_cast<char>('0' + i / 10 % 10);
    digits[4 * i + 2] = static_cast<char>('0' + i % 10);
    digits[4 * i + 3] = static_cast<char>(i < 10 ? 1 : i < 100 ? 2 : 3);
  }
  return digits;
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

// Numbers are written where they will stand: put together elsewhere and then copied, the copy would
// wait for the pieces. Each function gives the new end, and may write three bytes beyond it.

/// Without a branch, as the processor would guess wrong where some numbers are negative.
char* putSign(char* place, bool isNegative) {
  *place = '-';
  return place + (isNegative ? 1 : 0);
}

/// The last `count` digits, at most three, of a number below 1000.
char* putLast(char* place, std::uint64_t value, unsigned int count) {
  std::memcpy(place, &kThreeDigits[4 * value + 3 - count], 4);
  return place + count;
}

/// A number below 1000 without zeros before it. How many digits there are is looked up, as the
/// processor would guess wrong too often.
char* putFirst(char* place, std::uint64_t value) {
  return putLast(place, value, static_cast<unsigned char>(kThreeDigits[4 * value + 3]));
}

char* putDigits(char* place, std::uint64_t value) {
  if (value < 1000) {
    return putFirst(place, value);
  }
  place = value < 1'000'000 ? putFirst(place, value / 1000) : putDigits(place, value / 1000);
  return putLast(place, value % 1000, 3);
}

char* putThousands(char* place, std::uint64_t value, char separator) {
  if (value < 1000) {
    return putFirst(place, value);
  }
  place = value < 1'000'000 ? putFirst(place, value / 1000)
                            : putThousands(place, value / 1000, separator);
  *place++ = separator;
  return putLast(place, value % 1000, 3);
}

/// Groups of any size are rare, and written from their last byte to the first.
char* putGroups(char* place, std::uint64_t value, NumberLayout const& layout) {
  std::array<char, kNumberRoom> buffer;
  char* const end = buffer.data() + buffer.size();
  char* first = end;
  for (unsigned int inGroup = 0; value >= 10; value /= 10) {
    *--first = static_cast<char>('0' + value % 10);
    if (++inGroup == layout.groupSize) {
      *--first = layout.groupSeparator;
      inGroup = 0;
    }
  }
  *--first = static_cast<char>('0' + value);
  return std::copy(first, end, place);
}

char* putWhole(char* place, std::uint64_t value, NumberLayout const& layout) {
  if (layout.groupSize == 0) {
    return putDigits(place, value);
  }
  return layout.groupSize == 3 ? putThousands(place, value, layout.groupSeparator)
                               : putGroups(place, value, layout);
}

char* putDecimals(char* place, std::uint64_t decimals, unsigned int count) {
  if (count <= 3) {
    return putLast(place, decimals, count);
  }
  place = putDecimals(place, decimals / 1000, count - 3);
  return putLast(place, decimals % 1000, 3);
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

constexpr unsigned int kCents = 2;
constexpr double kMostCents = 0x1p36;

/// Two decimals are what amounts have. The product is off by 2^-17 at most, so that it tells the
/// nearest number of cents wherever it is not about half way between two. False where it is.
bool toCents(double magnitude, FixedPoint& number) {
  double const scaled = magnitude * 100;
  if (!(scaled < kMostCents)) {
    return false;
  }
  auto const below = static_cast<std::int64_t>(scaled);
  double const beyond = scaled - static_cast<double>(below);
  if (std::fabs(beyond - 0.5) < 0.001) {
    return false;
  }
  auto const cents = static_cast<std::uint64_t>(below + (beyond > 0.5 ? 1 : 0));
  number = {cents / 100, cents % 100};
  return true;
}

// The fraction is taken as a multiple of 2^-64, which holds it exactly because the caller lets no
// smaller numbers in; times the power of ten it is the decimals above and the exact rest below the
// 64th bit, so that rounding needs no guess.
FixedPoint toFixedPoint(double magnitude, unsigned int precision) {
  if (FixedPoint cents{}; precision == kCents && toCents(magnitude, cents)) {
    return cents;
  }
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

char* putFixedPoint(char* place, FixedPoint number, bool isNegative, NumberLayout const& layout) {
  place = putSign(place, isNegative);
  place = putWhole(place, number.whole, layout);
  if (layout.precision != 0) {
    *place++ = layout.decimalSeparator;
    place = putDecimals(place, number.decimals, layout.precision);
  }
  return place;
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

char* putInteger(char* place, long long value, NumberLayout const& layout) {
  auto const bits = static_cast<std::uint64_t>(value);
  place = putSign(place, value < 0);
  return putWhole(place, value < 0 ? 0 - bits : bits, layout);
}

char* putDecimal(char* place, double value, NumberLayout const& layout) {
  double const magnitude = std::fabs(value);
  return isFast(magnitude, layout.precision)
             ? putFixedPoint(place, toFixedPoint(magnitude, layout.precision), std::signbit(value),
                             layout)
             : nullptr;
}

void appendInteger(std::string& out, long long value, NumberLayout const& layout) {
  std::array<char, kNumberRoom> buffer;
  char const* const end = putInteger(buffer.data(), value, layout);
  appendPadded(out, {buffer.data(), static_cast<std::size_t>(end - buffer.data())}, layout);
}

void appendDecimal(std::string& out, double value, NumberLayout const& layout) {
  std::array<char, kNumberRoom> buffer;
  if (char const* const end = putDecimal(buffer.data(), value, layout)) {
    appendPadded(out, {buffer.data(), static_cast<std::size_t>(end - buffer.data())}, layout);
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
