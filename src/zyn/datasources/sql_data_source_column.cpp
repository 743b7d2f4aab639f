#include "zyn/datasources/sql_data_source_column.h"

#include <algorithm>
#include <array>

#include "mox/core/xml.h"
#include "mox/zyn/format/generic_formatter.h"
#include "zyn/datasources/column_reference.h"
#include "zyn/frame/registered.h"
#include "zyn/items/xml_attributes.h"

namespace {

constexpr std::string_view kIcon = "IconColumn";
constexpr std::string_view kKey = "refColumn";
constexpr std::string_view kFormatters = "Formatters";
constexpr std::string_view kVisual = "Visual";
constexpr std::string_view kIconFormatter = "Icon";
constexpr std::string_view kFiltersType = "FiltersType";
constexpr std::string_view kVisualRepresentation = "visualRepresentation";
constexpr std::string_view kExpressionElement = "sql";
constexpr std::string_view kColumnSourceOrigin = "columnSourceOrigin";

constexpr int kNewColumnWidth = 100;

// Old files hold more than one digit here, of which the first one counts.
bool readFlag(XmlElement const& node, std::string_view name) {
  return node.withAttribute(name, [](std::string_view text) { return text.starts_with('1'); });
}

std::shared_ptr<moxGenericFormatter> readFormatter(XmlElement const& formatters,
                                                   std::string_view use) {
  auto const element = formatters.child(use);
  if (!element) {
    return {};
  }
  auto formatter = registered<moxGenericFormatter>(formatters.attribute(use));
  if (formatter) {
    loadFrom(*formatter, element);
  }
  return formatter;
}

void writeFormatter(moxXMLNode& formatters, std::string_view use,
                    std::shared_ptr<moxGenericFormatter> const& formatter) {
  if (formatter) {
    formatters.writeAttribute(use, formatter->name());
    formatter->save(formatters.addChild(use));
  }
}

void writeReference(moxXMLNode& node, std::string_view element,
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
    auto texts = texts_.all();
    texts[kTableOrigin] = info->tableName;
    texts[kColumnOrigin] = info->columnName;
    texts[kTable] = info->tableAlias;
    texts[kColumn] = info->name;
    texts[kVisibleName] = info->name;
    texts_.assign(texts);
    dbType_ = static_cast<FieldTypes>(info->type);
  }
  width_ = kNewColumnWidth;
  visible_ = true;
  avaliable_ = true;
}

void SQLDataSourceColumn::releaseReferences() {
  if (extras_) {
    extras_->iconColumn.reset();
    extras_->idColumn.reset();
  }
}

SQLDataSourceColumn::Extras& SQLDataSourceColumn::extras() {
  if (!extras_) {
    extras_ = std::make_unique<Extras>();
  }
  return *extras_;
}

void SQLDataSourceColumn::setSQLColumn(StringPair const& expressionAndAlias) {
  texts_.set(kExpression, expressionAndAlias.first);
  texts_.set(kAlias, expressionAndAlias.second);
}

bool SQLDataSourceColumn::Reference::names(moxSQLDataSourceColumn const& other) const {
  return !isEmpty() && column == other.getColumnName() && table == other.getTableName();
}

std::string SQLDataSourceColumn::getColumnNameFull() const {
  auto const names = column_reference::namesOf(*this);
  auto const table = names.tableName.empty() ? std::string() : names.tableName + ".";
  auto const origin = differingOrigin(names);
  return table + names.columnName + (origin.empty() ? origin : " (" + origin + ")");
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
  extras().allowedFiltersType.push_back(filter);
}

void SQLDataSourceColumn::removeAllowedFiltersType(StringPair const& filter) {
  auto& list = extras().allowedFiltersType;
  auto const found = std::find(list.begin(), list.end(), filter);
  if (found != list.end()) {
    list.erase(found);
  }
}

bool SQLDataSourceColumn::load(std::shared_ptr<moxXMLNode> node) {
  return node && loadElement(XmlElement(std::move(node)));
}

bool SQLDataSourceColumn::loadElement(XmlElement const& element) {
  loadTexts(element);
  loadAttributes(element);
  loadReferences(element);
  loadFormatters(element);
  loadFiltersType(element);
  element.eachChild(kColumnSourceOrigin, [this](XmlElement const& origin) {
    extras().columnOrigin.push_back(
        column_reference::read(origin, column_reference::kTableOriginFirst));
  });
  return true;
}

