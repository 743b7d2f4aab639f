#pragma once

#include <cmath>
#include <set>
#include <string>

#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "zyn/sql/sql_filter_base.h"

/// A list of values of one kind. The published setters differ from kind to kind and stand in the
/// classes below.
template <class Interface, class Value>
class SQLInFilter : public SQLFilterBase<Interface> {
 public:
  using typename SQLFilterBase<Interface>::Statement;

  std::string getSql() const override { return inCondition(this->tested(), values_.size(), false); }

  void bind(Statement const& statement, int* counter) const override {
    for (auto const& value : values_) {
      bindNext(*statement, counter, value);
    }
  }

  void clear() override { values_.clear(); }

 protected:
  std::set<Value> values_;
};

/// Open to derivation: the loader's own restriction to business units is such a list with a further
/// rule.
class DataMatrixSQLIntegerInFilter : public SQLInFilter<moxDataMatrixSQLIntegerInFilter, int> {
 public:
  std::string name() const override { return "moxDataMatrixSQLIntegerInFilter"; }

  std::string getSql() const override {
    return isStatementMark(tested()) ? std::string()
                                     : inCondition(tested(), values_.size(), negated_);
  }

  /// A mark of the statement's own text takes exactly one value: the smallest, or a null.
  void bind(Statement const& statement, int* counter) const override {
    if (!isStatementMark(tested())) {
      SQLInFilter::bind(statement, counter);
    } else if (values_.empty()) {
      bindNextNull(*statement, counter);
    } else {
      bindNext(*statement, counter, *values_.begin());
    }
  }

  void pushVal(int value) override { values_.insert(value); }
  void setNot(bool negated) override { negated_ = negated; }
  bool getNot() const override { return negated_; }
  std::set<int> getValues() const override { return values_; }

 private:
  bool negated_ = false;
};

class DataMatrixSQLDoubleInFilter final
    : public SQLInFilter<moxDataMatrixSQLDoubleInFilter, double> {
 public:
  std::string name() const override { return "moxDataMatrixSQLDoubleInFilter"; }

  /// A NaN would break the order that the set lives by, and with it every other value.
  void pushVal(double value) override {
    if (!std::isnan(value)) {
      values_.insert(value);
    }
  }
};

class DataMatrixSQLTextInFilter final
    : public SQLInFilter<moxDataMatrixSQLTextInFilter, std::string> {
 public:
  std::string name() const override { return "moxDataMatrixSQLTextInFilter"; }
  void pushVal(std::string const& value) override { values_.insert(value); }
};
