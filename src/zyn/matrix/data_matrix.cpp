#include "zyn/matrix/data_matrix.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"

void DataMatrix::addColumn(std::shared_ptr<moxDataMatrixColumn> column) {
  if (column && std::find(columns_.begin(), columns_.end(), column) == columns_.end()) {
    columns_.push_back(std::move(column));
  }
}

std::shared_ptr<moxDataMatrixColumn> DataMatrix::columnOrEmpty(std::size_t index) const {
  return index < columns_.size() ? columns_[index] : nullptr;
}

std::shared_ptr<moxDataMatrixColumn> DataMatrix::columnAt(unsigned int index) {
  return columnOrEmpty(index);
}

std::shared_ptr<moxDataMatrixColumn const> DataMatrix::columnAt(unsigned int index) const {
  return columnOrEmpty(index);
}

std::shared_ptr<moxDataMatrixColumn> DataMatrix::columnByName(std::string const& columnName) {
  return columnOrEmpty(static_cast<std::size_t>(getColumnIndexByName(columnName)));
}

std::shared_ptr<moxDataMatrixColumn const> DataMatrix::columnByName(
    std::string const& columnName) const {
  return columnOrEmpty(static_cast<std::size_t>(getColumnIndexByName(columnName)));
}

unsigned int DataMatrix::columnCount() const {
  return static_cast<unsigned int>(columns_.size());
}

void DataMatrix::clearData() {
  for (auto const& column : columns_) {
    column->clear();
  }
}

unsigned int DataMatrix::rowCount() const {
  if (columns_.empty()) {
    return 0;
  }
  unsigned int rows = UINT_MAX;
  for (auto const& column : columns_) {
    rows = std::min(rows, column->numRows());
  }
  return rows;
}

void DataMatrix::reserve(unsigned int rows) {
  for (auto const& column : columns_) {
    column->reserve(static_cast<int>(std::min(rows, static_cast<unsigned int>(INT_MAX))));
  }
}

std::shared_ptr<moxDataMatrixRow> DataMatrix::begin() const {
  if (rowCount() == 0) {
    return {};
  }
  auto row = moxApp->get<moxDataMatrixRow>("moxDataMatrixRow");
  for (auto const& column : columns_) {
    row->addIterator(column->begin());
  }
  return row;
}

bool DataMatrix::appendNullRow() {
  for (auto const& column : columns_) {
    column->appendNull();
  }
  return true;
}

void DataMatrix::dropColumn(std::shared_ptr<moxDataMatrixColumn const> column) {
  std::erase(columns_, column);
}

void DataMatrix::orderColumnsByName(std::vector<std::string> const& columnNames) {
  std::vector<std::shared_ptr<moxDataMatrixColumn>> ordered;
  for (std::string const& columnName : columnNames) {
    if (auto column = columnByName(columnName)) {
      ordered.push_back(std::move(column));
    }
  }
  columns_ = std::move(ordered);
}

int DataMatrix::getColumnIndexByName(std::string const& columnName) const {
  auto const found = std::find_if(columns_.begin(), columns_.end(), [&](auto const& column) {
    return column->getName() == columnName;
  });
  return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}
