#pragma once

#include <set>
#include <string>

#include "mox/zyn/sql/data_matrix_sql_filter.h"

/// "column in (?, ?)". Values are kept once each and bound in ascending order. Without values the
/// condition is "1=0": who ticks nothing gets nothing. With the mark of a value in the statement's
/// own text as column there is no condition, and one value is bound: the first, or a null.
class moxDataMatrixSQLIntegerInFilter : public virtual moxDataMatrixSQLIntegerFilter {
 public:
  virtual void pushVal(int value) = 0;
  virtual void clear() = 0;

  /// "not in"; without values the condition stays "1=0".
  virtual void setNot(bool negated) = 0;
  virtual bool getNot() const = 0;

  virtual std::set<int> getValues() const = 0;
};

class moxDataMatrixSQLDoubleInFilter : public virtual moxDataMatrixSQLDoubleFilter {
 public:
  /// A NaN is ignored: it equals nothing that a database holds.
  virtual void pushVal(double value) = 0;
  virtual void clear() = 0;
};

class moxDataMatrixSQLTextInFilter : public virtual moxDataMatrixSQLTextFilter {
 public:
  virtual void pushVal(std::string const& value) = 0;
  virtual void clear() = 0;
};
