#include "zyn/operations/block_kernels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "zyn/expressions/arithmetic.h"
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

/// Two constants are folded when an expression is compiled, so one side at least is an array.
template <class Compute>
void binary(BlockOperand const& left, BlockOperand const& right, double* results, std::size_t count,
            Compute const& compute) {
  if (left.values == nullptr) {
    loop(Repeated{left.constant}, Values{right.values}, results, count, compute);
  } else if (right.values == nullptr) {
    loop(Values{left.values}, Repeated{right.constant}, results, count, compute);
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
  if (right.values == nullptr && exact_power::isKnown(right.constant)) {
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
    double const scale = moxExParser::scaleFor(right.constant);
    loop(Values{left.values}, Repeated{scale}, results, count, compute);
    return;
  }
  binary(left, right, results, count, [&](double value, double wanted) {
    return compute(value, moxExParser::scaleFor(wanted));
  });
}

/// Puts 0 where the rows from `first` on are null; `place` tells of row `first`.
void clearNulls(NullBits const& nulls, std::size_t first, std::size_t count, double* place) {
  constexpr std::size_t kBits = NullBits::kBitsPerWord;
  std::uint64_t const* const words = nulls.words();
  std::size_t const end = first + count;
  for (std::size_t row = first; row < end;) {
    std::size_t const bit = row % kBits;
    std::size_t const rows = std::min(kBits - bit, end - row);
    std::uint64_t word = words[row / kBits] >> bit;
    if (rows < kBits) {
      word &= (std::uint64_t{1} << rows) - 1;
    }
    for (; word != 0; word &= word - 1) {
      place[row - first + static_cast<std::size_t>(std::countr_zero(word))] = 0.0;
    }
    row += rows;
  }
}

bool hasNulls(NullBits const& nulls, std::size_t first, std::size_t count) {
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

/// Copies rows that exist.
template <class T>
void copyRows(ColumnStorage<T> const& storage, std::size_t first, std::size_t count,
              double* place) {
  convert(storage.values.cells() + first, count, place);
  clearNulls(storage.nulls, first, count, place);
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

}  // namespace

std::size_t applyToBlock(Opcode opcode, BlockOperand const& left, BlockOperand const& right,
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
      !hasNulls(doubles->nulls, from, there)) {
    return doubles->values.cells() + from;
  }
  std::fill(place, place + start, 0.0);
  if (there != 0 && doubles != nullptr) {
    copyRows(*doubles, from, there, place + start);
  } else if (there != 0) {
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
  } else {
    lookUp(*column.ints, first, count, offsets, column.rows(), includesRow, results);
  }
}
