#include "zyn/operations/direct_keys.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/key_groups.h"
#include "zyn/matrix/processor.h"

namespace {

constexpr std::size_t kAlwaysFew = 4096;
constexpr std::uint32_t kSample = 16384;      // rows that tell whether the values of a key repeat
constexpr std::uint32_t kScanned = 1U << 16;  // rows between two looks at the range, in whole words

/// An array of as many places takes less memory than the numbers of groups of all rows would.
std::size_t mostPlaces(std::uint32_t rows) {
  return std::max<std::size_t>(kAlwaysFew, rows / 4);
}

/// The least and the greatest of the values met so far.
struct Range {
  int lowest = std::numeric_limits<int>::max();
  int highest = std::numeric_limits<int>::min();

  /// 0 when there was none.
  std::uint64_t width() const {
    return lowest > highest ? 0 : static_cast<std::uint64_t>(std::int64_t{highest} - lowest) + 1;
  }
};

[[gnu::always_inline]] inline void widen(Range& range, int const* values, std::uint32_t count) {
  int lowest = range.lowest;
  int highest = range.highest;
  for (std::uint32_t row = 0; row < count; ++row) {
    lowest = values[row] < lowest ? values[row] : lowest;
    highest = values[row] > highest ? values[row] : highest;
  }
  range = {lowest, highest};
}

[[gnu::always_inline]] inline void addDigits(int const* __restrict values, int lowest,
                                             std::uint32_t count, std::uint32_t stride,
                                             std::uint32_t* __restrict places) {
  for (std::uint32_t row = 0; row < count; ++row) {
    places[row] +=
        (static_cast<std::uint32_t>(values[row]) - static_cast<std::uint32_t>(lowest)) * stride;
  }
}

#if defined(__x86_64__)
[[gnu::target("avx2"), gnu::optimize("O3")]] void widenAvx2(Range& range, int const* values,
                                                            std::uint32_t count) {
  widen(range, values, count);
}
[[gnu::target("avx2"), gnu::optimize("O3")]] void addDigitsAvx2(int const* values, int lowest,
                                                                std::uint32_t count,
                                                                std::uint32_t stride,
                                                                std::uint32_t* places) {
  addDigits(values, lowest, count, stride, places);
}
#else
constexpr auto widenAvx2 = widen;
constexpr auto addDigitsAvx2 = addDigits;
#endif

/// Whole numbers from the lowest on, and a digit behind them for a null.
class NumberKey final : public DirectKey {
 public:
  /// width() is 0 when the numbers are too far apart.
  NumberKey(ColumnStorage<int> const& column, std::uint32_t rows, std::size_t mostDigits)
      : column_(column), hasNulls_(column.nulls.any()) {
    Range range;
    for (std::uint32_t first = 0; first < rows && range.width() <= mostDigits; first += kScanned) {
      scan(range, first, std::min(kScanned, rows - first));
    }
    lowest_ = range.lowest;
    width_ = range.width() > mostDigits ? 0 : range.width() + (hasNulls_ ? 1 : 0);
  }

  void addTo(std::uint32_t first, std::uint32_t count, std::uint32_t stride,
             std::uint32_t* places) const override {
    int const* const values = column_.values.cells() + first;
    if (hasNulls_) {
      addWithNulls(first, count, stride, places);
    } else if (hasAvx2()) {
      addDigitsAvx2(values, lowest_, count, stride, places);
    } else {
      addDigits(values, lowest_, count, stride, places);
    }
  }

 private:
  void scan(Range& range, std::uint32_t first, std::uint32_t count) const {
    int const* const values = column_.values.cells() + first;
    if (hasNulls_) {
      scanWithNulls(range, first, count);
    } else if (hasAvx2()) {
      widenAvx2(range, values, count);
    } else {
      widen(range, values, count);
    }
  }

  void scanWithNulls(Range& range, std::uint32_t first, std::uint32_t count) const {
    int const* const values = column_.values.cells();
    for (std::uint32_t row = first; row < first + count; ++row) {
      if (!column_.nulls.test(row)) {
        widen(range, values + row, 1);
      }
    }
  }

  /// What stands under a null is anything.
  void addWithNulls(std::uint32_t first, std::uint32_t count, std::uint32_t stride,
                    std::uint32_t* places) const {
    int const* const values = column_.values.cells() + first;
    auto const ofNull = static_cast<std::uint32_t>(width_ - 1);
    for (std::uint32_t row = 0; row < count; ++row) {
      std::uint32_t const digit =
          static_cast<std::uint32_t>(values[row]) - static_cast<std::uint32_t>(lowest_);
      places[row] += (column_.nulls.test(first + row) ? ofNull : digit) * stride;
    }
  }

  ColumnStorage<int> const& column_;
  bool hasNulls_;
  int lowest_ = 0;
};

/// Values of any kind, numbered in the order in which they appear.
class HashedKey final : public DirectKey {
 public:
  /// width() is 0 when a NaN is in the way, or hardly a value of the first rows repeats.
  HashedKey(moxDataMatrixColumn const& column, std::uint32_t rows) {
    if (rows > 2 * kSample && !repeats(column)) {
      return;
    }
    KeyGrouper grouper;
    if (grouper.group({&column}, rows)) {
      groups_ = grouper.takeGroups();
      width_ = groups_.firstRow.size();
    }
  }

  void addTo(std::uint32_t first, std::uint32_t count, std::uint32_t stride,
             std::uint32_t* places) const override {
    std::uint32_t const* const digits = groups_.groupOfRow.data() + first;
    for (std::uint32_t row = 0; row < count; ++row) {
      places[row] += digits[row] * stride;
    }
  }

 private:
  static bool repeats(moxDataMatrixColumn const& column) {
    KeyGrouper grouper;
    return grouper.group({&column}, kSample) && grouper.groups().firstRow.size() < kSample / 4;
  }

  KeyGroups groups_;
};

std::unique_ptr<DirectKey> directKeyOf(moxDataMatrixColumn const& key, std::uint32_t rows) {
  std::unique_ptr<DirectKey> made;
  withStorage(key, [&]<class T>(ColumnStorage<T> const& column) {
    if constexpr (std::is_same_v<T, int>) {
      made = std::make_unique<NumberKey>(column, rows, mostPlaces(rows));
    } else {
      made = std::make_unique<HashedKey>(key, rows);
    }
  });
  return made;
}

}  // namespace

DirectKeys::DirectKeys(std::vector<MatrixColumn> const& keys, std::uint32_t rows) {
  for (auto const& key : keys) {
    areDirect_ = areDirect_ && add(*key, rows);
  }
}

bool DirectKeys::add(moxDataMatrixColumn const& key, std::uint32_t rows) {
  auto direct = directKeyOf(key, rows);
  if (!direct || direct->width() == 0 || direct->width() > mostPlaces(rows) / width_) {
    return false;
  }
  width_ *= direct->width();
  keys_.push_back(std::move(direct));
  return true;
}

void DirectKeys::placesOf(std::uint32_t first, std::uint32_t count, std::uint32_t* places) const {
  std::fill_n(places, count, 0U);
  std::uint32_t stride = 1;
  for (auto const& key : keys_) {
    key->addTo(first, count, stride, places);
    stride *= static_cast<std::uint32_t>(key->width());
  }
}
