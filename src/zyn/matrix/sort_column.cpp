#include "zyn/matrix/sort_column.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/text_sort_column.h"

namespace {

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

std::uint64_t orderedBits(int value) {
  return static_cast<std::uint32_t>(value) ^ 0x80000000U;
}

/// Minus zero equals zero; every NaN equals every other and stands below minus infinity, because an
/// order in which a NaN equalled everything could not be sorted by.
std::uint64_t orderedBits(double value) {
  if (value != value) {
    return 0;
  }
  auto const bits = std::bit_cast<std::uint64_t>(value + 0.0);
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

std::uint64_t orderedBits(datetime_t const& value) {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(value.asTime_t())) ^ kSignBit;
}

std::uint64_t orderedBits(std::shared_ptr<moxReadBlob> const& value) {
  return reinterpret_cast<std::uintptr_t>(value.get());
}

/// Values that map to one number each: the distance from the smallest, with the nulls below.
template <class T>
class NumberSortColumn final : public SortColumn {
 public:
  NumberSortColumn(ColumnStorage<T> const& storage, std::uint32_t rows, bool descending)
      : cells_(storage.values.cells()), nulls_(storage.nulls), hasNulls_(storage.nulls.any()) {
    findRange(rows);
    mask_ = bits_ == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits_) - 1;
    flip_ = descending ? mask_ : 0;
  }

  unsigned int pieceCount() const override { return bits_ == 0 ? 0 : 1; }
  unsigned int pieceBits(unsigned int) const override { return bits_; }

  void encode(unsigned int, std::uint32_t firstRow, std::uint32_t count,
              std::uint64_t* codes) const override {
    if (!hasNulls_) {
      for (std::uint32_t i = 0; i < count; ++i) {
        codes[i] = (orderedBits(cells_[firstRow + i]) - smallest_) ^ flip_;
      }
      return;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
      codes[i] = codeOf(firstRow + i);
    }
  }

  bool isExact() const override { return true; }

  int compare(std::uint32_t left, std::uint32_t right) const override {
    std::uint64_t const leftCode = codeOf(left);
    std::uint64_t const rightCode = codeOf(right);
    return leftCode < rightCode ? -1 : static_cast<int>(leftCode > rightCode);
  }

 private:
  void findRange(std::uint32_t rows) {
    std::uint64_t largest = 0;
    smallest_ = ~std::uint64_t{0};
    for (std::uint32_t row = 0; row < rows; ++row) {
      if (!hasNulls_ || !nulls_.test(row)) {
        std::uint64_t const order = orderedBits(cells_[row]);
        smallest_ = std::min(smallest_, order);
        largest = std::max(largest, order);
      }
    }
    if (smallest_ > largest) {  // nothing but nulls
      smallest_ = largest = 0;
    }
    bits_ = static_cast<unsigned int>(std::bit_width(largest - smallest_ + (hasNulls_ ? 1 : 0)));
  }

  std::uint64_t codeOf(std::uint32_t row) const {
    if (!hasNulls_) {
      return (orderedBits(cells_[row]) - smallest_) ^ flip_;
    }
    std::uint64_t const code = nulls_.test(row) ? 0 : orderedBits(cells_[row]) - smallest_ + 1;
    return code ^ flip_;
  }

  T const* cells_;
  NullBits const& nulls_;
  bool hasNulls_;
  unsigned int bits_ = 0;
  std::uint64_t smallest_ = 0;
  std::uint64_t mask_ = 0;
  std::uint64_t flip_ = 0;  // turns the order round: all bits of the width, or none
};

template <class T>
std::unique_ptr<SortColumn> sortColumnOver(ColumnStorage<T> const& storage, std::uint32_t rows,
                                           bool descending) {
  return std::make_unique<NumberSortColumn<T>>(storage, rows, descending);
}

std::unique_ptr<SortColumn> sortColumnOver(ColumnStorage<std::string> const& storage,
                                           std::uint32_t rows, bool descending) {
  return std::make_unique<TextSortColumn>(storage, rows, descending);
}

}  // namespace

std::unique_ptr<SortColumn> makeSortColumn(moxDataMatrixColumn& column, std::uint32_t rows,
                                           bool descending) {
  std::unique_ptr<SortColumn> made;
  bool const own = withStorage(
      column, [&](auto const& storage) { made = sortColumnOver(storage, rows, descending); });
  if (!own) {
    throw std::logic_error("sorting needs the module's own columns");
  }
  return made;
}
