#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source.h"
#include "zyn/datasources/sql_data_source_column.h"

/// The columns of a SQL source, and those that a filter source adds: a list in the order of the
/// result, and the owner of what the columns refer to. Not copied: its columns are known by object.
class ColumnList {
 public:
  using Column = std::shared_ptr<moxSQLDataSourceColumn>;
  using ConstColumn = std::shared_ptr<moxSQLDataSourceColumn const>;
  using OwnColumn = std::shared_ptr<SQLDataSourceColumn>;
  using FieldInfo = moxDatabaseConnection::FieldInfo;

  ColumnList() = default;
  ColumnList(ColumnList const&) = delete;
  ColumnList& operator=(ColumnList const&) = delete;

  /// Takes the references of every column that it made, also of removed ones, since columns that
  /// refer to each other in a ring would stay for ever.
  ~ColumnList();

  /// An empty column behind the last one.
  OwnColumn append();

  /// Reads a column from each of the node's children of that name, behind those that are there, and
  /// binds what they refer to: references may point forward.
  void load(XmlElement const& node, std::string_view element);
  void load(moxXMLNode const& node, std::string_view element) { load(XmlElement(node), element); }

  /// Writes a child of that name for each column.
  void save(moxXMLNode& node, std::string_view element) const;

  /// The same as append, begun from a field of a query; from none for null.
  OwnColumn create(FieldInfo const* info);

  /// By the object; one that is not in the list changes nothing.
  void remove(Column const& column);

  /// Takes the column out and puts it at `index` among the others; at the end for a place that
  /// there is not. A column that is not in the list changes nothing.
  void move(Column const& column, int index);

  /// The visible columns first, otherwise as they were.
  void putVisibleFirst();

  /// The first column of exactly these names; empty for none.
  OwnColumn find(std::string_view table, std::string_view column) const;

  /// The first column of exactly this name, in any table; empty for none.
  OwnColumn findByName(std::string_view column) const;

  /// Empty beyond the last.
  OwnColumn at(unsigned int index) const;

  std::vector<Column> all() const { return {columns_.begin(), columns_.end()}; }
  std::vector<ConstColumn> constants() const { return {columns_.begin(), columns_.end()}; }

  /// The list itself, for the owner's loops: all() and constants() copy.
  std::vector<OwnColumn> const& columns() const { return columns_; }

  std::vector<moxDataSourceColumnType> namesAndTypes() const;

  /// "expression as alias,expression", as a composed statement selects them; empty without columns.
  std::string selectList() const;

  /// (expression, alias) by ascending index; of columns with one index the last.
  std::vector<std::pair<std::string, std::string>> expressionsByIndex() const;

 private:
  std::vector<OwnColumn> columns_;
  std::vector<std::weak_ptr<SQLDataSourceColumn>> removed_;
};
