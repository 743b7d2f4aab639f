#pragma once

#include <memory>
#include <string>

#include "mox/zyn/sql/data_matrix_sql_filter.h"

/// The condition that no row meets: stands for the values of a source that has no rows. It is on no
/// column, so that no token and no rule about columns is ever met by it.
class MissingDataFilter final : public virtual moxDataMatrixSQLFilter {
 public:
  std::string name() const override { return "MissingDataFilter"; }
  std::string getSql() const override { return "0=1"; }
  void bind(std::shared_ptr<moxDatabaseConnection::PreparedStatement> const&, int*) const override {
  }
  void setColumnName(std::string const&, std::string const&) override {}
  std::string getColumnName() const override { return {}; }
  std::string getTableName() const override { return {}; }
};
