#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "mox/zyn/matrix/data_matrix.h"
#include "support/fake_database.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "zyn/sql/data_matrix_sql_in_filters.h"
#include "zyn/sql/data_matrix_sql_loader.h"
#include "zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox_test {

using Texts = std::vector<std::string>;
using FieldType = moxDatabaseConnection::FieldType;

/// A column pair that leaves a statement unrestricted.
inline std::pair<std::string, std::string> const kNoUnitColumn;

/// A loader on a fake database, with an empty matrix, in an application without a session.
class LoaderTest : public testing::Test {
 protected:
  LoaderTest() : matrix_(matrix({})) {
    loader_.setDBConnection(&database_);
    loader_.setDataMatrix(matrix_);
  }

  static std::shared_ptr<DataMatrixSQLIntegerUniqueFilter> equals(std::string const& column,
                                                                  int value) {
    auto filter = std::make_shared<DataMatrixSQLIntegerUniqueFilter>();
    filter->setColumnName("", column);
    filter->setValue(value);
    return filter;
  }

  static std::shared_ptr<DataMatrixSQLIntegerInFilter> among(std::string const& table,
                                                             std::string const& column,
                                                             std::vector<int> const& values) {
    auto filter = std::make_shared<DataMatrixSQLIntegerInFilter>();
    filter->setColumnName(table, column);
    for (int const value : values) {
      filter->pushVal(value);
    }
    return filter;
  }

  TestHost host_;
  FakeDatabase database_;
  std::shared_ptr<moxDataMatrix> matrix_;
  DataMatrixSQLLoader loader_;
};

}  // namespace mox_test
