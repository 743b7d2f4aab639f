#pragma once

#include <cstddef>

/// Squares, cubes and square roots, bit for bit as std::pow gives them, at a fraction of its cost.
///
/// std::pow is not exactly rounded: its result may be the second nearest double, where the true
/// value lies close to the middle between two. So each value is worked out with what its rounding
/// left over, and whatever comes close to a middle is left to std::pow.
namespace exact_power {

/// Whether powers() knows the exponent.
bool isKnown(double exponent);

/// Puts std::pow(bases[i], exponent) into results[i]; the arrays must not overlap.
void powers(double const* bases, double exponent, double* results, std::size_t count);

/// The same with fused products, which not every processor has, or without.
void powers(double const* bases, double exponent, double* results, std::size_t count, bool fuses);

}  // namespace exact_power
