#include "compare/pivot_floor.h"

#include <algorithm>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::size_t kBlock = 512;
constexpr std::size_t kWidest = std::size_t{1} << 22;  // cells that are addressed directly

std::uint64_t scrambled(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31);
}

struct Range {
  std::int32_t lowest;
  std::int32_t highest;

  std::uint32_t width() const { return static_cast<std::uint32_t>(highest - lowest) + 1; }
};

__attribute__((target("avx2"), optimize("O3"))) Range rangeOf(std::int32_t const* values,
                                                              std::size_t rows) {
  std::int32_t lowest = values[0];
  std::int32_t highest = values[0];
  for (std::size_t row = 0; row < rows; ++row) {
    lowest = std::min(lowest, values[row]);
    highest = std::max(highest, values[row]);
  }
  return {lowest, highest};
}

__attribute__((target("avx2"), optimize("O3"))) void placesOf(
    std::int32_t const* __restrict keys, std::int32_t const* __restrict headings, Range keyRange,
    Range headingRange, std::size_t rows, std::uint32_t* __restrict places) {
  std::uint32_t const width = headingRange.width();
  for (std::size_t row = 0; row < rows; ++row) {
    places[row] = static_cast<std::uint32_t>(keys[row] - keyRange.lowest) * width +
                  static_cast<std::uint32_t>(headings[row] - headingRange.lowest);
  }
}

constexpr std::uint8_t kOccurs = 1;
constexpr std::uint8_t kHasAmount = 2;

/// What the cells have come to. Sums stand close together, as they are touched with each row; what
/// a cell has met is noted until every cell has met an amount.
class Cells {
 public:
  explicit Cells(std::size_t count) : sums_(count), met_(count), left_(count) {}

  /// `nulls` has a bit a row; 0 stands under a null.
  void take(std::uint32_t const* places, double const* amounts, std::uint64_t nulls,
            std::size_t rows) {
    for (std::size_t row = 0; left_ != 0 && row < rows; ++row) {
      note(met_[places[row]], (nulls >> row & 1U) != 0);
    }
    for (std::size_t row = 0; row < rows; ++row) {
      sums_[places[row]] += amounts[row];
    }
  }

  double sum(std::size_t place) const { return sums_[place]; }
  bool occurs(std::size_t place) const { return met_[place] != 0; }
  bool isNull(std::size_t place) const { return met_[place] < kHasAmount; }

 private:
  void note(std::uint8_t& met, bool isNull) {
    if (met < kHasAmount) {
      met |= isNull ? kOccurs : kHasAmount;
      left_ -= isNull ? 0 : 1;
    }
  }

  std::vector<double> sums_;
  std::vector<std::uint8_t> met_;
  std::size_t left_;  // cells without an amount
};

Cells sumsOf(PivotTable const& table, Range keys, Range headings) {
  Cells cells(std::size_t{keys.width()} * headings.width());
  std::uint32_t places[kBlock];
  for (std::size_t first = 0; first < table.rows; first += kBlock) {
    std::size_t const count = std::min(kBlock, table.rows - first);
    placesOf(table.key.data() + first, table.heading.data() + first, keys, headings, count, places);
    for (std::size_t from = 0; from < count; from += 64) {
      cells.take(places + from, table.amount.cells.data() + first + from,
                 table.amount.nulls[(first + from) / 64], std::min<std::size_t>(64, count - from));
    }
  }
  return cells;
}

/// The numbers of a range that occur.
template <class Occurs>
std::vector<std::int32_t> occurring(Range range, Occurs occurs) {
  std::vector<std::int32_t> found;
  for (std::uint32_t i = 0; i < range.width(); ++i) {
    if (occurs(i)) {
      found.push_back(range.lowest + static_cast<std::int32_t>(i));
    }
  }
  return found;
}

}  // namespace

PivotTable::PivotTable(std::size_t rowCount)
    : rows(rowCount), key(rowCount), heading(rowCount), amount(rowCount) {
  for (std::size_t row = 0; row < rows; ++row) {
    std::uint64_t const noise = scrambled(row);
    key.push(static_cast<std::int32_t>(noise % 1000) + 1);
    heading.push(static_cast<std::int32_t>((noise >> 16) % 50) + 2001);
    bool const isNull = (noise >> 32) % 20 == 0;
    amount.cells.push(isNull ? 0 : static_cast<double>(scrambled(noise) % 200'000) / 100 - 500);
    amount.nulls[row / 64] |= std::uint64_t{isNull} << (row % 64);
  }
}

CrossTable crossTableOf(PivotTable const& table) {
  Range const keys = rangeOf(table.key.data(), table.rows);
  Range const headings = rangeOf(table.heading.data(), table.rows);
  if (std::size_t{keys.width()} * headings.width() > kWidest) {
    throw std::runtime_error("the keys are too far apart");
  }
  Cells const cells = sumsOf(table, keys, headings);
  auto const placeOf = [&](std::uint32_t key, std::uint32_t heading) {
    return std::size_t{key} * headings.width() + heading;
  };
  auto const keyAt = [&](std::uint32_t key) {
    bool occurs = false;
    for (std::uint32_t heading = 0; heading < headings.width() && !occurs; ++heading) {
      occurs = cells.occurs(placeOf(key, heading));
    }
    return occurs;
  };
  auto const headingAt = [&](std::uint32_t heading) {
    bool occurs = false;
    for (std::uint32_t key = 0; key < keys.width() && !occurs; ++key) {
      occurs = cells.occurs(placeOf(key, heading));
    }
    return occurs;
  };
  CrossTable result{occurring(keys, keyAt), occurring(headings, headingAt), {}};
  for (std::int32_t const heading : result.headings) {
    FloorNumbers& column = result.columns.emplace_back(result.keys.size());
    for (std::size_t row = 0; row < result.keys.size(); ++row) {
      std::size_t const place = placeOf(static_cast<std::uint32_t>(result.keys[row] - keys.lowest),
                                        static_cast<std::uint32_t>(heading - headings.lowest));
      column.cells.push(cells.sum(place));
      column.nulls[row / 64] |= std::uint64_t{cells.isNull(place)} << (row % 64);
    }
  }
  return result;
}

}  // namespace bench
