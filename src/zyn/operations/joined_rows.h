#pragma once

#include <cstddef>
#include <cstdint>

#include "zyn/operations/row_matcher.h"

/// What joining a source makes of the rows so far. First come those that stay, in their order, each
/// beside the first source row that it meets; behind them, in the order of these, a copy for each
/// further one.
struct JoinedRows {
  RowOrder before;         // of each row: which of the rows so far it was; empty for unchanged
  RowOrder source;         // of each row: the source's row beside it
  std::size_t stayed = 0;  // how many come first
  bool unchanged = false;  // every row stayed, and none was copied

  /// The source's row beside the row that stayed of which a row is a copy; a row that stayed is its
  /// own.
  std::uint32_t firstBeside(std::size_t row) const;
};

/// Every row so far, of `rows`, with every row of a source that has some. Throws moxError for more
/// rows than a result may have, before they are made; likewise below.
JoinedRows crossedRows(std::uint32_t rows, std::uint32_t sourceRows);

/// The rows so far that meet some, without copies. Afterwards `matches` tells of those that stayed,
/// and is empty where each list is a single row, so that no copies will come of it.
JoinedRows rowsThatMeet(RowMatches& matches);

/// Adds the copies. `matches` tells what each row that stayed meets after the first one; empty for
/// nothing.
void addCopies(JoinedRows& joined, RowMatches const& matches);
