#include "zyn/matrix/column_copy.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/matrix/data_matrix_columns.h"

namespace {

MatrixColumn ownCopyOf(moxDataMatrixColumn const& column, std::uint32_t rows) {
  MatrixColumn copy = emptyLike(column);
  withStorage(*copy, [&]<class T>(ColumnStorage<T>& storage) {
    auto const& typed = dynamic_cast<moxDataMatrixTypedColumn<T> const&>(column);
    storage.reserve(rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
      typed.isNull(row) ? storage.pushNull() : storage.push(typed.getValue(row));
    }
  });
  return copy;
}

}  // namespace

std::shared_ptr<moxDataMatrix> newMatrix() {
  return moxApp->get<moxDataMatrix>("moxDataMatrix");
}

MatrixColumn emptyLike(moxDataMatrixColumn const& column) {
  MatrixColumn made = makeColumn(column.getType());
  made->setName(column.getName());
  made->setFormatter(column.getFormatter());
  return made;
}

MatrixColumn asOwn(MatrixColumn const& column, std::uint32_t rows) {
  bool isWhole = false;
  withStorage(*column, [&](auto const& storage) { isWhole = storage.size() >= rows; });
  return isWhole ? column : ownCopyOf(*column, rows);
}

MatrixColumn gathered(MatrixColumn const& column, RowOrder const& order) {
  MatrixColumn const source = asOwn(column, column->numRows());
  MatrixColumn target = emptyLike(*column);
  withStorage(*source, [&]<class T>(ColumnStorage<T> const& from) {
    gatherRows(from, order, dynamic_cast<CommonColumn<T>&>(*target).storage());
  });
  return target;
}

std::shared_ptr<moxDataMatrix> duplicateStructure(moxDataMatrix& matrix) {
  auto result = newMatrix();
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    result->addColumn(emptyLike(*matrix.columnAt(i)));
  }
  return result;
}
