#pragma once

#include <initializer_list>
#include <span>

#include "escola/generator/cell.h"
#include "escola/generator/tables.h"

namespace escola {

/// Where generated rows go. Rows of one table come in ascending order of its key; rows of different
/// tables come mixed, so a row may come before one that it refers to.
class RowSink {
 public:
  virtual ~RowSink() = default;

  /// Takes one row, a cell for each column of the table. Texts are valid only during the call.
  virtual void row(TableId table, std::span<Cell const> cells) = 0;

  void row(TableId table, std::initializer_list<Cell> cells) {
    row(table, std::span<Cell const>(cells.begin(), cells.size()));
  }
};

}  // namespace escola
