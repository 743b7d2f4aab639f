#include "zyn/operations/data_matrix_union.h"

#include <type_traits>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/temporary_table.h"
#include "zyn/operations/operation_errors.h"

namespace {

/// Whole numbers among numbers, each by its value.
void appendConverted(ColumnStorage<int> const& source, std::size_t rows,
                     ColumnStorage<double>& target) {
  auto const* const cells = source.values.cells();
  auto& array = target.values.array();
  array.insert(array.end(), cells, cells + rows);
  target.nulls.append(source.nulls, rows);
}

/// Adds the rows of a source; nulls where its kind of values is none that the result can hold.
template <class T>
void stack(moxDataMatrixColumn const& column, std::size_t rows, ColumnStorage<T>& target) {
  withStorage(column, [&]<class S>(ColumnStorage<S> const& source) {
    if constexpr (std::is_same_v<S, T>) {
      appendRows(source, rows, target);
    } else if constexpr (std::is_same_v<S, int> && std::is_same_v<T, double>) {
      appendConverted(source, rows, target);
    } else {
      appendNulls(target, rows);
    }
  });
}

}  // namespace

void DataMatrixUnion::pushSourceDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix,
                                           std::vector<std::string> const& columnNames) {
  sources_.push_back(chooseColumns(matrix, columnNames));
}

MatrixColumn DataMatrixUnion::stacked(std::size_t position, std::size_t rows) const {
  MatrixColumn result = emptyLike(*sources_.front().columns[position]);
  withStorage(*result, [&](auto& storage) {
    storage.reserve(rows);
    for (auto const& source : sources_) {
      std::uint32_t const count = source.rows();
      if (position < source.columns.size()) {
        stack(*asOwn(source.columns[position], count), count, storage);
      } else {
        appendNulls(storage, count);
      }
    }
  });
  return result;
}

std::shared_ptr<moxDataMatrix> DataMatrixUnion::process(std::string const& tableName) {
  auto result = newMatrix();
  if (sources_.empty()) {
    return result;
  }
  std::size_t rows = 0;
  for (auto const& source : sources_) {
    rows += source.rows();
  }
  refuseTooManyRows(rows);
  for (std::size_t i = 0; i < sources_.front().columns.size(); ++i) {
    result->addColumn(stacked(i, rows));
  }
  if (!tableName.empty()) {
    dumpToTemporaryTable(*result, tableName);
  }
  return result;
}