bool SQLDataSourceColumn::save(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  saveAttributes(*node);
  writeReference(*node, kIcon, getIconColumn());
  writeReference(*node, kKey, getIdColumn());
  saveFormatters(*node);
  saveFiltersType(*node);
  saveExpression(*node);
  for (auto const& origin : getColumnOrigin()) {
    column_reference::write(*node->addChild(kColumnSourceOrigin), origin,
                            column_reference::kTableOriginFirst);
  }
  return true;
}

/// In the order in which save writes them.
void SQLDataSourceColumn::loadTexts(XmlElement const& node) {
  std::array<std::string, kTextCount> room;  // not used where the element stands in a table
  auto texts = texts_.all();
  auto const read = [&](Text text, XmlElement const& element, std::string_view name) {
    texts[text] = element.attribute(name, room[text]);
  };
  read(kTable, node, "tableName");
  read(kTableOrigin, node, "tableNameOrigin");
  read(kColumn, node, "columnName");
  read(kColumnOrigin, node, "columnNameOrigin");
  if (texts[kColumn].empty()) {
    read(kColumn, node, "dbName");
  }
  read(kVisibleName, node, "VisibleName");
  read(kDataType, node, "dataType");
  if (auto const expression = node.child(kExpressionElement)) {
    texts[kExpression] = expression.text(room[kExpression]);
    read(kAlias, expression, "alias");
    sqlColumnIndex_ = xml_attributes::readInt(expression, "index");
  }
  texts_.assign(texts);
}

void SQLDataSourceColumn::loadAttributes(XmlElement const& node) {
  width_ = xml_attributes::readInt(node, "ColumnWidth");
  visible_ = readFlag(node, "Visible");
  avaliable_ = readFlag(node, "Avaliable");
  dbType_ = static_cast<FieldTypes>(xml_attributes::readInt(node, "Type"));
}

void SQLDataSourceColumn::saveAttributes(moxXMLNode& node) const {
  column_reference::write(node, column_reference::namesOf(*this), column_reference::kTablesApart);
  node.writeAttribute("VisibleName", texts_[kVisibleName]);
  xml_attributes::writeInt(node, "ColumnWidth", width_);
  xml_attributes::writeBool(node, "Visible", visible_);
  xml_attributes::writeBool(node, "Avaliable", avaliable_);
  xml_attributes::writeInt(node, "Type", dbType_);
  if (!texts_[kDataType].empty()) {
    node.writeAttribute("dataType", texts_[kDataType]);
  }
}

/// An element, or in old files an attribute of the same name, which tells no table.
SQLDataSourceColumn::Reference SQLDataSourceColumn::readReference(XmlElement const& node,
                                                                  std::string_view element) {
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
    auto icon = readFormatter(formatters, kIconFormatter);
    if (icon || extras_) {
      setIconFormatter(std::move(icon));
    }
  }
}

void SQLDataSourceColumn::saveFormatters(moxXMLNode& node) const {
  if (formatter_ || iconFormatter()) {
    auto const formatters = node.addChild(kFormatters);
    writeFormatter(*formatters, kVisual, formatter_);
    writeFormatter(*formatters, kIconFormatter, iconFormatter());
  }
}

void SQLDataSourceColumn::loadFiltersType(XmlElement const& node) {
  if (auto const list = node.child(kFiltersType)) {
    list.eachChild({}, [this](XmlElement const& filter) {
      addAllowedFiltersType({filter.name(), filter.attribute(kVisualRepresentation)});
    });
  }
}

void SQLDataSourceColumn::saveFiltersType(moxXMLNode& node) const {
  auto const filters = getAllowedFiltersType();
  if (filters.empty()) {
    return;
  }
  auto const list = node.addChild(kFiltersType);
  for (auto const& [filter, visualRepresentation] : filters) {
    list->addChild(filter)->writeAttribute(kVisualRepresentation, visualRepresentation);
  }
}

void SQLDataSourceColumn::saveExpression(moxXMLNode& node) const {
  if (expression().empty()) {
    return;
  }
  auto const element = node.addChild(kExpressionElement);
  element->writeText(expression());
  if (!alias().empty()) {
    element->writeAttribute("alias", alias());
  }
  xml_attributes::writeInt(*element, "index", sqlColumnIndex_);
}
