#include "zyn/operations/block_kernels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "zyn/expressions/arithmetic.h"
#include "zyn/matrix/prefetch.h"
#include "zyn/matrix/processor.h"
#include "zyn/operations/column_operation.h"
#include "zyn/operations/exact_power.h"

namespace {

using moxExParser::Opcode;

struct Values {
  double const* __restrict values;
  double operator[](std::size_t row) const { return values[row]; }
};

struct Repeated {
  double value;
  double operator[](std::size_t) const { return value; }
};

template <class Compute, class Left, class Right>
void loop(Left left, Right right, double* __restrict results, std::size_t count,
          Compute const& compute) {
  for (std::size_t row = 0; row < count; ++row) {
    results[row] = compute(left[row], right[row]);
  }
}

template <class Compute>
void binary(BlockOperand const& left, BlockOperand const& right, double* results, std::size_t count,
            Compute const& compute) {
  Repeated const leftValue{left.constant};
  Repeated const rightValue{right.constant};
  if (left.values == nullptr && right.values == nullptr) {
    loop(leftValue, rightValue, results, count, compute);
  } else if (left.values == nullptr) {
    loop(leftValue, Values{right.values}, results, count, compute);
  } else if (right.values == nullptr) {
    loop(Values{left.values}, rightValue, results, count, compute);
  } else {
    loop(Values{left.values}, Values{right.values}, results, count, compute);
  }
}

std::size_t rowsBeforeZero(BlockOperand const& divisor, std::size_t count) {
  if (divisor.values == nullptr) {
    return count;  // a constant, and not 0
  }
  std::uint64_t zeros = 0;
  for (std::size_t row = 0; row < count; ++row) {
    zeros |= divisor.values[row] == 0.0 ? 1 : 0;
  }
  if (zeros == 0) {
    return count;
  }
  return static_cast<std::size_t>(std::find(divisor.values, divisor.values + count, 0.0) -
                                  divisor.values);
}

void raise(BlockOperand const& left, BlockOperand const& right, double* results,
           std::size_t count) {
  if (left.values != nullptr && right.values == nullptr && exact_power::isKnown(right.constant)) {
    exact_power::powers(left.values, right.constant, results, count);
    return;
  }
  binary(left, right, results, count, [](double a, double b) { return std::pow(a, b); });
}

/// A function of a value and a number of decimal places; the scale is worked out once where the
/// places are the same for all rows.
template <class Compute>
void places(BlockOperand const& left, BlockOperand const& right, double* results, std::size_t count,
            Compute const& compute) {
  if (right.values == nullptr) {
    binary(left, {nullptr, moxExParser::scaleFor(right.constant)}, results, count, compute);
    return;
  }
  binary(left, right, results, count, [&](double value, double wanted) {
    return compute(value, moxExParser::scaleFor(wanted));
  });
}

/// Whether the cells of some rows must not be read as they are.
bool coversValues(NullBits const& nulls, std::size_t first, std::size_t count) {
  if (!nulls.mayCoverValues()) {
    return false;
  }
  constexpr std::size_t kBits = NullBits::kBitsPerWord;
  std::uint64_t const* const words = nulls.words();
  std::uint64_t found = 0;  // of whole words: a null too many only costs a copy
  for (std::size_t word = first / kBits; word <= (first + count - 1) / kBits; ++word) {
    found |= words[word];
  }
  return found != 0;
}

void convert(double const* cells, std::size_t count, double* place) {
  std::memcpy(place, cells, count * sizeof(double));
}

void convert(int const* cells, std::size_t count, double* place) {
  for (std::size_t row = 0; row < count; ++row) {
    place[row] = cells[row];
  }
}

constexpr std::size_t kWordRows = NullBits::kBitsPerWord;

template <class T>
void copyCells(T const* cells, std::size_t count, std::uint64_t nulls, double* place) {
  convert(cells, count, place);
  for (; nulls != 0; nulls &= nulls - 1) {
    place[std::countr_zero(nulls)] = 0.0;
  }
}

#if defined(__x86_64__)
/// What stays of four doubles, by the bits that tell which of them are null.
struct KeptParts {
  constexpr KeptParts() {
    for (unsigned int nulls = 0; nulls < 16; ++nulls) {
      for (unsigned int row = 0; row < 4; ++row) {
        bits[nulls][row] = (nulls >> row & 1U) != 0 ? 0 : ~std::uint64_t{0};
      }
    }
  }

