#include "zyn/datasources/sorter_data_source.h"

#include <algorithm>

#include "mox/core/xml.h"
#include "zyn/datasources/sorter_data_source_execution.h"
#include "zyn/datasources/user_defined_sort_option.h"

namespace {

using ColumnInfo = moxSorterDataSource::ColumnInfo;

constexpr char const* kName = "name";
constexpr char const* kSource = "source";
constexpr char const* kReplace = "replace";
constexpr char const* kUserDefined = "userDefined";
constexpr char const* kDescription = "description";
constexpr char const* kYes = "yes";
constexpr char const* kNo = "no";

constexpr char const* kColumn = "column";
constexpr char const* kColumnName = "name";
constexpr char const* kColumnDescription = "desc";
constexpr char const* kDirection = "dir";
constexpr char const* kAscending = "asc";
constexpr char const* kDescending = "desc";

void writeYesOrNo(moxXMLNode& node, char const* attribute, bool value) {
  node.writeAttribute(attribute, value ? kYes : kNo);
}

ColumnInfo::SortMode modeOf(std::string const& direction) {
  if (direction.empty()) {
    return ColumnInfo::kSemDirecao;
  }
  return direction == kDescending ? ColumnInfo::kDecrescente : ColumnInfo::kCrescente;
}

ColumnInfo columnIn(moxXMLNode const& element) {
  return {element.readAttribute(kColumnName), element.readAttribute(kColumnDescription),
          modeOf(element.readAttribute(kDirection))};
}

void write(ColumnInfo const& column, moxXMLNode& element) {
  element.writeAttribute(kColumnName, column.name);
  element.writeAttribute(kColumnDescription, column.description);
  if (column.mode != ColumnInfo::kSemDirecao) {
    element.writeAttribute(kDirection,
                           column.mode == ColumnInfo::kDecrescente ? kDescending : kAscending);
  }
}

}  // namespace

SorterDataSource::SorterDataSource() {
  setUserDefined(true);
}

bool SorterDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  source_ = node->readAttribute(kSource);
  replace_ = node->readAttribute(kReplace) == kYes;
  setUserDefined(node->readAttribute(kUserDefined) == kYes);
  if (getUserDefined()) {
    description_ = node->readAttribute(kDescription);
  }
  columns_.clear();
  for (int i = 0; auto const element = node->childByIndex(i); ++i) {
    columns_.push_back(columnIn(*element));
  }
  return true;
}

bool SorterDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  node->writeAttribute(kSource, source_);
  writeYesOrNo(*node, kReplace, replace_);
  writeYesOrNo(*node, kUserDefined, getUserDefined());
  if (getUserDefined()) {
    node->writeAttribute(kDescription, description_);
  }
  for (auto const& column : columns_) {
    write(column, *node->addChild(kColumn));
  }
  return true;
}

/// Whoever holds the option holds it and the definition that it speaks for, also when the
/// definition drops it.
std::vector<std::shared_ptr<moxDataSourceOption const>> SorterDataSource::options() const {
  if (!userOption_) {
    return {};
  }
  using Both = std::pair<std::shared_ptr<SorterDataSource const>,
                         std::shared_ptr<UserDefinedSortOption const>>;
  auto const both = std::make_shared<Both>(shared_from_this(), userOption_);
  return {std::shared_ptr<moxDataSourceOption const>(both, both->second.get())};
}

std::shared_ptr<moxDataSourceExecution> SorterDataSource::createExecution() const {
  return std::make_shared<SorterDataSourceExecution>(shared_from_this());
}

bool SorterDataSource::setOrderColumn(std::string const& name, std::string const& description,
                                      ColumnInfo::SortMode mode) {
  auto const found = std::find_if(columns_.begin(), columns_.end(), OrderFindCriterion(name));
  if (found != columns_.end()) {
    found->description = description;
    found->mode = mode;
  } else {
    columns_.push_back({name, description, mode});
  }
  return true;
}

void SorterDataSource::removeOrderColumn(std::string const& name) {
  auto const found = std::find_if(columns_.begin(), columns_.end(), OrderFindCriterion(name));
  if (found != columns_.end()) {
    columns_.erase(found);
  }
}

void SorterDataSource::setUserDefined(bool userDefined) {
  if (!userDefined) {
    userOption_.reset();
  } else if (!userOption_) {
    userOption_ = std::make_shared<UserDefinedSortOption>(this);
  }
}

ColumnInfo const* SorterDataSource::defaultOrder() const {
  auto const found = std::find_if(columns_.begin(), columns_.end(), [](ColumnInfo const& column) {
    return column.mode != ColumnInfo::kSemDirecao;
  });
  return found != columns_.end() ? &*found : nullptr;
}
