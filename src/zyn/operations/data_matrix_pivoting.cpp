#include "zyn/operations/data_matrix_pivoting.h"

#include <algorithm>
#include <limits>
#include <span>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/direct_aggregation.h"
#include "zyn/operations/operation_errors.h"
#include "zyn/operations/pivot_combinations.h"
#include "zyn/operations/row_grouping.h"

namespace {

using Entries = std::span<PivotCombinations::Entry const>;

constexpr std::uint32_t kNoRow = std::numeric_limits<std::uint32_t>::max();

template <class Data>
void removeFirst(std::vector<Data>& list, std::string const& columnName) {
  auto const found = std::find_if(list.begin(), list.end(),
                                  [&](Data const& data) { return data.columnName == columnName; });
  if (found != list.end()) {
    list.erase(found);
  }
}

std::shared_ptr<moxCommonAggregationFunction> functionOf(std::string const& registeredName,
                                                         std::string const& columnName) {
  std::string const whose = "as the function for the cells of " + columnName;
  try {
    auto function = moxApp->get<moxCommonAggregationFunction>(registeredName);
    if (function) {
      return function;
    }
  } catch (moxPluginNotFound const& error) {
    throw moxDefaultErrorImpl<moxPluginNotFound>(error.errorMessage(), {whose});
  }
  throw moxDefaultErrorImpl<moxPluginNotFound>(
      registeredName + " is no aggregation function of one source column", {whose});
}

MatrixColumn ownColumn(moxDataMatrix& matrix, std::string const& name) {
  return asOwn(requiredColumn(matrix, name), matrix.rowCount());
}

/// A column with a cell for each row of the cross table: that of the row of `source` that it comes
/// from, null where there is none.
MatrixColumn cellsFrom(moxDataMatrixColumn const& source, std::vector<std::uint32_t> const& rows) {
  MatrixColumn column = makeColumn(source.getType());
  column->setFormatter(source.getFormatter());
  withStorage(source, [&]<class T>(ColumnStorage<T> const& from) {
    auto& to = dynamic_cast<CommonColumn<T>&>(*column).storage();
    to.reserve(rows.size());
    if constexpr (std::is_same_v<T, std::string>) {
      to.values.arena().share(from.values.arena());
    }
    for (std::uint32_t const row : rows) {
      if (row == kNoRow || from.nulls.test(row)) {
        to.pushNull();
      } else {
        to.values.array().push_back(from.values.cells()[row]);
        to.nulls.push(false);
      }
    }
  });
  return column;
}

/// The entries of each combination, one after the other.
class EntriesByCombination {
 public:
  explicit EntriesByCombination(std::vector<PivotCombinations::Entry> const& entries)
      : left_(entries) {}

  Entries next(std::uint32_t combination) {
    auto const end = std::find_if(left_.begin(), left_.end(), [&](auto const& entry) {
      return entry.combination != combination;
    });
    Entries const found = left_.first(static_cast<std::size_t>(end - left_.begin()));
    left_ = left_.subspan(found.size());
    return found;
  }

 private:
  Entries left_;
};

/// The aggregated row of each row of the cross table; a later one takes the place of an earlier.
std::vector<std::uint32_t> rowsOf(Entries entries, KeyGroups const& groups) {
  std::vector<std::uint32_t> rows(groups.firstRow.size(), kNoRow);
  for (auto const& entry : entries) {
    rows[groups.groupOfRow[entry.row]] = entry.row;
  }
  return rows;
}

void addKeys(std::vector<MatrixColumn> const& keys, KeyGroups const& groups,
             moxDataMatrix& result) {
  RowOrder const firstRows(groups.firstRow.begin(), groups.firstRow.end());
  for (auto const& key : keys) {
    result.addColumn(gathered(key, firstRows));
  }
}

}  // namespace

std::shared_ptr<moxDataMatrix> DataMatrixPivoting::process(
    std::shared_ptr<moxDataMatrix> const& matrix, std::vector<Relation>* relations) {
  if (!matrix) {
    throw std::invalid_argument("a cross table is made of a matrix");
  }
  auto const source = aggregated(matrix);
  std::vector<MatrixColumn> keys;
  for (auto const& row : rows_) {
    keys.push_back(ownColumn(*source, row.columnName));
  }
  KeyGroups const groups = groupRows(keys, source->rowCount());
  auto result = newMatrix();
  addKeys(keys, groups, *result);
  addCells(*source, groups, *result);
  for (unsigned int i = 0; relations != nullptr && i < keys.size(); ++i) {
    relations->emplace_back(matrix->columnByName(rows_[i].columnName), result->columnAt(i));
  }
  return result;
}

