#pragma once

#include <string>

#include "mox/core/date.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

/// "column between ? and ?", or with one bound ">= ?" or "<= ?". Both bounds belong to the range.
/// Without bounds the condition is the bare column.
class moxDataMatrixSQLIntegerRangeFilter : public virtual moxDataMatrixSQLIntegerFilter {
 public:
  /// `inForce` false takes the bound away; likewise in the filters below.
  virtual void setMin(int value, bool inForce) = 0;
  virtual void setMax(int value, bool inForce) = 0;
};

class moxDataMatrixSQLDoubleRangeFilter : public virtual moxDataMatrixSQLDoubleFilter {
 public:
  virtual void setMin(double value, bool inForce) = 0;
  virtual void setMax(double value, bool inForce) = 0;
};

class moxDataMatrixSQLTextRangeFilter : public virtual moxDataMatrixSQLTextFilter {
 public:
  virtual void setMin(std::string const& value, bool inForce) = 0;
  virtual void setMax(std::string const& value, bool inForce) = 0;
};

/// The same over "date(column)".
class moxDataMatrixSQLDateRangeFilter : public virtual moxDataMatrixSQLDateFilter {
 public:
  /// The empty date takes the bound away.
  virtual void setMin(date_t const& value) = 0;
  virtual void setMax(date_t const& value) = 0;
};
