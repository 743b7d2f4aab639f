#include "zyn/operations/exact_power.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace exact_power {

namespace {

constexpr std::size_t kBlock = 256;

// Inside these bounds neither a cube nor what its rounding leaves over can be too large or too
// small for a double.
constexpr double kSmallest = 1e-90;
constexpr double kLargest = 1e90;

// Nearest is the nearest to std::pow as well when the true value lies within so many units in the
// last place of it: the errors of common libraries' std::pow are below 0.55 units.
constexpr double kSafeUnits = 0.44;

/// A value as a rounded part and what the rounding left over.
struct Pair {
  double high;
  double low;
};

/// The exact product, for factors of moderate size: halves of 26 bits multiply without rounding.
inline Pair product(double left, double right) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  double const leftTimes = kSplit * left;
  double const leftHigh = leftTimes - (leftTimes - left);
  double const leftLow = left - leftHigh;
  double const rightTimes = kSplit * right;
  double const rightHigh = rightTimes - (rightTimes - right);
  double const rightLow = right - rightHigh;
  double const high = left * right;
  double const low = ((leftHigh * rightHigh - high) + leftHigh * rightLow + leftLow * rightHigh) +
                     leftLow * rightLow;
  return {high, low};
}

/// The distance between a positive double and the next one below it.
inline double unitBelow(double value) {
  constexpr std::uint64_t kExponentBits = 0x7FF0000000000000U;
  constexpr double kLastPlace = 2.220446049250313e-16;  // 2^-52
  std::uint64_t const bits = (std::bit_cast<std::uint64_t>(value) - 1) & kExponentBits;
  return std::bit_cast<double>(bits) * kLastPlace;
}

inline bool isModerate(double size) {
  return static_cast<bool>(static_cast<int>(size >= kSmallest) &
                           static_cast<int>(size <= kLargest));
}

struct Square {
  static constexpr double kExponent = 2;
  static Pair compute(double base) { return product(base, base); }
};

struct Cube {
  static constexpr double kExponent = 3;
  static Pair compute(double base) {
    Pair const square = product(base, base);
    Pair const cube = product(square.high, base);
    double const low = cube.low + square.low * base;
    double const high = cube.high + low;
    return {high, low - (high - cube.high)};
  }
};

/// Whether the rounded value is what std::pow gives as well.
inline bool isSafe(double base, Pair const& value) {
  bool const near = std::fabs(value.low) < kSafeUnits * unitBelow(std::fabs(value.high));
  return static_cast<bool>(static_cast<int>(near) & static_cast<int>(isModerate(std::fabs(base))));
}

template <class Power>
void roundedPowers(double const* __restrict bases, double* __restrict results,
                   std::uint64_t* __restrict safe, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    Pair const value = Power::compute(bases[i]);
    results[i] = value.high;
    safe[i] = isSafe(bases[i], value) ? 1 : 0;
  }
}

void squareRoots(double const* __restrict bases, double* __restrict results, std::size_t count) {
  std::size_t i = 0;
#if defined(__SSE2__)
  for (; i + 2 <= count; i += 2) {
    _mm_storeu_pd(results + i, _mm_sqrt_pd(_mm_loadu_pd(bases + i)));
  }
#endif
  for (; i < count; ++i) {
    results[i] = std::sqrt(bases[i]);
  }
}

struct Root {
  static constexpr double kExponent = 0.5;
};

/// What the square of the root misses of the base, divided by twice the root, is the root's error.
template <>
void roundedPowers<Root>(double const* __restrict bases, double* __restrict results,
                         std::uint64_t* __restrict safe, std::size_t count) {
  squareRoots(bases, results, count);
  for (std::size_t i = 0; i < count; ++i) {
    double const root = results[i];
    Pair const square = product(root, root);
    double const missing = (bases[i] - square.high) - square.low;
    bool const near = std::fabs(missing) < 2 * kSafeUnits * root * unitBelow(root);
    safe[i] = (static_cast<int>(near) & static_cast<int>(isModerate(bases[i]))) != 0 ? 1 : 0;
  }
}

template <class Power>
void powersOf(double const* bases, double* results, std::size_t count) {
  // Read anew, as compilers take std::pow with a known exponent for a product, which it is not.
  double const volatile unknown = Power::kExponent;
  double const exponent = unknown;
  std::uint64_t safe[kBlock];
  for (std::size_t first = 0; first < count; first += kBlock) {
    std::size_t const rows = std::min(kBlock, count - first);
    roundedPowers<Power>(bases + first, results + first, safe, rows);
    for (std::size_t i = 0; i < rows; ++i) {
      if (safe[i] == 0) {
        results[first + i] = std::pow(bases[first + i], exponent);
      }
    }
  }
}

}  // namespace

bool isKnown(double exponent) {
  return exponent == Square::kExponent || exponent == Cube::kExponent ||
         exponent == Root::kExponent;
}

void powers(double const* bases, double exponent, double* results, std::size_t count) {
  if (exponent == Square::kExponent) {
    powersOf<Square>(bases, results, count);
  } else if (exponent == Cube::kExponent) {
    powersOf<Cube>(bases, results, count);
  } else {
    powersOf<Root>(bases, results, count);
  }
}

}  // namespace exact_power
