#include "zyn/operations/data_matrix_join.h"

#include <algorithm>

#include "zyn/matrix/data_matrix_columns.h"

namespace {

/// A copy of the first `rows` rows, with nulls behind them up to `length`.
MatrixColumn extended(MatrixColumn const& column, std::uint32_t rows, std::uint32_t length) {
  MatrixColumn const source = asOwn(column, rows);
  MatrixColumn result = emptyLike(*column);
  withStorage(*source, [&]<class T>(ColumnStorage<T> const& from) {
    auto& target = dynamic_cast<CommonColumn<T>&>(*result).storage();
    target.reserve(length);
    appendRows(from, rows, target);
    appendNulls(target, length - rows);
  });
  return result;
}

}  // namespace

void DataMatrixJoin::pushSourceDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix,
                                          std::vector<std::string> const& columnNames) {
  sources_.push_back(chooseColumns(matrix, columnNames));
}

std::shared_ptr<moxDataMatrix> DataMatrixJoin::process() {
  auto result = newMatrix();
  std::uint32_t length = 0;
  for (auto const& source : sources_) {
    length = std::max(length, source.rows());
  }
  for (auto const& source : sources_) {
    for (auto const& column : source.columns) {
      result->addColumn(extended(column, source.rows(), length));
    }
  }
  return result;
}
