#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "mox/core/datetime.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "zyn/format/cell_text.h"

class moxDataMatrix;
class moxSQLDataSource;
class moxSQLDataSourceColumn;

/// What a screen reads of one result: everything that is the same for all cells of a column is
/// looked up when the result is there, so that no cell is found by a name. Columns that enter or
/// leave the matrix later are not noticed; its cells are read anew each time. Belongs to one
/// thread.
class ResultCells {
 public:
  /// Of nothing: every answer is the neutral one.
  ResultCells() = default;

  /// `definition` tells how columns are written, by their places; it may be empty.
  ResultCells(moxDataMatrix& matrix, moxSQLDataSource const* definition);

  /// The cell by its column's formatter; empty outside and for a null.
  std::string text(unsigned int row, unsigned int column) const;

  /// The cell of the column's icon column by that one's icon formatter; empty without either.
  std::string icon(unsigned int row, unsigned int column) const;

  bool hasIcon(unsigned int column) const;

  /// The value; the kind's empty one outside, for a null, and in a column of another kind.
  template <class T>
  T value(unsigned int row, int column) const;

 private:
  template <class T>
  using Typed = moxDataMatrixTypedColumn<T> const*;
  using Values = std::variant<std::monostate, Typed<int>, Typed<double>, Typed<std::string>,
                              Typed<datetime_t>>;

  struct Column {
    std::shared_ptr<moxDataMatrixColumn> owner;
    Values values;
    CellText text;
    std::optional<CellText> icon;
    bool hasIcon = false;
  };

  static Values valuesOf(moxDataMatrixColumn const& column);
  static Column makeColumn(moxDataMatrix& matrix, unsigned int index,
                           moxSQLDataSourceColumn const* definition);
  static void addIcon(Column& made, moxDataMatrix& matrix,
                      moxSQLDataSourceColumn const& definition);

  bool isInside(unsigned int row, unsigned int column) const {
    return column < columns_.size() && row < rowLimit_;
  }

  std::vector<Column> columns_;
  unsigned int rowLimit_ = 0;  // rows from here on are outside whatever a column has
};

template <class T>
T ResultCells::value(unsigned int row, int column) const {
  auto const index = static_cast<std::size_t>(column);  // beyond all columns when negative
  if (index >= columns_.size()) {
    return {};
  }
  auto const* const values = std::get_if<Typed<T>>(&columns_[index].values);
  return values != nullptr ? (*values)->getValue(row) : T{};
}
