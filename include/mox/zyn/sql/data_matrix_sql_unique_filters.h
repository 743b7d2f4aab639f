#pragma once

#include <string>

#include "mox/core/date.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

/// "column = ?", or "column is null".
class moxDataMatrixSQLIntegerUniqueFilter : public virtual moxDataMatrixSQLIntegerFilter {
 public:
  /// The value looked for; ends the null.
  virtual void setValue(int value) = 0;

  /// Looks for nulls; with a mark of the statement's text, binds a null.
  virtual void setNull() = 0;
};

/// "column = ?".
class moxDataMatrixSQLDoubleUniqueFilter : public virtual moxDataMatrixSQLDoubleFilter {
 public:
  virtual void setValue(double value) = 0;
};

/// "column = ?", or "column like ?" when the value holds a "%".
class moxDataMatrixSQLTextUniqueFilter : public virtual moxDataMatrixSQLTextFilter {
 public:
  virtual void setValue(std::string const& value) = 0;

  /// The value without any "%".
  virtual std::string getText() const = 0;
};

/// "date(column) = ?".
class moxDataMatrixSQLDateUniqueFilter : public virtual moxDataMatrixSQLDateFilter {
 public:
  /// The day looked for; ends the null.
  virtual void setValue(date_t const& value) = 0;

  /// Only for a mark of the statement's text, where a null is bound: the text of a condition stays
  /// the same, and its mark would be left without a value.
  virtual void setNull() = 0;
};

/// "exists (subquery)", the subquery being the column text of setColumnName; one value is bound.
class moxDataMatrixSQLIntegerUniqueSQLFilter : public virtual moxDataMatrixSQLIntegerFilter {
 public:
  virtual void setValue(int value) = 0;
};
