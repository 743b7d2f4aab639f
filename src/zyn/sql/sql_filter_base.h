#pragma once

#include <memory>
#include <string>

#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "zyn/sql/sql_condition.h"

/// What every filter shares: the column it tests. `Interface` is the published interface of the
/// filter.
template <class Interface>
class SQLFilterBase : public virtual Interface {
 public:
  using Statement = std::shared_ptr<moxDatabaseConnection::PreparedStatement>;

  void setColumnName(std::string const& table, std::string const& column) override {
    tested_ = {table, column};
  }
  std::string getColumnName() const override { return tested_.column; }
  std::string getTableName() const override { return tested_.table; }

 protected:
  ColumnReference const& tested() const { return tested_; }

 private:
  ColumnReference tested_;
};
