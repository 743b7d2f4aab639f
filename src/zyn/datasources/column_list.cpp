#include "zyn/datasources/column_list.h"

#include <algorithm>
#include <map>
#include <utility>

ColumnList::~ColumnList() {
  for (auto const& column : columns_) {
    column->releaseReferences();
  }
  for (auto const& removed : removed_) {
    if (auto const column = removed.lock()) {
      column->releaseReferences();
    }
  }
}

ColumnList::OwnColumn ColumnList::append() {
  return columns_.emplace_back(std::make_shared<SQLDataSourceColumn>());
}

void ColumnList::load(XmlElement const& node, std::string_view element) {
  constexpr std::size_t kUsual = 8;
  columns_.reserve(columns_.size() + kUsual);
  node.eachChild(element, [this](XmlElement const& child) { append()->loadElement(child); });
  for (auto const& column : columns_) {
    column->updateRelations(this);
  }
}

void ColumnList::save(moxXMLNode& node, std::string_view element) const {
  for (auto const& column : columns_) {
    column->save(node.addChild(element));
  }
}

ColumnList::OwnColumn ColumnList::create(FieldInfo const* info) {
  auto column = append();
  column->startFrom(info);
  return column;
}

void ColumnList::remove(Column const& column) {
  auto const found = std::find(columns_.begin(), columns_.end(), column);
  if (found != columns_.end()) {
    removed_.emplace_back(*found);
    columns_.erase(found);
  }
}

void ColumnList::move(Column const& column, int index) {
  auto const found = std::find(columns_.begin(), columns_.end(), column);
  if (found == columns_.end()) {
    return;
  }
  auto const moved = *found;
  columns_.erase(found);
  bool const isPlace = index >= 0 && static_cast<std::size_t>(index) < columns_.size();
  columns_.insert(isPlace ? columns_.begin() + index : columns_.end(), moved);
}

void ColumnList::putVisibleFirst() {
  std::stable_partition(columns_.begin(), columns_.end(),
                        [](OwnColumn const& column) { return column->getVisible(); });
}

ColumnList::OwnColumn ColumnList::find(std::string_view table, std::string_view column) const {
  auto const found = std::find_if(columns_.begin(), columns_.end(), [&](OwnColumn const& each) {
    return each->isCalled(table, column);
  });
  return found != columns_.end() ? *found : nullptr;
}

ColumnList::OwnColumn ColumnList::findByName(std::string_view column) const {
  auto const found = std::find_if(columns_.begin(), columns_.end(), [&](OwnColumn const& each) {
    return each->columnName() == column;
  });
  return found != columns_.end() ? *found : nullptr;
}

ColumnList::OwnColumn ColumnList::at(unsigned int index) const {
  return index < columns_.size() ? columns_[index] : nullptr;
}

std::vector<moxDataSourceColumnType> ColumnList::namesAndTypes() const {
  std::vector<moxDataSourceColumnType> result;
  result.reserve(columns_.size());
  for (auto const& column : columns_) {
    result.emplace_back(column->columnName(), column->getDataMatrixType());
  }
  return result;
}

std::string ColumnList::selectList() const {
  std::string list;
  for (auto const& column : columns_) {
    list += column->expression();
    if (!column->alias().empty()) {
      list.append(" as ").append(column->alias());
    }
    list += ',';
  }
  if (!list.empty()) {
    list.pop_back();
  }
  return list;
}

std::vector<std::pair<std::string, std::string>> ColumnList::expressionsByIndex() const {
  std::map<int, std::pair<std::string, std::string>> byIndex;
  for (auto const& column : columns_) {
    byIndex[column->getSQLColumnIndex()] = column->getSQLColumn();
  }
  std::vector<std::pair<std::string, std::string>> result;
  result.reserve(byIndex.size());
  for (auto& [index, expression] : byIndex) {
    result.push_back(std::move(expression));
  }
  return result;
}
