#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

/// What a writer writes: some rows of a matrix. Holds the columns, not the matrix.
struct ResultTable {
  std::vector<std::shared_ptr<moxDataMatrixColumn const>> columns;
  unsigned int rowCount = 0;
  std::function<void(std::int64_t rowsWritten)> onRows;  // told now and then; may be empty
  std::vector<std::string> headings;  // of a table, one a column; empty: the columns' names
  unsigned int firstRow = 0;          // all rows from here on are written that `rowCount` counts

  /// The row behind the last one that is written.
  unsigned int endRow() const { return firstRow + rowCount; }

  /// Tells `onRows`, often enough for an eye and seldom enough to cost nothing.
  void rowWritten(unsigned int row) const {
    constexpr unsigned int kStep = 4096;
    unsigned int const written = row - firstRow + 1;
    if (written % kStep == 0 && onRows) {
      onRows(written);
    }
  }
};

}  // namespace mox::cli
