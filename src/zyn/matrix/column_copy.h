#pragma once

#include <cstdint>
#include <memory>

#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "zyn/matrix/gather.h"
#include "zyn/matrix/sort_rows.h"

/// What engines that make a matrix out of others have in common. All columns made here are the
/// module's own.

using MatrixColumn = std::shared_ptr<moxDataMatrixColumn>;

/// A new empty matrix, made through the registry.
std::shared_ptr<moxDataMatrix> newMatrix();

/// A new empty column of the same kind, name and formatter.
MatrixColumn emptyLike(moxDataMatrixColumn const& column);

/// A column whose storage can be opened and has `rows` rows at least: the column itself, or its
/// first `rows` rows, read through its published face, with nulls behind its end. Loops over plain
/// arrays rely on it, whatever a matrix of foreign make says of its rows, or a source that was
/// changed too early.
MatrixColumn asOwn(MatrixColumn const& column, std::uint32_t rows);

/// Rows of a column, in the order of the row numbers, as a new column.
MatrixColumn gathered(MatrixColumn const& column, RowOrder const& order);

/// A new matrix with the same columns, without rows.
std::shared_ptr<moxDataMatrix> duplicateStructure(moxDataMatrix& matrix);

/// Adds the first `rows` rows of a storage at the end of another. Texts share their source's bytes.
template <class T>
void appendRows(ColumnStorage<T> const& source, std::size_t rows, ColumnStorage<T>& target) {
  auto const* const cells = source.values.cells();
  auto& array = target.values.array();
  array.insert(array.end(), cells, cells + rows);
  if constexpr (std::is_same_v<T, std::string>) {
    target.values.arena().share(source.values.arena());
  }
  target.nulls.append(source.nulls, rows);
}

/// Adds nulls at the end.
template <class T>
void appendNulls(ColumnStorage<T>& target, std::size_t rows) {
  auto& array = target.values.array();
  array.resize(array.size() + rows);
  target.nulls.pushNulls(rows);
}
