#include "zyn/filters/filter_specification.h"

#include <algorithm>
#include <utility>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/sql_data_source_column.h"
#include "mox/zyn/format/integral_formatter.h"
#include "mox/zyn/format/properties_collection.h"
#include "mox/zyn/format/properties_object.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "zyn/frame/registered.h"
#include "zyn/items/xml_attributes.h"

namespace {

constexpr char const* kExtraProperties = "visualExtraProperties";
constexpr char const* kPosition = "position";

// Cells come from files and size a form's grid.
constexpr int kMaxCell = 65536;

// The settings of a control stand beside it under a name of their own. They are an extra: a control
// without them, or whose settings cannot be made, is as good a control.
std::shared_ptr<moxPropertiesObject> extraPropertiesOf(std::string const& control) {
  try {
    return registeredOrNone<moxPropertiesObject>(control + "_ep");
  } catch (...) {
    return {};
  }
}

unsigned readCell(XmlElement const& element, char const* attribute) {
  return static_cast<unsigned>(
      std::clamp(xml_attributes::readInt(element, attribute), 0, kMaxCell));
}

}  // namespace

bool FilterSpecCommons::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  saveColumn(*node);
  xml_attributes::writeBool(*node, "require", require_);
  saveKind(*node);
  node->writeAttribute("visualRepresentation", visualRepresentation_);
  saveExtraProperties(*node);
  node->writeAttribute("description", description_);
  savePosition(*node);
  return true;
}

bool FilterSpecCommons::load(std::shared_ptr<moxXMLNode> node) {
  return node && loadElement(XmlElement(std::move(node)));
}

bool FilterSpecCommons::loadElement(XmlElement const& element) {
  tableName_ = element.attribute("tableName");
  column_ = element.attribute("columnName");
  require_ = xml_attributes::readBool(element, "require");
  loadKind(element);
  setVisualRepresentation(element.attribute("visualRepresentation"));
  loadExtraProperties(element);
  description_ = element.attribute("description");
  loadPosition(element);
  return true;
}

// A file names the column of the result, by which the source finds it again and binds it.
void FilterSpecCommons::saveColumn(moxXMLNode& node) const {
  if (!dataSourceColumn_) {
    node.writeAttribute("tableName", tableName_);
    node.writeAttribute("columnName", column_);
    return;
  }
  node.writeAttribute("tableName", dataSourceColumn_->getTableName());
  node.writeAttribute("columnName", dataSourceColumn_->getColumnName());
  node.writeAttribute("tableNameOrigin", dataSourceColumn_->getTableNameOrigin());
  node.writeAttribute("columnNameOrigin", dataSourceColumn_->getColumnNameOrigin());
}

void FilterSpecCommons::saveExtraProperties(moxXMLNode& node) const {
  if (extraProperties_) {
    extraProperties_->getProperties()->save(node.addChild(kExtraProperties));
  }
}

void FilterSpecCommons::loadExtraProperties(XmlElement const& element) {
  if (extraProperties_) {
    auto const settings = element.child(kExtraProperties);
    extraProperties_->getProperties()->load(settings ? settings.node() : nullptr);
  }
}

void FilterSpecCommons::savePosition(moxXMLNode& node) const {
  auto const decimal = moxApp->get<moxIntegralFormatter>("moxIntegralFormatter");
  auto const position = node.addChild(kPosition);
  position->writeAttribute("X", decimal->asString(positionX_));
  position->writeAttribute("Y", decimal->asString(positionY_));
  position->writeAttribute("spanX", decimal->asString(spanX_));
  position->writeAttribute("spanY", decimal->asString(spanY_));
}

void FilterSpecCommons::loadPosition(XmlElement const& element) {
  if (auto const position = element.child(kPosition)) {
    setPosition(readCell(position, "X"), readCell(position, "Y"));
    setSpan(readCell(position, "spanX"), readCell(position, "spanY"));
  }
}

void FilterSpecCommons::setVisualRepresentation(std::string const& visualRepresentation) {
  if (visualRepresentation != visualRepresentation_) {
    visualRepresentation_ = visualRepresentation;
    extraProperties_ = extraPropertiesOf(visualRepresentation);
  }
}

void FilterSpecCommons::setPosition(unsigned x, unsigned y) {
  positionX_ = x;
  positionY_ = y;
}

void FilterSpecCommons::setSpan(unsigned spanX, unsigned spanY) {
  spanX_ = spanX;
  spanY_ = spanY;
}

void FilterSpecCommons::getDimension(unsigned* x, unsigned* y, unsigned* spanX,
                                     unsigned* spanY) const {
  auto const give = [](unsigned value, unsigned* target) {
    if (target != nullptr) {
      *target = value;
    }
  };
  give(positionX_, x);
  give(positionY_, y);
  give(spanX_, spanX);
  give(spanY_, spanY);
}

// Conditions are put on the column of the query's table: a name of the result is none in a where.
void FilterSpecCommons::setSQLDataSourceColumn(std::shared_ptr<moxSQLDataSourceColumn> column) {
  if (column) {
    auto const origin = column->getColumnNameOrigin();
    column_ = origin.empty() ? column->getColumnName() : origin;
  }
  dataSourceColumn_ = std::move(column);
}

std::shared_ptr<moxDataMatrixSQLFilter> FilterSpecCommons::newFilter(
    std::string const& registeredName) const {
  auto filter = registeredOrNone<moxDataMatrixSQLFilter>(registeredName);
  if (filter) {
    filter->setColumnName(tableName_, column_);
  }
  return filter;
}

void TextFilterSpecCommons::saveKind(moxXMLNode& node) const {
  xml_attributes::writeBool(node, "removePunctuation", removePunctuation_);
}

void TextFilterSpecCommons::loadKind(XmlElement const& element) {
  removePunctuation_ = xml_attributes::readBool(element, "removePunctuation");
}
