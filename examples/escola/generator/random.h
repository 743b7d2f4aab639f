#pragma once

#include <cstdint>
#include <span>

namespace escola {

/// What a sequence of numbers is drawn for. Every thing of the example draws from a sequence of its
/// own, named by seed, purpose and identifier: a thing that is added, or a field that one draws
/// more, shifts no other.
enum class Purpose : std::uint64_t { kStaff = 1, kCohort, kStudent, kEnrolment, kPayer, kEvent };

/// Small deterministic generator. The standard library's distributions may differ from one library
/// to the next, so every draw is made here of whole numbers.
class Random {
 public:
  Random(std::uint64_t seed, Purpose purpose, std::uint64_t id, std::uint64_t part = 0) {
    state_ = mix(mix(mix(mix(seed) ^ static_cast<std::uint64_t>(purpose)) ^ id) ^ part);
  }

  std::uint64_t next() {
    state_ += kStep;
    return mix(state_);
  }

  /// 0 to `bound` - 1; `bound` is above 0.
  int below(int bound) {
    return static_cast<int>((next() >> 32U) * static_cast<std::uint64_t>(bound) >> 32U);
  }

  /// `low` to `high`, both included.
  int between(int low, int high) { return low + below(high - low + 1); }

  bool chance(int perMille) { return below(1000) < perMille; }

  /// Around `mean`, the likelier the nearer, never further than twice `spread`; the standard
  /// deviation is about 0.58 `spread`.
  int bell(int mean, int spread) {
    int sum = 0;
    for (int draw = 0; draw < 4; ++draw) {
      sum += between(-spread, spread);
    }
    return mean + sum / 2;
  }

  template <class T>
  T const& pick(std::span<T const> choices) {
    return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
  }

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15U;

  static std::uint64_t mix(std::uint64_t value) {
    value ^= value >> 30U;
    value *= 0xBF58476D1CE4E5B9U;
    value ^= value >> 27U;
    value *= 0x94D049BB133111EBU;
    return (value ^ (value >> 31U)) + kStep;
  }

  std::uint64_t state_;
};

}  // namespace escola
