#pragma once

#include <cstdint>
#include <memory>

class moxDataMatrixColumn;

/// A column to sort by, seen as numbers that order as its rows do. A row's number comes in pieces
/// of up to 64 bits, the first piece deciding first; together they tell rows apart exactly, or, for
/// long texts, their beginning. Pieces are as narrow as the column's values allow. Nothing changes
/// after it is made.
class SortColumn {
 public:
  virtual ~SortColumn() = default;

  /// How many pieces a row's number has; may be 0, for a column whose rows are all equal.
  virtual unsigned int pieceCount() const = 0;

  /// Width of a piece: 1 to 64.
  virtual unsigned int pieceBits(unsigned int piece) const = 0;

  /// Writes the piece of the rows from `firstRow` on, `count` of them.
  virtual void encode(unsigned int piece, std::uint32_t firstRow, std::uint32_t count,
                      std::uint64_t* codes) const = 0;

  /// Whether the pieces tell all: rows with equal pieces are equal.
  virtual bool isExact() const = 0;

  /// Order of two rows by their whole values: negative, 0 or positive.
  virtual int compare(std::uint32_t left, std::uint32_t right) const = 0;
};

/// The first `rows` rows of one of the module's own columns, which must outlive the result and stay
/// as it is.
std::unique_ptr<SortColumn> makeSortColumn(moxDataMatrixColumn& column, std::uint32_t rows,
                                           bool descending);
