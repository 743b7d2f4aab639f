#include "zyn/datasources/sql_data_source_column.h"

#include <algorithm>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/datasources/column_reference.h"
#include "zyn/items/xml_attributes.h"

namespace {

constexpr char const* kIcon = "IconColumn";
constexpr char const* kKey = "refColumn";
constexpr char const* kFormatters = "Formatters";
constexpr char const* kVisual = "Visual";
constexpr char const* kIconFormatter = "Icon";
constexpr char const* kFiltersType = "FiltersType";
constexpr char const* kVisualRepresentation = "visualRepresentation";
constexpr char const* kExpression = "sql";
constexpr char const* kColumnSourceOrigin = "columnSourceOrigin";

constexpr int kNewColumnWidth = 100;

// Old files hold more than one digit here, of which the first one counts.
bool readFlag(XmlElement const& node, char const* name) {
  return node.withAttribute(name, [](std::string_view text) { return text.starts_with('1'); });
}

std::shared_ptr<moxGenericFormatter> readFormatter(XmlElement const& formatters, char const* use) {
  auto const element = formatters.child(use);
  if (!element) {
    return {};
  }
  auto formatter = moxApp->get<moxGenericFormatter>(formatters.attribute(use));
  if (formatter) {
    loadFrom(*formatter, element);
  }
  return formatter;
}

void writeFormatter(moxXMLNode& formatters, char const* use,
                    std::shared_ptr<moxGenericFormatter> const& formatter) {
  if (formatter) {
    formatters.writeAttribute(use, formatter->name());
    formatter->save(formatters.addChild(use));
  }
}

void writeReference(moxXMLNode& node, char const* element,
                    std::shared_ptr<moxSQLDataSourceColumn> const& column) {
  if (column) {
    column_reference::write(*node.addChild(element), column_reference::namesOf(*column),
                            column_reference::kTableFirst);
  }
}

/// What the database calls differently; empty when it is nothing.
std::string differingOrigin(moxSQLDataSourceColumn::SQLColum const& names) {
  bool const table = names.tableNameOrigin != names.tableName && !names.tableNameOrigin.empty();
  bool const column = names.columnNameOrigin != names.columnName && !names.columnNameOrigin.empty();
  std::string origin = table ? names.tableNameOrigin : std::string();
  if (table && column) {
    origin += '.';
  }
  return column ? origin + names.columnNameOrigin : origin;
}

}  // namespace

void SQLDataSourceColumn::startFrom(FieldInfo const* info) {
  if (info != nullptr) {
    names_ = {info->tableName, info->columnName, info->tableAlias, info->name};
    dbType_ = static_cast<FieldTypes>(info->type);
    visibleName_ = info->name;
  }
  width_ = kNewColumnWidth;
  visible_ = true;
  avaliable_ = true;
}

void SQLDataSourceColumn::releaseReferences() {
  iconColumn_.reset();
  idColumn_.reset();
}

bool SQLDataSourceColumn::Reference::names(moxSQLDataSourceColumn const& other) const {
  return !isEmpty() && column == other.getColumnName() && table == other.getTableName();
}

std::string SQLDataSourceColumn::getColumnNameFull() const {
  auto const table = names_.tableName.empty() ? std::string() : names_.tableName + ".";
  auto const origin = differingOrigin(names_);
  return table + names_.columnName + (origin.empty() ? origin : " (" + origin + ")");
}

moxDataMatrixTypes::Types SQLDataSourceColumn::getDataMatrixType() const {
  switch (dbType_) {
    case kText:
      return moxDataMatrixTypes::Text;
    case kBlob:
      return moxDataMatrixTypes::Blob;
    case kDouble:
      return moxDataMatrixTypes::Double;
    case kDate:
      return moxDataMatrixTypes::Date;
    default:
      return moxDataMatrixTypes::Int;
  }
}

void SQLDataSourceColumn::addAllowedFiltersType(StringPair const& filter) {
  allowedFiltersType_.push_back(filter);
}

void SQLDataSourceColumn::removeAllowedFiltersType(StringPair const& filter) {
  auto const found = std::find(allowedFiltersType_.begin(), allowedFiltersType_.end(), filter);
  if (found != allowedFiltersType_.end()) {
    allowedFiltersType_.erase(found);
  }
}

bool SQLDataSourceColumn::load(std::shared_ptr<moxXMLNode> node) {
  return node && loadElement(XmlElement(std::move(node)));
}

