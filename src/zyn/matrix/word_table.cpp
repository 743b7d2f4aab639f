#include "zyn/matrix/word_table.h"

#include <random>

std::uint64_t hashSeed() {
  static std::uint64_t const kDrawn = [] {
    std::random_device source;
    return (std::uint64_t{source()} << 32U) | source();
  }();
  return kDrawn;
}
