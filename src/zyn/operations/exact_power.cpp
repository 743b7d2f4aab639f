#include "zyn/operations/exact_power.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <type_traits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "zyn/matrix/prefetch.h"
#include "zyn/matrix/processor.h"

namespace exact_power {

namespace {

constexpr std::size_t kWordRows = 64;  // as many rows as a word has bits
constexpr std::size_t kBlock = 8 * kWordRows;

// Inside these bounds neither a cube nor what its rounding leaves over can be too large or too
// small for a double, and std::pow is at its best: its error grows with the logarithm.
constexpr double kSmallest = 1e-9;
constexpr double kLargest = 1e9;

// The rounded value is what std::pow gives as well when the true value lies within so many units in
// the last place of it: the errors of common libraries' std::pow stay below 0.512 units there.
constexpr double kSafeUnits = 0.488;

/// A value as a rounded part and what the rounding left over.
struct Pair {
  double high;
  double low;
};

/// Multiplies without rounding, for factors of moderate size, by halves of 26 bits.
struct Halves {
  static Pair product(double left, double right) {
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

  /// What the square of a root misses of the base.
  static double missing(double base, double root) {
    Pair const square = product(root, root);
    return (base - square.high) - square.low;
  }

  /// Not std::sqrt: it sets errno for negative values, which keeps compilers from taking several at
  /// once.
  static void squareRoots(double const* bases, double* results) {
    for (std::size_t i = 0; i < kWordRows; i += 2) {
#if defined(__x86_64__)
      _mm_storeu_pd(results + i, _mm_sqrt_pd(_mm_loadu_pd(bases + i)));
#else
      results[i] = std::sqrt(bases[i]);
      results[i + 1] = std::sqrt(bases[i + 1]);
#endif
    }
  }

  static std::uint64_t bitsOfUnsafe(std::uint64_t const* safe) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kWordRows; ++i) {
      bits |= (~safe[i] & 1U) << i;
    }
    return bits;
  }
};

#if defined(__x86_64__)
/// The same by instructions that newer processors have.
struct Fused {
  static Pair product(double left, double right) {
    double const high = left * right;
    return {high, __builtin_fma(left, right, -high)};
  }

  static double missing(double base, double root) { return __builtin_fma(-root, root, base); }

  [[gnu::target("avx2")]] static void squareRoots(double const* bases, double* results) {
    for (std::size_t i = 0; i < kWordRows; i += 4) {
      _mm256_storeu_pd(results + i, _mm256_sqrt_pd(_mm256_loadu_pd(bases + i)));
    }
  }

  [[gnu::target("avx2")]] static std::uint64_t bitsOfUnsafe(std::uint64_t const* safe) {
    auto const* const masks = reinterpret_cast<double const*>(safe);
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kWordRows; i += 4) {
      auto const four = static_cast<unsigned int>(_mm256_movemask_pd(_mm256_loadu_pd(masks + i)));
      bits |= std::uint64_t{four} << i;
    }
    return ~bits;
  }
};
#endif

/// The distance between a positive double and the next one below it.
inline double unitBelow(double value) {
  constexpr std::uint64_t kExponentBits = 0x7FF0000000000000U;
  constexpr double kLastPlace = 2.220446049250313e-16;  // 2^-52
  std::uint64_t const bits = (std::bit_cast<std::uint64_t>(value) - 1) & kExponentBits;
  return std::bit_cast<double>(bits) * kLastPlace;
}

/// 0, or bits, without a branch: whether the base's size is moderate and `error` below `limit`. A
/// zero without sign is safe as well: it is what nulls are read as.
inline std::uint64_t safety(double base, double error, double limit) {
  double const size = std::fabs(base);
  std::uint64_t const isZero = std::bit_cast<std::uint64_t>(base) == 0 ? ~std::uint64_t{0} : 0;
  std::uint64_t const isLarge = size >= kSmallest ? ~std::uint64_t{0} : 0;
  std::uint64_t const isSmall = size <= kLargest ? ~std::uint64_t{0} : 0;
  std::uint64_t const isNear = error < limit ? ~std::uint64_t{0} : 0;
  return isZero | (isLarge & isSmall & isNear);
}

inline std::uint64_t safety(double base, Pair const& value) {
  return safety(base, std::fabs(value.low), kSafeUnits * unitBelow(std::fabs(value.high)));
}

struct Square {
  static constexpr double kExponent = 2;

  template <class Exact>
  static double compute(double base, std::uint64_t& safe) {
    Pair const square = Exact::product(base, base);
    safe = safety(base, square);
    return square.high;
  }
};

struct Cube {
  static constexpr double kExponent = 3;

  template <class Exact>
  static double compute(double base, std::uint64_t& safe) {
    Pair const square = Exact::product(base, base);
    Pair const cube = Exact::product(square.high, base);
    double const low = cube.low + square.low * base;
    double const high = cube.high + low;
    safe = safety(base, {high, low - (high - cube.high)});
    return high;
  }
};

