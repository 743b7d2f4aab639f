#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

/// Moves the bits of words that a mask selects together at the low end, in their order: what the
/// processor's "extract" does where it has it.
class BitCompress {
 public:
  explicit BitCompress(std::uint64_t mask) : mask_(mask) {}

  unsigned int bits() const { return static_cast<unsigned int>(std::popcount(mask_)); }

  /// Compresses `count` words in place.
  void apply(std::uint64_t* words, std::size_t count) const;

  /// The same on a processor without the instruction.
  void applyPortable(std::uint64_t* words, std::size_t count) const;

 private:
  std::uint64_t mask_;
};
