#include "zyn/matrix/data_matrix_sorter.h"

#include "zyn/matrix/column_copy.h"

namespace {

/// The columns to sort by, as the engine wants them; columns of foreign make are held as copies.
class SortKeys {
 public:
  SortKeys(moxDataMatrix& matrix, std::uint32_t rows) : matrix_(matrix), rows_(rows) {}

  /// False when the matrix has no such column.
  bool add(std::string const& columnName, bool descending) {
    MatrixColumn const column = matrix_.columnByName(columnName);
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
  std::vector<MatrixColumn> held_;
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
