#pragma once

#include <memory>
#include <string>

#include "mox/core/database_connection.h"
#include "mox/core/plugin_base.h"

/// One condition of a `where`: its text, with `?` for each value, and the values. Values never
/// stand in the text. A filter is a plain holder of values: shared for reading by anyone, changed
/// by nobody while a run uses it.
class moxDataMatrixSQLFilter : public virtual moxPluginBase {
 public:
  /// The condition; empty when it adds none because the statement itself holds its mark.
  virtual std::string getSql() const = 0;

  /// Binds the values, in the order of the marks, from position `*counter` on, and moves the
  /// counter past them.
  virtual void bind(std::shared_ptr<moxDatabaseConnection::PreparedStatement> const& statement,
                    int* counter) const = 0;

  /// What is tested. `column` is a column's name; or an expression with one "@", which stands for
  /// the operator and its marks (`table` is then not used); or, with "{{", the mark of a value in
  /// the statement's own text. An empty `table` leaves the column bare.
  virtual void setColumnName(std::string const& table, std::string const& column) = 0;
  virtual std::string getColumnName() const = 0;
  virtual std::string getTableName() const = 0;
};

/// The four families by kind of value.
class moxDataMatrixSQLIntegerFilter : public virtual moxDataMatrixSQLFilter {};
class moxDataMatrixSQLDoubleFilter : public virtual moxDataMatrixSQLFilter {};
class moxDataMatrixSQLTextFilter : public virtual moxDataMatrixSQLFilter {};
class moxDataMatrixSQLDateFilter : public virtual moxDataMatrixSQLFilter {};
