#pragma once

#include <memory>
#include <vector>

#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

/// The columns of a matrix, in order, each that has a formatter as a column of the texts that the
/// formatter gives. Nulls stay nulls. The columns share those of the matrix, which must not grow
/// any more, and belong to one thread.
std::vector<std::shared_ptr<moxDataMatrixColumn const>> formattedColumnsOf(
    moxDataMatrix const& matrix);

/// The kind of the values behind a column: its own, or that of the column whose texts it shows.
moxDataMatrixTypes::Types typeOfValues(moxDataMatrixColumn const& column);

}  // namespace mox::cli
