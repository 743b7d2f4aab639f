#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "support/databases.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

namespace mox_test {

using UnitColumn = std::pair<std::string, std::string>;

/// A loader as a module's user has it: asked of the registry, on the application's own database.
class LoaderOn {
 public:
  explicit LoaderOn(std::string const& databaseUrl) : host_(databaseUrl), matrix_(matrix({})) {
    loader_ = host_.get<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader");
    loader_->setDataMatrix(matrix_);
  }

  TestHost& host() { return host_; }
  moxDataMatrixSQLLoader& loader() { return *loader_; }

  /// Runs an unrestricted statement into a new matrix, or into the one given.
  std::shared_ptr<moxDataMatrix> load(std::string const& sql,
                                      std::shared_ptr<moxDataMatrix> target = matrix({})) {
    loader_->setSql(sql, {}, "", false);
    loader_->setDataMatrix(matrix_ = std::move(target));
    loader_->execute();
    return matrix_;
  }

  std::shared_ptr<moxDataMatrixSQLIntegerInFilter> among(UnitColumn const& column,
                                                         std::vector<int> const& values) {
    auto filter = host_.get<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter");
    filter->setColumnName(column.first, column.second);
    for (int const value : values) {
      filter->pushVal(value);
    }
    return filter;
  }

 private:
  TestHost host_;
  std::shared_ptr<moxDataMatrix> matrix_;
  std::shared_ptr<moxDataMatrixSQLLoader> loader_;
};

/// Base of loader tests that every database must pass; each has an empty one.
class LoaderOnEveryDatabase : public OnEveryDatabase {
 protected:
  LoaderOn on_{db.url()};
};

}  // namespace mox_test
