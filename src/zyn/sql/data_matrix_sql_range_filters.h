#pragma once

#include <optional>
#include <string>

#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "zyn/sql/sql_filter_base.h"

/// A range over values of one kind. The published setters differ from kind to kind and stand in the
/// classes below.
template <class Interface, class Value, Comparison comparison = Comparison::kWholeValue>
class SQLRangeFilter : public SQLFilterBase<Interface> {
 public:
  using typename SQLFilterBase<Interface>::Statement;

  std::string getSql() const override {
    return conditionOn(this->tested(), rangeOperator(min_.has_value(), max_.has_value()),
                       comparison);
  }

  void bind(Statement const& statement, int* counter) const override {
    if (min_) {
      bindNext(*statement, counter, *min_);
    }
    if (max_) {
      bindNext(*statement, counter, *max_);
    }
  }

 protected:
  static std::optional<Value> bound(Value const& value, bool inForce) {
    return inForce ? std::optional<Value>(value) : std::nullopt;
  }

  std::optional<Value> min_;
  std::optional<Value> max_;
};

class DataMatrixSQLIntegerRangeFilter final
    : public SQLRangeFilter<moxDataMatrixSQLIntegerRangeFilter, int> {
 public:
  std::string name() const override { return "moxDataMatrixSQLIntegerRangeFilter"; }
  void setMin(int value, bool inForce) override { min_ = bound(value, inForce); }
  void setMax(int value, bool inForce) override { max_ = bound(value, inForce); }
};

class DataMatrixSQLDoubleRangeFilter final
    : public SQLRangeFilter<moxDataMatrixSQLDoubleRangeFilter, double> {
 public:
  std::string name() const override { return "moxDataMatrixSQLDoubleRangeFilter"; }
  void setMin(double value, bool inForce) override { min_ = bound(value, inForce); }
  void setMax(double value, bool inForce) override { max_ = bound(value, inForce); }
};

class DataMatrixSQLTextRangeFilter final
    : public SQLRangeFilter<moxDataMatrixSQLTextRangeFilter, std::string> {
 public:
  std::string name() const override { return "moxDataMatrixSQLTextRangeFilter"; }
  void setMin(std::string const& value, bool inForce) override { min_ = bound(value, inForce); }
  void setMax(std::string const& value, bool inForce) override { max_ = bound(value, inForce); }
};

class DataMatrixSQLDateRangeFilter final
    : public SQLRangeFilter<moxDataMatrixSQLDateRangeFilter, date_t, Comparison::kDayOnly> {
 public:
  std::string name() const override { return "moxDataMatrixSQLDateRangeFilter"; }
  void setMin(date_t const& value) override { min_ = bound(value, static_cast<bool>(value)); }
  void setMax(date_t const& value) override { max_ = bound(value, static_cast<bool>(value)); }
};
