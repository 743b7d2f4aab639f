#include "compare/union_floor.h"

#include <cstring>

namespace bench {
namespace {

template <class T>
void append(GrowingArray<T> const& source, GrowingArray<T>& target) {
  std::memcpy(static_cast<void*>(target.data() + target.size()), source.data(),
              source.size() * sizeof(T));
  target.setSize(target.size() + source.size());
}

/// The memory is zero when it comes.
void appendBits(std::uint64_t const* source, std::size_t count, std::uint64_t* words,
                std::size_t first) {
  std::uint64_t* const target = words + first / 64;
  std::size_t const shift = first % 64;
  std::size_t const wordCount = (count + 63) / 64;
  if (shift == 0) {
    std::memcpy(target, source, wordCount * sizeof(std::uint64_t));
    return;
  }
  for (std::size_t i = 0; i < wordCount; ++i) {
    target[i] |= source[i] << shift;
    target[i + 1] = source[i] >> (64 - shift);
  }
}

}  // namespace

UnitedTable unite(FloorTable const& upper, FloorTable const& lower) {
  UnitedTable result(upper.rows() + lower.rows());
  for (FloorTable const* const table : {&upper, &lower}) {
    appendBits(table->amountNulls.words(), table->rows(), result.amountNulls.data(),
               result.number.size());
    append(table->number, result.number);
    append(table->amount, result.amount);
    append(table->day, result.day);
    append(table->code, result.code);
  }
  return result;
}

}  // namespace bench
