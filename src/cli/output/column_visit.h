#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "mox/core/blob.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

/// Calls `visitor` with the column as its typed interface, once, so that the loop over its cells
/// knows the type. All calls of the visitor give the same type.
template <class Visitor>
auto visitColumn(moxDataMatrixColumn const& column, Visitor&& visitor) {
  switch (column.getType()) {
    case moxDataMatrixTypes::Int:
      return visitor(dynamic_cast<moxDataMatrixTypedColumn<int> const&>(column));
    case moxDataMatrixTypes::Double:
      return visitor(dynamic_cast<moxDataMatrixTypedColumn<double> const&>(column));
    case moxDataMatrixTypes::Text:
      return visitor(dynamic_cast<moxDataMatrixTypedColumn<std::string> const&>(column));
    case moxDataMatrixTypes::Date:
      return visitor(dynamic_cast<moxDataMatrixTypedColumn<datetime_t> const&>(column));
    case moxDataMatrixTypes::Blob:
      return visitor(
          dynamic_cast<moxDataMatrixTypedColumn<std::shared_ptr<moxReadBlob>> const&>(column));
  }
  throw std::logic_error("a column of an unknown kind");
}

/// Whether a column of moments holds any time of day but midnight, among all its rows.
bool hasTimes(moxDataMatrixTypedColumn<datetime_t> const& column);

/// A blob's bytes; empty for an empty pointer.
std::string_view bytesOf(std::shared_ptr<moxReadBlob> const& blob);

/// The columns of a matrix, in order.
std::vector<std::shared_ptr<moxDataMatrixColumn const>> columnsOf(moxDataMatrix const& matrix);

}  // namespace mox::cli
