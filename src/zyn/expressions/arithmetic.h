#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>

/// What the operators and functions of expressions compute, one row at a time. The operations of a
/// context and the loops over blocks of rows share these, so that both give the same bits.
namespace moxExParser {

/// Throws moxExpressionContext::DivByZero, with these details.
[[noreturn]] void failDivisionByZero(std::initializer_list<std::string> details = {});

/// As std::trunc, which without newer processors' instructions is a call for every value.
inline double truncated(double value) {
  constexpr double kFirstWithoutFraction = 4503599627370496.0;  // 2^52
  if (!(std::fabs(value) < kFirstWithoutFraction)) {
    return value;
  }
  return std::copysign(static_cast<double>(static_cast<std::int64_t>(value)), value);
}

/// As std::round: halves go away from zero.
inline double rounded(double value) {
  double const whole = truncated(value);
  return std::fabs(value - whole) >= 0.5 ? whole + std::copysign(1.0, value) : whole;
}

/// As std::ceil.
inline double raised(double value) {
  double const whole = truncated(value);
  return whole < value ? whole + 1.0 : whole;
}

/// 10 to the power of the whole part of `places`, as far as it fits in 64 bits: 0 to 18 places.
inline double scaleFor(double places) {
  constexpr int kMostPlaces = 18;
  int count = 0;
  if (places > 0) {
    count = places < kMostPlaces ? static_cast<int>(places) : kMostPlaces;
  }
  std::int64_t scale = 1;
  for (int i = 0; i < count; ++i) {
    scale *= 10;
  }
  return static_cast<double>(scale);
}

inline double floorAt(double value, double scale) {
  return truncated(value * scale) / scale;
}

/// The scale comes and goes before the rounding, so that a whole number comes out whatever it is.
/// That is how definitions know the function.
inline double roundAt(double value, double scale) {
  return rounded(value * scale / scale);
}

/// Likewise a whole number.
inline double ceilAt(double value, double scale) {
  return raised(value * scale / scale);
}

/// The value as an int: decimal places dropped, NaN as 0, and the nearest int for what does not
/// fit.
inline int toInt(double value) {
  constexpr double kPastLast = 2147483648.0;
  if (value >= kPastLast) {
    return std::numeric_limits<int>::max();
  }
  if (value <= -kPastLast) {
    return std::numeric_limits<int>::min();
  }
  return std::isnan(value) ? 0 : static_cast<int>(value);
}

}  // namespace moxExParser
