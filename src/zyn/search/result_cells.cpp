#include "zyn/search/result_cells.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/matrix/data_matrix.h"

ResultCells::ResultCells(moxDataMatrix& matrix, moxSQLDataSource const* definition) {
  unsigned int const rows = matrix.rowCount();
  bool isRectangular = true;
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    auto const column = definition != nullptr ? definition->columnAt(i) : nullptr;
    columns_.push_back(makeColumn(matrix, i, column.get()));
    isRectangular = isRectangular && columns_.back().owner->numRows() == rows;
  }
  // Columns of one length know their end themselves, also when it moves.
  rowLimit_ = isRectangular ? std::numeric_limits<unsigned int>::max() : rows;
}

ResultCells::Values ResultCells::valuesOf(moxDataMatrixColumn const& column) {
  Values values;
  auto const take = [&]<class T>(Typed<T> typed) {
    if (typed != nullptr) {
      values = typed;
    }
  };
  take(dynamic_cast<Typed<int>>(&column));
  take(dynamic_cast<Typed<double>>(&column));
  take(dynamic_cast<Typed<std::string>>(&column));
  take(dynamic_cast<Typed<datetime_t>>(&column));
  return values;
}

ResultCells::Column ResultCells::makeColumn(moxDataMatrix& matrix, unsigned int index,
                                            moxSQLDataSourceColumn const* definition) {
  auto const owner = matrix.columnAt(index);
  auto const formatter = definition != nullptr ? definition->getFormatter() : nullptr;
  Column made{owner, valuesOf(*owner), CellText(owner, formatter), {}};
  if (definition != nullptr) {
    addIcon(made, matrix, *definition);
  }
  return made;
}

void ResultCells::addIcon(Column& made, moxDataMatrix& matrix,
                          moxSQLDataSourceColumn const& definition) {
  std::shared_ptr<moxSQLDataSourceColumn const> const iconColumn = definition.getIconColumn();
  auto const formatter = iconColumn ? iconColumn->getIconFormatter() : nullptr;
  made.hasIcon = formatter != nullptr;
  auto const keys = made.hasIcon ? matrix.columnByName(iconColumn->getColumnName()) : nullptr;
  if (keys) {
    made.icon.emplace(keys, formatter);
  }
}

std::string ResultCells::text(unsigned int row, unsigned int column) const {
  return isInside(row, column) ? columns_[column].text.at(row) : std::string();
}

std::string ResultCells::icon(unsigned int row, unsigned int column) const {
  bool const hasText = isInside(row, column) && columns_[column].icon;
  return hasText ? columns_[column].icon->at(row) : std::string();
}

bool ResultCells::hasIcon(unsigned int column) const {
  return column < columns_.size() && columns_[column].hasIcon;
}
