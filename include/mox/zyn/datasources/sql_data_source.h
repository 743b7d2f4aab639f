#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/sql_data_source_column.h"

class moxSearch;

/// A source that reads the database. Registered as "moxSQLDataSource". Operations that change it
/// are for loading and for editors.
class moxSQLDataSource : public virtual moxDataSource {
 public:
  /// How the statement is kept: as one text, or in pieces with the select list from the columns.
  /// The numbers are part of the interface.
  enum SQLType { kPlain = 0, kComposed = 1 };

  /// This source's `column` refers to `columnName` of the source `dataSource`.
  struct Relation {
    std::string dataSource;
    std::string columnName;
    std::shared_ptr<moxSQLDataSourceColumn> column;
  };

  using Column = std::shared_ptr<moxSQLDataSourceColumn>;
  using ConstColumn = std::shared_ptr<moxSQLDataSourceColumn const>;
  using Filter = std::shared_ptr<moxFilterSpecification>;
  using FieldInfo = moxDatabaseConnection::FieldInfo;

  /// The text of a plain statement. getSQL puts a composed one together.
  virtual void setSQL(std::string const& sql) = 0;
  virtual std::string getSQL() const = 0;

  /// The same object is kept once; removing goes by the object.
  virtual void addFilter(Filter filter) = 0;
  virtual void removeFilter(Filter filter) = 0;
  using moxDataSource::getFilters;
  virtual std::vector<Filter> getFilters() = 0;

  /// The order of the rows: columns, each with whether it is descending. A column that is there
  /// already keeps its place and direction.
  virtual void addOrderColumn(Column column, bool descending) = 0;
  virtual void removeOrderColumn(Column column) = 0;
  virtual std::vector<std::pair<Column, bool>> getOrderColumns() const = 0;

  /// The word that joins conditions to a statement; empty for "where".
  virtual void setWhereAnd(std::string const& whereAnd) = 0;
  virtual std::string getWhereAnd() const = 0;

  /// Appends a column as a database describes it; null for one without a description.
  virtual Column createColumn(FieldInfo const* info) = 0;
  virtual void removeColumn(Column column) = 0;
  virtual std::vector<Column> columns() = 0;
  virtual std::vector<ConstColumn> columns() const = 0;

  /// Takes the column out and puts it at `index` among the others, at the end when there is no such
  /// place.
  virtual void moveColumn(Column column, int index) = 0;

  /// The first column of exactly these names; empty when there is none, as for an index beyond the
  /// last.
  virtual Column findColumn(std::string const& table, std::string const& column) = 0;
  virtual Column columnAt(unsigned int index) = 0;
  virtual ConstColumn findColumn(std::string const& table, std::string const& column) const = 0;
  virtual ConstColumn columnAt(unsigned int index) const = 0;

  /// The name that a user sees.
  virtual void setHeaderName(std::string const& headerName) = 0;
  virtual std::string getHeaderName() const = 0;

  /// Columns with a role; empty where no column has it. The unit column holds a row's business
  /// unit, and with `allowNull` rows without one are everybody's.
  virtual Column getMainColumn() const = 0;
  virtual void setMainColumn(Column column) = 0;
  virtual Column getStatusColumn() const = 0;
  virtual void setStatusColumn(Column column) = 0;
  virtual std::pair<Column, bool> getUnidadeColumn() const = 0;
  virtual void setUnidadeColumn(Column column, bool allowNull) = 0;
  virtual Column getDescricaoColumn() const = 0;
  virtual void setDescricaoColumn(Column column) = 0;

  /// Puts the visible columns ahead of the others, otherwise in their order.
  virtual void normalizeColumnsVisibility() = 0;

  virtual std::vector<Relation> getRelations() const = 0;
  virtual void setRelations(std::vector<Relation> const& relations) = 0;

  /// The search built on this source; empty for none.
  virtual std::shared_ptr<moxSearch> getSearch() = 0;
  virtual void setSearch(std::shared_ptr<moxSearch> search) = 0;

  /// Whether the definition was read from the form of old files.
  virtual bool getModoCompatibilidade() const = 0;

  /// Statements to run ahead of the query, and behind it; empty for none.
  virtual void setPrefix(std::string const& prefix) = 0;
  virtual std::string getPrefix() const = 0;

  /// (expression, alias) of the columns by ascending index; of columns with one index the last.
  virtual std::vector<std::pair<std::string, std::string>> getSQLColumns() const = 0;

  /// The pieces of a composed statement, each without its key word; only the joins bring theirs.
  virtual std::string getSQLFrom() const = 0;
  virtual void setSQLFrom(std::string const& from) = 0;
  virtual std::string getSQLJoin() const = 0;
  virtual void setSQLJoin(std::string const& join) = 0;
  virtual std::string getSQLWhere() const = 0;
  virtual void setSQLWhere(std::string const& where) = 0;

  virtual SQLType getSQLTipo() const = 0;
  virtual void setSQLTipo(SQLType type) = 0;

  virtual std::string getSQLGroup() const = 0;
  virtual void setSQLGroup(std::string const& group) = 0;

  /// The select list of a composed statement; empty without columns.
  virtual std::string getSQLColumnsPlain() const = 0;

  virtual void setSufix(std::string const& sufix) = 0;
  virtual std::string getSufix() const = 0;
};
