#include "zyn/matrix/bit_compress.h"

#include <array>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

/// The six moves by powers of two that bring a mask's bits together; each moves the bits of
/// `moved`.
struct CompressSteps {
  explicit CompressSteps(std::uint64_t mask) {
    std::uint64_t gaps = ~mask << 1;  // bits to the right of which a gap begins
    for (unsigned int step = 0; step < moved.size(); ++step) {
      std::uint64_t parity = gaps;
      for (unsigned int shift = 1; shift < 64; shift *= 2) {
        parity ^= parity << shift;
      }
      moved[step] = parity & mask;
      mask = (mask ^ moved[step]) | (moved[step] >> (1U << step));
      gaps &= ~parity;
    }
  }

  std::array<std::uint64_t, 6> moved{};
};

#if defined(__x86_64__)
__attribute__((target("bmi2"))) void applyBmi2(std::uint64_t mask, std::uint64_t* words,
                                               std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    words[i] = _pext_u64(words[i], mask);
  }
}
#endif

}  // namespace

void BitCompress::apply(std::uint64_t* words, std::size_t count) const {
  if (mask_ == ~std::uint64_t{0}) {
    return;
  }
#if defined(__x86_64__)
  static bool const hasBmi2 = __builtin_cpu_supports("bmi2") != 0;
  if (hasBmi2) {
    applyBmi2(mask_, words, count);
    return;
  }
#endif
  applyPortable(words, count);
}

void BitCompress::applyPortable(std::uint64_t* words, std::size_t count) const {
  CompressSteps const steps(mask_);
  for (std::size_t i = 0; i < count; ++i) {
    std::uint64_t word = words[i] & mask_;
    for (unsigned int step = 0; step < steps.moved.size(); ++step) {
      std::uint64_t const moving = word & steps.moved[step];
      word = (word ^ moving) | (moving >> (1U << step));
    }
    words[i] = word;
  }
}
