#pragma once

#include <memory>
#include <string>

#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

/// A condition that keeps `columnName` of a query to the values of another source's column. Nulls
/// are no values: a column of nothing but nulls lets no row pass, and neither does one without
/// rows. Empty, which is no restriction, for a column of dates or blobs.
std::shared_ptr<moxDataMatrixSQLFilter> filterByValues(moxDataMatrixColumn& values,
                                                       std::string const& columnName);