bool SQLDataSourceColumn::loadElement(XmlElement const& element) {
  loadAttributes(element);
  loadReferences(element);
  loadFormatters(element);
  loadFiltersType(element);
  loadExpression(element);
  element.eachChild(kColumnSourceOrigin, [this](XmlElement const& origin) {
    columnOrigin_.push_back(column_reference::read(origin, column_reference::kTableOriginFirst));
  });
  return true;
}

bool SQLDataSourceColumn::save(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  saveAttributes(*node);
  writeReference(*node, kIcon, iconColumn_);
  writeReference(*node, kKey, idColumn_);
  saveFormatters(*node);
  saveFiltersType(*node);
  saveExpression(*node);
  for (auto const& origin : columnOrigin_) {
    column_reference::write(*node->addChild(kColumnSourceOrigin), origin,
                            column_reference::kTableOriginFirst);
  }
  return true;
}

void SQLDataSourceColumn::loadAttributes(XmlElement const& node) {
  names_ = column_reference::read(node, column_reference::kTablesApart);
  if (names_.columnName.empty()) {
    names_.columnName = node.attribute("dbName");
  }
  visibleName_ = node.attribute("VisibleName");
  width_ = xml_attributes::readInt(node, "ColumnWidth");
  visible_ = readFlag(node, "Visible");
  avaliable_ = readFlag(node, "Avaliable");
  dbType_ = static_cast<FieldTypes>(xml_attributes::readInt(node, "Type"));
  dataType_ = node.attribute("dataType");
}

void SQLDataSourceColumn::saveAttributes(moxXMLNode& node) const {
  column_reference::write(node, names_, column_reference::kTablesApart);
  node.writeAttribute("VisibleName", visibleName_);
  xml_attributes::writeInt(node, "ColumnWidth", width_);
  xml_attributes::writeBool(node, "Visible", visible_);
  xml_attributes::writeBool(node, "Avaliable", avaliable_);
  xml_attributes::writeInt(node, "Type", dbType_);
  if (!dataType_.empty()) {
    node.writeAttribute("dataType", dataType_);
  }
}

/// An element, or in old files an attribute of the same name, which tells no table.
SQLDataSourceColumn::Reference SQLDataSourceColumn::readReference(XmlElement const& node,
                                                                  char const* element) {
  if (auto const child = node.child(element)) {
    return {child.attribute("tableName"), child.attribute("columnName")};
  }
  return {{}, node.attribute(element)};
}

void SQLDataSourceColumn::loadReferences(XmlElement const& node) {
  References read = {readReference(node, kIcon), readReference(node, kKey)};
  bool const isNone = read.icon.isEmpty() && read.key.isEmpty();
  references_ = isNone ? nullptr : std::make_unique<References>(std::move(read));
}

void SQLDataSourceColumn::loadFormatters(XmlElement const& node) {
  if (auto const formatters = node.child(kFormatters)) {
    formatter_ = readFormatter(formatters, kVisual);
    iconFormatter_ = readFormatter(formatters, kIconFormatter);
  }
}

void SQLDataSourceColumn::saveFormatters(moxXMLNode& node) const {
  if (formatter_ || iconFormatter_) {
    auto const formatters = node.addChild(kFormatters);
    writeFormatter(*formatters, kVisual, formatter_);
    writeFormatter(*formatters, kIconFormatter, iconFormatter_);
  }
}

void SQLDataSourceColumn::loadFiltersType(XmlElement const& node) {
  if (auto const list = node.child(kFiltersType)) {
    list.eachChild({}, [this](XmlElement const& filter) {
      allowedFiltersType_.emplace_back(filter.name(), filter.attribute(kVisualRepresentation));
    });
  }
}

void SQLDataSourceColumn::saveFiltersType(moxXMLNode& node) const {
  if (allowedFiltersType_.empty()) {
    return;
  }
  auto const list = node.addChild(kFiltersType);
  for (auto const& [filter, visualRepresentation] : allowedFiltersType_) {
    list->addChild(filter)->writeAttribute(kVisualRepresentation, visualRepresentation);
  }
}

void SQLDataSourceColumn::loadExpression(XmlElement const& node) {
  if (auto const expression = node.child(kExpression)) {
    sqlColumn_ = {expression.text(), expression.attribute("alias")};
    sqlColumnIndex_ = xml_attributes::readInt(expression, "index");
  }
}

void SQLDataSourceColumn::saveExpression(moxXMLNode& node) const {
  auto const& [text, alias] = sqlColumn_;
  if (text.empty()) {
    return;
  }
  auto const expression = node.addChild(kExpression);
  expression->writeText(text);
  if (!alias.empty()) {
    expression->writeAttribute("alias", alias);
  }
  xml_attributes::writeInt(*expression, "index", sqlColumnIndex_);
}