struct Root {
  static constexpr double kExponent = 0.5;
};

template <class Power, class Exact>
void roundedPowers(double const* __restrict bases, double* __restrict results,
                   std::uint64_t* __restrict safe) {
  for (std::size_t i = 0; i < kWordRows; ++i) {
    results[i] = Power::template compute<Exact>(bases[i], safe[i]);
  }
}

/// What the square of the root misses of the base, divided by twice the root, is the root's error.
template <class Exact>
void roundedRoots(double const* __restrict bases, double* __restrict results,
                  std::uint64_t* __restrict safe) {
  Exact::squareRoots(bases, results);
  for (std::size_t i = 0; i < kWordRows; ++i) {
    double const root = results[i];
    double const missing = std::fabs(Exact::missing(bases[i], root));
    safe[i] = safety(bases[i], missing, 2 * kSafeUnits * root * unitBelow(root));
  }
}

/// The powers of 64 bases; the bits of the rows whose result is not safe.
template <class Power, class Exact>
std::uint64_t rounded(double const* bases, double* results) {
  std::uint64_t safe[kWordRows];
  if constexpr (std::is_same_v<Power, Root>) {
    roundedRoots<Exact>(bases, results, safe);
  } else {
    roundedPowers<Power, Exact>(bases, results, safe);
  }
  return Exact::bitsOfUnsafe(safe);
}

using RoundedPowers = std::uint64_t (*)(double const*, double*);

#if defined(__x86_64__)
template <class Power>
[[gnu::target("avx2,fma"), gnu::flatten]] std::uint64_t fusedPowers(double const* bases,
                                                                    double* results) {
  return rounded<Power, Fused>(bases, results);
}

#endif

template <class Power>
RoundedPowers chosenPowers(bool fuses) {
#if defined(__x86_64__)
  return fuses ? fusedPowers<Power> : rounded<Power, Halves>;
#else
  return rounded<Power, Halves>;
#endif
}

/// The same for the last rows, less than 64.
std::uint64_t roundedRest(RoundedPowers compute, double const* bases, double* results,
                          std::size_t count) {
  double padded[kWordRows] = {};  // a base of 0 is safe
  double powers[kWordRows];
  std::copy(bases, bases + count, padded);
  std::uint64_t const unsafe = compute(padded, powers);
  std::copy(powers, powers + count, results);
  return unsafe;
}

/// Has memory bring the bases of a word of the next block, if there is one.
void askForNext(double const* bases) {
  constexpr std::size_t kLine = 64;
  constexpr std::size_t kBlockBytes = kBlock * sizeof(double);
  for (std::size_t byte = 0; byte < kWordRows * sizeof(double); byte += kLine) {
    prefetchBehind(bases, kBlockBytes + byte);
  }
}

/// Up to a block of powers. Those for std::pow are listed first and called for in one go: a call
/// after each look at a row would wait for the one before.
void powersOfBlock(RoundedPowers compute, double exponent, double const* bases, double* results,
                   std::size_t count) {
  std::size_t unsafe[kBlock];
  std::size_t unsafeCount = 0;
  for (std::size_t first = 0; first < count; first += kWordRows) {
    std::size_t const rows = std::min(kWordRows, count - first);
    askForNext(bases + first);
    std::uint64_t bits = rows == kWordRows
                             ? compute(bases + first, results + first)
                             : roundedRest(compute, bases + first, results + first, rows);
    for (; bits != 0; bits &= bits - 1) {
      unsafe[unsafeCount++] = first + static_cast<std::size_t>(std::countr_zero(bits));
    }
  }
  for (std::size_t i = 0; i < unsafeCount; ++i) {
    results[unsafe[i]] = std::pow(bases[unsafe[i]], exponent);
  }
}

template <class Power>
void powersOf(double const* bases, double* results, std::size_t count, bool fuses) {
  // Read anew, as compilers take std::pow with a known exponent for a product, which it is not.
  double const volatile exponent = Power::kExponent;
  RoundedPowers const compute = chosenPowers<Power>(fuses);
  for (std::size_t first = 0; first < count; first += kBlock) {
    powersOfBlock(compute, exponent, bases + first, results + first,
                  std::min(kBlock, count - first));
  }
}

}  // namespace

bool isKnown(double exponent) {
  return exponent == Square::kExponent || exponent == Cube::kExponent ||
         exponent == Root::kExponent;
}

void powers(double const* bases, double exponent, double* results, std::size_t count) {
  powers(bases, exponent, results, count, hasFusedProducts());
}

void powers(double const* bases, double exponent, double* results, std::size_t count, bool fuses) {
  if (exponent == Square::kExponent) {
    powersOf<Square>(bases, results, count, fuses);
  } else if (exponent == Cube::kExponent) {
    powersOf<Cube>(bases, results, count, fuses);
  } else {
    powersOf<Root>(bases, results, count, fuses);
  }
}

}  // namespace exact_power
