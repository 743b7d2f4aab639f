#pragma once

#include <cstddef>
#include <deque>
#include <string>

#include "core/database/mariadb_field.h"

namespace mox::core {

/// Rows of a result that were taken off the line before they were read, in their order. Holds them
/// packed, and gives the memory back as they are read.
class MariadbRowStore {
 public:
  bool empty() const { return chunks_.empty(); }

  /// Appends the values of a row, which is complete.
  void push(MariadbRow const& row);

  /// Moves the first row into `row`, made for the same fields. Must not be empty.
  void pop(MariadbRow& row);

  void clear();

 private:
  std::deque<std::string> chunks_;  // whole rows each
  std::size_t position_ = 0;        // of the first row, in the first chunk
};

}  // namespace mox::core
