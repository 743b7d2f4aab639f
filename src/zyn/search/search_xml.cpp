#include "zyn/search/search_xml.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/datasources/column_reference.h"
#include "zyn/frame/registered.h"
#include "zyn/items/xml_attributes.h"
#include "zyn/search/search.h"

namespace {

using Element = std::shared_ptr<moxXMLNode>;
using Source = std::shared_ptr<moxDataSource>;

constexpr char const* kSource = "dataSource";  // an attribute of the settings, and a child

constexpr column_reference::Order kInitialOrder{
    {column_reference::kColumn, column_reference::kTableOrigin, column_reference::kColumnOrigin,
     column_reference::kTable}};

/// A flag in a child of its own; `isSet` stays as it is when there is no such child.
bool readFlag(moxXMLNode const& settings, char const* element, char const* attribute, bool isSet) {
  auto const child = settings.childByIndex(0, element);
  return child ? child->readAttribute(attribute).starts_with('1') : isSet;
}

void writeFlag(moxXMLNode& settings, char const* element, char const* attribute, bool isSet) {
  xml_attributes::writeBool(*settings.addChild(element), attribute, isSet);
}

/// The digits that the attribute begins with; 0 for none and for a number below.
unsigned int readSize(moxXMLNode const& geometry, char const* attribute) {
  constexpr long kMaximum = std::numeric_limits<unsigned int>::max();
  auto const text = geometry.readAttribute(attribute);
  return static_cast<unsigned int>(
      std::clamp(std::strtol(text.c_str(), nullptr, 10), 0L, kMaximum));
}

void readGeometry(moxSE_Search& search, moxXMLNode const& settings) {
  if (auto const geometry = settings.childByIndex(0, "Geometry")) {
    search.setInitialSize(readSize(*geometry, "width"), readSize(*geometry, "height"));
  }
}

void writeGeometry(moxSE_Search const& search, moxXMLNode& settings) {
  auto const geometry = settings.addChild("Geometry");
  geometry->writeAttribute("width", std::to_string(search.getInitialWidth()));
  geometry->writeAttribute("height", std::to_string(search.getInitialHeight()));
}

void readInitialOrder(moxSE_Search& search, moxXMLNode const& settings) {
  auto const ordering = settings.childByIndex(0, "InitialOrdering");
  if (!ordering) {
    return;
  }
  auto names = column_reference::read(*ordering, kInitialOrder);
  if (names.columnName.empty()) {
    names.columnName = ordering->readAttribute("column");
  }
  search.setInitialOrderNames(std::move(names), ordering->readAttribute("direction") == "asc");
}

void writeInitialOrder(moxSE_Search const& search, moxXMLNode& settings) {
  auto const& names = search.initialOrderNames();
  if (names.columnName.empty() && names.columnNameOrigin.empty()) {
    return;
  }
  auto const ordering = settings.addChild("InitialOrdering");
  column_reference::write(*ordering, names, kInitialOrder);
  ordering->writeAttribute("direction", search.getInitialOrderAscending() ? "asc" : "desc");
}

Source loaded(Source const& source, Element const& element) {
  return source && source->load(element) ? source : nullptr;
}

/// Definitions of several ages keep their source in several places.
Source readOwnSource(Element const& node) {
  auto const holder = node->childByIndex(0, kSource);
  if (!holder) {
    return loaded(registeredOrNone<moxDataSource>(node->elementName()), node);
  }
  if (holder->childByIndex(0, "Command")) {
    return loaded(moxApp->get<moxSQLDataSource>("moxSQLDataSource"), holder);
  }
  auto const child = holder->childByIndex(0);
  return child ? loaded(moxApp->get<moxDataSource>(child->elementName()), child) : nullptr;
}

void readSource(moxSE_Search& search, Element const& node, moxXMLNode const& settings) {
  auto const external = settings.readAttribute(kSource);
  if (external.empty()) {
    search.setDataSource(readOwnSource(node));
  } else {
    search.setDataSourceExterno(external, {});
  }
}

void writeOwnSource(moxSE_Search const& search, moxXMLNode& node) {
  auto const holder = node.addChild(kSource);
  if (auto const source = search.ownedSource()) {
    source->save(holder->addChild(source->name()));
  }
}

void readSettings(moxSE_Search& search, moxXMLNode const& settings) {
  search.setRequireFilter(xml_attributes::readBool(settings, "requireFilter"));
  search.setRequirePermission(xml_attributes::readBool(settings, "requirePermission", true));
  search.setAutoFill(readFlag(settings, "AutoFill", "atStartup", search.autoFill()));
  search.setAllowReorder(readFlag(settings, "Allowing", "Reorder", search.allowReorder()));
  readGeometry(search, settings);
  readInitialOrder(search, settings);
}

void writeSettings(moxSE_Search const& search, moxXMLNode& settings) {
  if (search.isSourceExternal()) {
    settings.writeAttribute(kSource, search.dataSourceExterno());
  }
  xml_attributes::writeBool(settings, "requireFilter", search.requireFilter());
  xml_attributes::writeBool(settings, "requirePermission", search.requirePermission());
  writeFlag(settings, "AutoFill", "atStartup", search.autoFill());
  writeFlag(settings, "Allowing", "Reorder", search.allowReorder());
  writeGeometry(search, settings);
  writeInitialOrder(search, settings);
}

}  // namespace

void search_xml::read(moxSE_Search& search, std::shared_ptr<moxXMLNode> const& node) {
  search.setHeaderName(node->readAttribute("VisibleName"));
  search.setInternalName(node->readAttribute("InternalName"));
  auto const settings = node->childByIndex(0, "General");
  if (settings) {
    readSettings(search, *settings);
    readSource(search, node, *settings);
  }
}

void search_xml::write(moxSE_Search const& search, moxXMLNode& node) {
  node.writeAttribute("VisibleName", search.getHeaderName());
  node.writeAttribute("InternalName", search.description());
  writeSettings(search, *node.addChild("General"));
  if (!search.isSourceExternal()) {
    writeOwnSource(search, node);
  }
}
