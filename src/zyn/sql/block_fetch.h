#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/zyn/matrix/data_matrix_column.h"

/// Reads all rows of an executed statement into the columns, one a field, empty where the field is
/// left out: many rows a call, straight into the columns' arrays. The columns are left equal to
/// what the fetch helpers make of the same rows, and keep whole blocks when the statement fails on
/// the way.
///
/// False, having read nothing, when the helpers must do it: the statement does not offer blocks, a
/// column is of foreign make, or two fields go to the same column, whose values then alternate row
/// by row. `expectedRows` is how many rows to make room for, 0 for unknown.
bool fetchByBlocks(moxDatabaseConnection::PreparedStatement& statement,
                   std::vector<std::shared_ptr<moxDataMatrixColumn>> const& columns,
                   std::size_t expectedRows);
