#include "zyn/datasources/user_defined_sort_option.h"

bool SorterDataSource::UserDefinedSortOption::load(std::shared_ptr<moxXMLNode> /*node*/) {
  return false;
}

bool SorterDataSource::UserDefinedSortOption::save(std::shared_ptr<moxXMLNode> /*node*/) const {
  return false;
}

std::shared_ptr<moxDataSourceOptionData> SorterDataSource::UserDefinedSortOption::createOptionData()
    const {
  return std::make_shared<UserDefinedSortOptionData>();
}

std::pair<std::string, bool> SorterDataSource::UserDefinedSortOption::getDefaultOrder() const {
  auto const* const column = definition_->defaultOrder();
  if (column == nullptr) {
    return {};
  }
  return {column->name, column->mode == ColumnInfo::kDecrescente};
}

std::vector<std::pair<std::string, std::string>>
SorterDataSource::UserDefinedSortOption::getAvailableColumns() const {
  std::vector<std::pair<std::string, std::string>> offered;
  for (auto const& column : definition_->orderColumns()) {
    offered.emplace_back(column.name, column.description);
  }
  return offered;
}
