#pragma once

#include <cstddef>
#include <random>
#include <utility>
#include <vector>

namespace mox_test::wiring {

/// Choices that are the same on every machine.
class Chance {
 public:
  explicit Chance(unsigned seed) : generator_(seed) {}

  /// 0 to `limit` - 1.
  int below(int limit) { return static_cast<int>(generator_() % static_cast<unsigned>(limit)); }
  bool percent(int likely) { return below(100) < likely; }

  template <class T>
  T const& oneOf(std::vector<T> const& choices) {
    return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
  }

  template <class T>
  void shuffle(std::vector<T>& values) {
    for (std::size_t i = values.size(); i > 1; --i) {
      std::swap(values[i - 1], values[static_cast<std::size_t>(below(static_cast<int>(i)))]);
    }
  }

 private:
  std::mt19937 generator_;
};

}  // namespace mox_test::wiring
