#pragma once

#include <string>
#include <vector>

#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "support/fake_database.h"

namespace mox_test {

/// What a filter binds to a statement, the first value at `firstPosition`, in the words of
/// FakeDatabase::binds; the counter that it leaves behind comes last: "counter 2".
inline std::vector<std::string> bindsOf(moxDataMatrixSQLFilter const& filter,
                                        int firstPosition = 0) {
  FakeDatabase database;
  auto const statement = database.prepare("", "", "where");
  int counter = firstPosition;
  filter.bind(statement, &counter);
  auto binds = database.binds();
  binds.push_back("counter " + std::to_string(counter));
  return binds;
}

using Binds = std::vector<std::string>;

}  // namespace mox_test
