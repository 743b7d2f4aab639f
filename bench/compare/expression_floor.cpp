#include "compare/expression_floor.h"

#include <immintrin.h>

#include <algorithm>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::size_t kBlock = 64;  // rows of a word of null bits

std::uint64_t scrambled(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31);
}

void fill(FloorNumbers& column, std::size_t rows, std::uint64_t seed, double lowest) {
  for (std::size_t row = 0; row < rows; ++row) {
    std::uint64_t const noise = scrambled(row * 8 + seed);
    bool const isNull = noise % 20 == 0;
    column.cells.push(isNull ? 0 : lowest + static_cast<double>(noise / 20 % 100'000) / 100);
    column.nulls[row / 64] |= std::uint64_t{isNull} << (row % 64);
  }
}

/// Four rows at once; the last ones of a table by themselves.
__attribute__((target("avx2"))) bool sumsOfBlock(double const* a, double const* b, double const* c,
                                                 std::size_t count, double* results) {
  __m256d const one = _mm256_set1_pd(1);
  __m256d zeros = _mm256_setzero_pd();
  std::size_t row = 0;
  for (; row + 4 <= count; row += 4) {
    __m256d const left = _mm256_loadu_pd(a + row);
    __m256d const right = _mm256_loadu_pd(b + row);
    __m256d const divisor = _mm256_add_pd(right, one);
    zeros = _mm256_or_pd(zeros, _mm256_cmp_pd(divisor, _mm256_setzero_pd(), _CMP_EQ_OQ));
    __m256d const product = _mm256_mul_pd(right, _mm256_loadu_pd(c + row));
    __m256d const sum = _mm256_add_pd(left, product);
    _mm256_storeu_pd(results + row, _mm256_sub_pd(sum, _mm256_div_pd(left, divisor)));
  }
  bool hasZero = _mm256_movemask_pd(zeros) != 0;
  for (; row < count; ++row) {
    hasZero |= b[row] + 1 == 0;
    results[row] = a[row] + b[row] * c[row] - (a[row] / (b[row] + 1));
  }
  return hasZero;
}

__attribute__((target("avx2"))) void powersOfBlock(double const* a, double const* b,
                                                   std::size_t count, double* results) {
  std::size_t row = 0;
  for (; row + 4 <= count; row += 4) {
    __m256d const left = _mm256_loadu_pd(a + row);
    __m256d const root = _mm256_sqrt_pd(_mm256_loadu_pd(b + row));
    _mm256_storeu_pd(results + row, _mm256_add_pd(_mm256_mul_pd(left, left), root));
  }
  for (; row < count; ++row) {
    __m128d const root = _mm_sqrt_pd(_mm_set1_pd(b[row]));
    results[row] = a[row] * a[row] + _mm_cvtsd_f64(root);
  }
}

/// A null stands over 0, which is what it counts as, so that no null is looked at.
template <class Work>
FloorNumbers compute(NumberTable const& table, Work work) {
  FloorNumbers result(table.rows);
  for (std::size_t first = 0; first < table.rows; first += kBlock) {
    std::size_t const count = std::min(kBlock, table.rows - first);
    result.nulls[first / kBlock] = 0;
    work(first, count, result.cells.data() + first);
  }
  result.cells.setSize(table.rows);
  return result;
}

}  // namespace

NumberTable::NumberTable(std::size_t rowCount)
    : rows(rowCount), a(rowCount), b(rowCount), c(rowCount) {
  fill(a, rows, 0, -500);
  fill(b, rows, 1, 0);
  fill(c, rows, 2, 0);
}

FloorNumbers computeSums(NumberTable const& table) {
  return compute(table, [&](std::size_t first, std::size_t count, double* results) {
    double const* const a = table.a.cells.data() + first;
    double const* const b = table.b.cells.data() + first;
    double const* const c = table.c.cells.data() + first;
    if (sumsOfBlock(a, b, c, count, results)) {
      throw std::runtime_error("division by zero");
    }
  });
}

FloorNumbers computePowers(NumberTable const& table) {
  return compute(table, [&](std::size_t first, std::size_t count, double* results) {
    powersOfBlock(table.a.cells.data() + first, table.b.cells.data() + first, count, results);
  });
}

}  // namespace bench
