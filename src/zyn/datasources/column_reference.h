#pragma once

#include <array>
#include <string_view>

#include "mox/core/xml.h"
#include "mox/zyn/datasources/sql_data_source_column.h"
#include "zyn/frame/xml_element.h"

/// Elements that refer to a column by its four names. Each kind of element has its own order of
/// attributes, which is part of the format: files are compared byte by byte.
namespace column_reference {

using Names = moxSQLDataSourceColumn::SQLColum;

struct Attribute {
  std::string_view name;
  std::string Names::*field;
};

using Order = std::array<Attribute, 4>;

inline constexpr Attribute kTable{"tableName", &Names::tableName};
inline constexpr Attribute kColumn{"columnName", &Names::columnName};
inline constexpr Attribute kTableOrigin{"tableNameOrigin", &Names::tableNameOrigin};
inline constexpr Attribute kColumnOrigin{"columnNameOrigin", &Names::columnNameOrigin};

inline constexpr Order kTableFirst{{kTable, kColumn, kTableOrigin, kColumnOrigin}};
inline constexpr Order kColumnFirst{{kColumn, kTable, kColumnOrigin, kTableOrigin}};
inline constexpr Order kOriginFirst{{kColumnOrigin, kTableOrigin, kColumn, kTable}};
inline constexpr Order kTableOriginFirst{{kTableOrigin, kColumnOrigin, kTable, kColumn}};
inline constexpr Order kTablesApart{{kTable, kTableOrigin, kColumn, kColumnOrigin}};

inline Names namesOf(moxSQLDataSourceColumn const& column) {
  return {column.getTableNameOrigin(), column.getColumnNameOrigin(), column.getTableName(),
          column.getColumnName()};
}

inline Names read(XmlElement const& element, Order const& order) {
  Names names;
  for (auto const& attribute : order) {
    names.*attribute.field = element.attribute(attribute.name);
  }
  return names;
}

inline Names read(moxXMLNode const& node, Order const& order) {
  return read(XmlElement(node), order);
}

inline void write(moxXMLNode& node, Names const& names, Order const& order) {
  for (auto const& attribute : order) {
    node.writeAttribute(attribute.name, names.*attribute.field);
  }
}

}  // namespace column_reference
