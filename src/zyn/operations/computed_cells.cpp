#include "zyn/operations/computed_cells.h"

#include <cmath>

#include "zyn/expressions/arithmetic.h"
#include "zyn/matrix/common_column.h"

namespace {

template <class T>
ColumnStorage<T>* storageOf(moxDataMatrixColumn& column) {
  auto* const own = dynamic_cast<CommonColumn<T>*>(&column);
  return own == nullptr ? nullptr : &own->storage();
}

/// The cells from `row` on that are 0 become null.
template <class T>
void markZeros(ColumnStorage<T>& storage, std::size_t row) {
  T* const cells = storage.values.array().data();
  for (; row < storage.size(); ++row) {
    if (cells[row] == 0) {
      storage.nulls.set(row);
    }
  }
}

template <class T>
void makeNulls(ColumnStorage<T>& storage, std::size_t row) {
  for (; row < storage.size(); ++row) {
    storage.values.array()[row] = 0;
    storage.nulls.set(row);
  }
}

template <class T>
void pushNulls(ColumnStorage<T>& storage, std::size_t rows) {
  while (storage.size() < rows) {
    storage.pushNull();
  }
}

}  // namespace

CellRules::CellRules(moxColumnExpression::Tipo tipo, int decimals,
                     moxColumnExpression::Op operation, bool zeroIsNull)
    : isInt_(tipo == moxColumnExpression::kInteiro),
      cuts_(operation != moxColumnExpression::kArredonda),
      zeroIsNull_(zeroIsNull),
      scale_(decimals < 0 ? 0.0 : std::pow(10.0, decimals)) {}

double CellRules::withDecimals(double value) const {
  if (keepsAllDecimals()) {
    return value;
  }
  double const scaled = value * scale_;
  return (cuts_ ? moxExParser::truncated(scaled) : moxExParser::rounded(scaled)) / scale_;
}

ComputedCells::ComputedCells(moxDataMatrixColumn& column, CellRules const& rules)
    : rules_(rules), ints_(storageOf<int>(column)), doubles_(storageOf<double>(column)) {}

std::size_t ComputedCells::size() const {
  return ints_ != nullptr ? ints_->size() : doubles_->size();
}

void ComputedCells::append(double const* values, std::size_t count) {
  ints_ != nullptr ? appendInts(values, count) : appendDoubles(values, count);
}

void ComputedCells::appendDoubles(double const* values, std::size_t count) {
  std::size_t const first = doubles_->size();
  auto& cells = doubles_->values.array();
  cells.insert(cells.end(), values, values + count);
  doubles_->nulls.pushValid(count);
  if (rules_.zeroIsNull()) {
    markZeros(*doubles_, first);  // of the values as they are, before decimals are cut
  }
  if (!rules_.keepsAllDecimals()) {
    for (std::size_t i = first; i < cells.size(); ++i) {
      cells[i] = rules_.withDecimals(cells[i]);
    }
  }
}

void ComputedCells::appendInts(double const* values, std::size_t count) {
  std::size_t const first = ints_->size();
  auto& cells = ints_->values.array();
  cells.resize(first + count);
  for (std::size_t i = 0; i < count; ++i) {
    cells[first + i] = moxExParser::toInt(values[i]);
  }
  ints_->nulls.pushValid(count);
  if (rules_.zeroIsNull()) {
    markZeros(*ints_, first);
  }
}

void ComputedCells::forgetFrom(std::size_t row) {
  ints_ != nullptr ? makeNulls(*ints_, row) : makeNulls(*doubles_, row);
}

void ComputedCells::fillTo(std::size_t rows) {
  ints_ != nullptr ? pushNulls(*ints_, rows) : pushNulls(*doubles_, rows);
}
