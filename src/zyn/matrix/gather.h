#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>

#include "zyn/matrix/column_storage.h"

/// Goes through cells in the order of row numbers. An array that is assigned from such a range is
/// written once; filling it by index would write its defaults first. Cells some rows ahead are
/// asked of memory beforehand, as it takes longer to answer than the processor looks ahead.
template <class Cell>
class PickedCell {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = Cell;
  using difference_type = std::ptrdiff_t;
  using pointer = Cell const*;
  using reference = Cell const&;

  /// `last` is the end of the row numbers.
  PickedCell(Cell const* cells, std::uint32_t const* row, std::uint32_t const* last)
      : cells_(cells), row_(row), last_(last) {}

  reference operator*() const {
    if (last_ - row_ > kAhead) {
      __builtin_prefetch(cells_ + row_[kAhead]);
    }
    return cells_[*row_];
  }
  PickedCell& operator++() {
    ++row_;
    return *this;
  }
  PickedCell& operator--() {
    --row_;
    return *this;
  }
  PickedCell& operator+=(difference_type rows) {
    row_ += rows;
    return *this;
  }
  difference_type operator-(PickedCell const& other) const { return row_ - other.row_; }
  bool operator==(PickedCell const& other) const { return row_ == other.row_; }

 private:
  static constexpr difference_type kAhead = 32;

  Cell const* cells_;
  std::uint32_t const* row_;
  std::uint32_t const* last_;
};

/// Fills empty null flags with those of other rows, eight at a time: setting each by itself would
/// have the next one wait for memory.
template <class Rows>
void gatherNulls(NullBits const& source, Rows const& rows, NullBits& target) {
  constexpr std::size_t kEight = 8;
  target.pushValid(rows.size());
  target.coverAs(source);
  for (std::size_t from = 0; from < rows.size(); from += kEight) {
    std::size_t const end = std::min(from + kEight, rows.size());
    unsigned int mask = 0;
    for (std::size_t i = from; i < end; ++i) {
      mask |= static_cast<unsigned int>(source.test(rows[i])) << (i - from);
    }
    target.setEight(from, static_cast<std::uint8_t>(mask));
  }
}

/// Fills an empty storage with rows of another, in the order of the row numbers, which is a vector
/// of std::uint32_t. Texts share the source's bytes instead of copying them.
template <class T, class Rows>
void gatherRows(ColumnStorage<T> const& source, Rows const& rows, ColumnStorage<T>& target) {
  auto const* const cells = source.values.cells();
  auto const* const last = rows.data() + rows.size();
  target.values.array().assign(PickedCell(cells, rows.data(), last), PickedCell(cells, last, last));
  if constexpr (std::is_same_v<T, std::string>) {
    target.values.arena().share(source.values.arena());
  }
  if (source.nulls.any()) {
    gatherNulls(source.nulls, rows, target.nulls);
  } else {
    target.nulls.pushValid(rows.size());
  }
}
