#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/sql_data_source_column.h"

class moxDataMatrixSQLFilter;

/// A fixed condition on a column of the source that is changed.
class moxFilterDataSourceSpec : public virtual moxPluginBase {
 public:
  /// Where the values come from. The numbers are part of the interface.
  enum Tipos {
    kValor = 0,     // a list in the definition
    kSql = 1,       // a statement, its first column
    kSemFiltro = 2  // no condition: a user's filter on the column is switched off
  };

  virtual void setSQL(std::string const& sql) = 0;

  /// The column that the condition is on.
  virtual moxSQLDataSourceColumn::SQLColum getColumnOrigin() const = 0;
  virtual void setColumnOrigin(moxSQLDataSourceColumn::SQLColum const& column) = 0;

  virtual void setIds(std::set<int> const& ids) = 0;
  virtual std::set<int> getIds() = 0;
  virtual Tipos getTipo() const = 0;
  virtual std::string getSQL() = 0;

  /// The registered name of the filter specification that the condition answers.
  virtual void setPluginFilter(std::string const& pluginFilter) = 0;
  virtual std::string getPluginFilter() const = 0;

  /// A new filter with the condition's values; empty where there is no condition. A statement is
  /// run by this call.
  virtual std::shared_ptr<moxDataMatrixSQLFilter> getDataMatrixFilter() const = 0;

  virtual void setTipo(Tipos tipo) = 0;
};

/// A change to another source's statement: text that is added, columns, fixed conditions. Works as
/// a member of a group. Registered as "moxFilterDataSource".
class moxFilterDataSource : public virtual moxDataSource {
 public:
  /// Whether the columns are added to those of the source, or stand in their place. The numbers are
  /// part of the interface.
  enum RetornoColunasSelect { kAdiciona = 0, kSubstitui = 1 };

  using Column = std::shared_ptr<moxSQLDataSourceColumn>;
  using ConstColumn = std::shared_ptr<moxSQLDataSourceColumn const>;
  using Spec = std::shared_ptr<moxFilterDataSourceSpec>;
  using ConstSpec = std::shared_ptr<moxFilterDataSourceSpec const>;
  using FieldInfo = moxDatabaseConnection::FieldInfo;

  /// The source that is changed.
  virtual void setDataSourceName(std::string const& dataSourceName) = 0;
  virtual std::string getDataSourceName() const = 0;

  /// Forgets which source is changed.
  virtual void reset() = 0;

  virtual std::vector<Spec> getFiltersSpec() = 0;
  virtual void setFiltersSpec(std::vector<Spec> const& specs) = 0;
  virtual std::vector<ConstSpec> getFiltersSpec() const = 0;

  /// Text for the statement, each piece without its key word; only the joins bring theirs.
  virtual void setSQLJoin(std::string const& join) = 0;
  virtual std::string getSQLJoin() const = 0;
  virtual void setSQLWhere(std::string const& where) = 0;
  virtual std::string getSQLWhere() const = 0;
  virtual void setSQLGroup(std::string const& group) = 0;
  virtual std::string getSQLGroup() const = 0;
  virtual void setSQLOrder(std::string const& order) = 0;
  virtual std::string getSQLOrder() const = 0;

  /// Its own columns only.
  virtual std::vector<Column> columns() = 0;
  virtual std::vector<ConstColumn> columns() const = 0;
  virtual void removeColumn(Column column) = 0;
  virtual Column findColumn(std::string const& table, std::string const& column) = 0;
  virtual ConstColumn findColumn(std::string const& table, std::string const& column) const = 0;
  virtual Column createColumn(FieldInfo const* info) = 0;

  virtual void setTipoRetornoSelect(RetornoColunasSelect tipo) = 0;
  virtual RetornoColunasSelect getTipoRetornoSelect() const = 0;

  /// The select list of its own columns; empty without columns.
  virtual std::string getSelectPlain() const = 0;
};

/// The run of a filter source: the matrix of the changed source, under a second name.
class moxFilterDataSourceExecution : public virtual moxDataSourceExecution {};
