#pragma once

#include <string>

#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "zyn/sql/sql_filter_base.h"

class DataMatrixSQLIntegerUniqueFilter final
    : public SQLFilterBase<moxDataMatrixSQLIntegerUniqueFilter> {
 public:
  std::string name() const override { return "moxDataMatrixSQLIntegerUniqueFilter"; }
  std::string getSql() const override;
  void bind(Statement const& statement, int* counter) const override;
  void setValue(int value) override;
  void setNull() override { isNull_ = true; }

 private:
  int value_ = 0;
  bool isNull_ = false;
};

class DataMatrixSQLDoubleUniqueFilter final
    : public SQLFilterBase<moxDataMatrixSQLDoubleUniqueFilter> {
 public:
  std::string name() const override { return "moxDataMatrixSQLDoubleUniqueFilter"; }
  std::string getSql() const override;
  void bind(Statement const& statement, int* counter) const override;
  void setValue(double value) override { value_ = value; }

 private:
  double value_ = 0.0;
};

class DataMatrixSQLTextUniqueFilter final : public SQLFilterBase<moxDataMatrixSQLTextUniqueFilter> {
 public:
  std::string name() const override { return "moxDataMatrixSQLTextUniqueFilter"; }
  std::string getSql() const override;
  void bind(Statement const& statement, int* counter) const override;
  void setValue(std::string const& value) override { value_ = value; }
  std::string getText() const override;

 private:
  std::string value_;
};

class DataMatrixSQLDateUniqueFilter final : public SQLFilterBase<moxDataMatrixSQLDateUniqueFilter> {
 public:
  std::string name() const override { return "moxDataMatrixSQLDateUniqueFilter"; }
  std::string getSql() const override;
  void bind(Statement const& statement, int* counter) const override;
  void setValue(date_t const& value) override;
  void setNull() override { isNull_ = true; }

 private:
  date_t value_;
  bool isNull_ = false;
};

class DataMatrixSQLIntegerUniqueSQLFilter final
    : public SQLFilterBase<moxDataMatrixSQLIntegerUniqueSQLFilter> {
 public:
  std::string name() const override { return "moxDataMatrixSQLIntegerUniqueSQLFilter"; }
  std::string getSql() const override;
  void bind(Statement const& statement, int* counter) const override;
  void setValue(int value) override { value_ = value; }

 private:
  int value_ = 0;
};