  alignas(32) std::uint64_t bits[16][4] = {};
};

constexpr KeptParts kKeptParts;

/// The rows of a later block, which memory brings while the block at hand is computed.
constexpr std::size_t kBytesAhead = 1024 * sizeof(double);

/// All rows of a word, whose nulls are masked out on the way: compilers make an instruction of
/// short copies that takes three times as long, before any null is looked at.
[[gnu::target("avx2")]] void copyWordAvx2(double const* cells, std::uint64_t nulls, double* place) {
  for (std::size_t row = 0; row < kWordRows; row += 4) {
    if (row % 8 == 0) {
      prefetchBehind(cells + row, kBytesAhead);
    }
    auto const* const kept = reinterpret_cast<double const*>(kKeptParts.bits[nulls & 15U]);
    _mm256_storeu_pd(place + row,
                     _mm256_and_pd(_mm256_loadu_pd(cells + row), _mm256_load_pd(kept)));
    nulls >>= 4;
  }
}
#endif

void copyWord(double const* cells, std::uint64_t nulls, double* place) {
#if defined(__x86_64__)
  if (hasAvx2()) {
    copyWordAvx2(cells, nulls, place);
    return;
  }
#endif
  copyCells(cells, kWordRows, nulls, place);
}

void copyWord(int const* cells, std::uint64_t nulls, double* place) {
  copyCells(cells, kWordRows, nulls, place);
}

/// Copies rows that exist, with 0 for nulls.
template <class T>
void copyRows(ColumnStorage<T> const& storage, std::size_t first, std::size_t count,
              double* place) {
  T const* const cells = storage.values.cells();
  bool const covers = storage.nulls.mayCoverValues();
  std::size_t const end = first + count;
  for (std::size_t row = first; row < end;) {
    std::size_t const bit = row % kWordRows;
    std::size_t const rows = std::min(kWordRows - bit, end - row);
    std::uint64_t const nulls = covers ? storage.nulls.words()[row / kWordRows] >> bit : 0;
    if (rows == kWordRows) {
      copyWord(cells + row, nulls, place + (row - first));
    } else {
      copyCells(cells + row, rows, nulls & ((std::uint64_t{1} << rows) - 1), place + (row - first));
    }
    row += rows;
  }
}

template <class T>
void lookUp(ColumnStorage<T> const& storage, std::size_t first, std::size_t count,
            BlockOperand const& offsets, std::size_t past, bool includesRow, double* results) {
  for (std::size_t i = 0; i < count; ++i) {
    auto const here = static_cast<unsigned int>(first + i);
    auto const row = rowBefore(here, offsets.values[i]);
    std::size_t const end = includesRow ? std::min<std::size_t>(past, std::size_t{here} + 1) : past;
    bool const isThere = row && *row < end && !storage.nulls.test(*row);
    results[i] = isThere ? static_cast<double>(storage.values.cells()[*row]) : 0.0;
  }
}

inline std::size_t apply(Opcode opcode, BlockOperand const& left, BlockOperand const& right,
                         double* results, std::size_t count) {
  switch (opcode) {
    case Opcode::kAdd:
      binary(left, right, results, count, [](double a, double b) { return a + b; });
      break;
    case Opcode::kSubtract:
      binary(left, right, results, count, [](double a, double b) { return a - b; });
      break;
    case Opcode::kMultiply:
      binary(left, right, results, count, [](double a, double b) { return a * b; });
      break;
    case Opcode::kDivide:
      binary(left, right, results, count, [](double a, double b) { return a / b; });
      return rowsBeforeZero(right, count);
    case Opcode::kReminder:
      binary(left, right, results, count, [](double a, double b) { return std::fmod(a, b); });
      break;
    case Opcode::kExp:
      raise(left, right, results, count);
      break;
    case Opcode::kFloor:
      places(left, right, results, count,
             [](double a, double scale) { return moxExParser::floorAt(a, scale); });
      break;
    case Opcode::kRound:
      places(left, right, results, count,
             [](double a, double scale) { return moxExParser::roundAt(a, scale); });
      break;
    case Opcode::kCeil:
      places(left, right, results, count,
             [](double a, double scale) { return moxExParser::ceilAt(a, scale); });
      break;
    case Opcode::kAbs:
      binary(left, right, results, count, [](double a, double) { return std::fabs(a); });
      break;
    case Opcode::kConstant:
      break;
  }
  return count;
}

#if defined(__x86_64__)
/// The same loops over four doubles at once, on processors that can. Products are not fused with
/// sums: that would round otherwise than a single row does.
[[gnu::target("avx2"), gnu::flatten]] std::size_t applyAvx2(Opcode opcode, BlockOperand const& left,
                                                            BlockOperand const& right,
                                                            double* results, std::size_t count) {
  return apply(opcode, left, right, results, count);
}
#endif

}  // namespace

std::size_t applyToBlock(Opcode opcode, BlockOperand const& left, BlockOperand const& right,
                         double* results, std::size_t count) {
#if defined(__x86_64__)
  if (hasAvx2()) {
    return applyAvx2(opcode, left, right, results, count);
  }
#endif
  return apply(opcode, left, right, results, count);
}

double const* loadBlock(BlockProgram::Load const& load, std::size_t first, std::size_t count,
                        double* place) {
  auto const rows = static_cast<std::int64_t>(load.column.rows());
  auto const wanted = static_cast<std::int64_t>(first) - load.offset;
  auto const size = static_cast<std::int64_t>(count);
  auto const start = std::clamp<std::int64_t>(-wanted, 0, size);  // rows before the first one
  auto const end = std::clamp<std::int64_t>(rows - wanted, start, size);
  auto const from = static_cast<std::size_t>(wanted + start);
  auto const there = static_cast<std::size_t>(end - start);
  auto const* const doubles = load.column.doubles;
  if (there == count && doubles != nullptr && load.column.origin != ReadColumn::Origin::kSelf &&
      !coversValues(doubles->nulls, from, there)) {
    return doubles->values.cells() + from;
  }
  std::fill(place, place + start, 0.0);
  if (there != 0 && doubles != nullptr) {
    copyRows(*doubles, from, there, place + start);
  } else if (there != 0 && load.column.ints != nullptr) {
    copyRows(*load.column.ints, from, there, place + start);
  }
  std::fill(place + end, place + count, 0.0);
  return place;
}

void lookUpBlock(ReadColumn const& column, BlockOperand const& offsets, std::size_t first,
                 std::size_t count, double* results) {
  // Of a computed column only rows up to the current one are there; of the column itself those
  // before it, which is as many as it has.
  bool const includesRow = column.origin == ReadColumn::Origin::kEarlier;
  if (column.doubles != nullptr) {
    lookUp(*column.doubles, first, count, offsets, column.rows(), includesRow, results);
  } else if (column.ints != nullptr) {
    lookUp(*column.ints, first, count, offsets, column.rows(), includesRow, results);
  }
}