/// The columns below each combination of values: one for each cell.
void DataMatrixPivoting::addCells(moxDataMatrix& source, KeyGroups const& groups,
                                  moxDataMatrix& result) const {
  if (cells_.empty()) {
    return;
  }
  PivotCombinations combinations(source.rowCount(), cells_.size());
  for (auto const& column : columns_) {
    combinations.add(ownColumn(source, column.columnName), column.formatter);
  }
  std::size_t const columns = rows_.size() + combinations.labels().size() * cells_.size();
  refuseTooManyColumns(columns);
  refuseTooManyCells(groups.firstRow.size(), columns);
  std::vector<MatrixColumn> sources;
  for (auto const& cell : cells_) {
    sources.push_back(ownColumn(source, cell.columnName));
  }
  EntriesByCombination entries(combinations.entries());
  for (std::uint32_t i = 0; i < combinations.labels().size(); ++i) {
    auto const rows = rowsOf(entries.next(i), groups);
    std::string const& label = combinations.labels()[i];
    for (std::size_t cell = 0; cell < cells_.size(); ++cell) {
      auto column = cellsFrom(*sources[cell], rows);
      column->setName(cells_.size() == 1 ? label : label + " " + cells_[cell].columnName);
      result.addColumn(column);
    }
  }
}

/// A row for each combination of the values of rows and columns.
std::shared_ptr<moxDataMatrix> DataMatrixPivoting::aggregated(
    std::shared_ptr<moxDataMatrix> const& matrix) const {
  auto const aggregator = moxApp->get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
  auto const keys = keyNames();
  for (auto const& key : keys) {
    aggregator->pushIndexColumn(key);
  }
  std::vector<std::shared_ptr<moxCommonAggregationFunction>> functions;
  for (auto const& cell : cells_) {
    auto const& function = functions.emplace_back(functionOf(cell.aggregation, cell.columnName));
    function->setSourceColumn(cell.columnName);
    function->setTargetColumn(cell.columnName);
    aggregator->addFunction(function);
  }
  checkColumns(*matrix);
  auto direct = aggregatedDirectly(*matrix, keys, functions);
  return direct ? direct : aggregator->aggregate(matrix, false, "");
}

/// Rows and columns, each name once.
std::vector<std::string> DataMatrixPivoting::keyNames() const {
  std::vector<std::string> names;
  auto const add = [&](auto const& list) {
    for (auto const& each : list) {
      if (std::find(names.begin(), names.end(), each.columnName) == names.end()) {
        names.push_back(each.columnName);
      }
    }
  };
  add(rows_);
  add(columns_);
  return names;
}

/// Rows, columns and cells must be there, and are told in this order.
void DataMatrixPivoting::checkColumns(moxDataMatrix& matrix) const {
  for (auto const& row : rows_) {
    requiredColumn(matrix, row.columnName);
  }
  for (auto const& column : columns_) {
    requiredColumn(matrix, column.columnName);
  }
  for (auto const& cell : cells_) {
    requiredColumn(matrix, cell.columnName);
  }
}

void DataMatrixPivoting::addColumn(std::string const& columnName,
                                   std::shared_ptr<moxGenericFormatter const> formatter) {
  columns_.push_back({columnName, std::move(formatter)});
}

void DataMatrixPivoting::removeColumn(std::string const& columnName) {
  removeFirst(columns_, columnName);
}

void DataMatrixPivoting::addCell(std::string const& columnName, std::string const& aggregation) {
  cells_.push_back({columnName, aggregation});
}

void DataMatrixPivoting::removeCell(std::string const& columnName) {
  removeFirst(cells_, columnName);
}

void DataMatrixPivoting::addRow(std::string const& columnName) {
  rows_.push_back({columnName});
}

void DataMatrixPivoting::removeRow(std::string const& columnName) {
  removeFirst(rows_, columnName);
}
