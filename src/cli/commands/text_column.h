#pragma once

#include <memory>
#include <string>

#include "cli/host.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

/// Adds an empty column of texts to a listing.
inline std::shared_ptr<moxDataMatrixTextColumn> addTextColumn(Host& host, moxDataMatrix& matrix,
                                                              std::string const& name) {
  auto column = host.make<moxDataMatrixTextColumn>("moxDataMatrixTextColumn");
  column->setName(name);
  matrix.addColumn(column);
  return column;
}

}  // namespace mox::cli
