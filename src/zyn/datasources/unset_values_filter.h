#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/zyn/sql/data_matrix_sql_filter.h"

/// Stands for the values that a user left out: a null for each of the marks that would have taken
/// them. Marks are part of the statement, so that it has no condition of its own.
class UnsetValuesFilter final : public virtual moxDataMatrixSQLFilter {
 public:
  UnsetValuesFilter(std::string column, int count) : column_(std::move(column)), count_(count) {}

  std::string name() const override { return "UnsetValuesFilter"; }
  std::string getSql() const override { return {}; }
  void bind(std::shared_ptr<moxDatabaseConnection::PreparedStatement> const& statement,
            int* counter) const override {
    for (int i = 0; i < count_; ++i) {
      statement->bindNull((*counter)++);
    }
  }
  void setColumnName(std::string const&, std::string const& column) override { column_ = column; }
  std::string getColumnName() const override { return column_; }
  std::string getTableName() const override { return {}; }

 private:
  std::string column_;
  int const count_;
};
