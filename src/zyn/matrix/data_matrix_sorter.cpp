#include "zyn/matrix/data_matrix_sorter.h"

#include <stdexcept>
#include <typeinfo>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/gather.h"
#include "zyn/matrix/sort_rows.h"

namespace {

using ColumnPointer = std::shared_ptr<moxDataMatrixColumn>;

ColumnPointer emptyLike(moxDataMatrixColumn const& column) {
  ColumnPointer made = makeColumn(column.getType());
  made->setName(column.getName());
  made->setFormatter(column.getFormatter());
  return made;
}

/// A column of foreign make, read through its published face into one of our own.
ColumnPointer ownCopyOf(moxDataMatrixColumn const& column, std::uint32_t rows) {
  ColumnPointer copy = emptyLike(column);
  withStorage(*copy, [&]<class T>(ColumnStorage<T>& storage) {
    auto const& typed = dynamic_cast<moxDataMatrixTypedColumn<T> const&>(column);
    storage.reserve(rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
      typed.isNull(row) ? storage.pushNull() : storage.push(typed.getValue(row));
    }
  });
  return copy;
}

ColumnPointer asOwn(ColumnPointer const& column, std::uint32_t rows) {
  bool const own = withStorage(*column, [](auto const&) {});
  return own ? column : ownCopyOf(*column, rows);
}

ColumnPointer gathered(ColumnPointer const& column, RowOrder const& order) {
  ColumnPointer const source = asOwn(column, static_cast<std::uint32_t>(order.size()));
  ColumnPointer target = emptyLike(*column);
  withStorage(*source, [&]<class T>(ColumnStorage<T> const& from) {
    gatherRows(from, order, dynamic_cast<CommonColumn<T>&>(*target).storage());
  });
  return target;
}

std::shared_ptr<moxDataMatrix> newMatrix() {
  return moxApp->get<moxDataMatrix>("moxDataMatrix");
}

std::shared_ptr<moxDataMatrix> duplicateStructure(moxDataMatrix& matrix) {
  auto result = newMatrix();
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    result->addColumn(emptyLike(*matrix.columnAt(i)));
  }
  return result;
}

/// The columns to sort by, as the engine wants them; columns of foreign make are held as copies.
class SortKeys {
 public:
  SortKeys(moxDataMatrix& matrix, std::uint32_t rows) : matrix_(matrix), rows_(rows) {}

  /// False when the matrix has no such column.
  bool add(std::string const& columnName, bool descending) {
    ColumnPointer const column = matrix_.columnByName(columnName);
    if (!column) {
      return false;
    }
    held_.push_back(asOwn(column, rows_));
    columns_.push_back(makeSortColumn(*held_.back(), rows_, descending));
    return true;
  }

  RowOrder order() const { return sortedRows(columns_, rows_); }

 private:
  moxDataMatrix& matrix_;
  std::uint32_t rows_;
  std::vector<ColumnPointer> held_;
  std::vector<std::unique_ptr<SortColumn>> columns_;
};

}  // namespace

void DataMatrixSorter::pushSortColumn(std::string const& columnName, bool descending) {
  keys_.push_back({columnName, descending});
}

std::shared_ptr<moxDataMatrix> DataMatrixSorter::transform(
    std::shared_ptr<moxDataMatrix> matrix) const {
  if (!matrix || keys_.empty()) {
    return matrix;
  }
  if (matrix->rowCount() == 0) {
    return duplicateStructure(*matrix);
  }
  SortKeys keys(*matrix, matrix->rowCount());
  for (SortKey const& key : keys_) {
    if (!keys.add(key.columnName, key.descending)) {
      return matrix;
    }
  }
  RowOrder const order = keys.order();
  auto result = newMatrix();
  for (unsigned int i = 0; i < matrix->columnCount(); ++i) {
    result->addColumn(gathered(matrix->columnAt(i), order));
  }
  return result;
}
