#pragma once

#include <cstddef>

#include "zyn/operations/block_program.h"

/// An operand's values over a block: an array, or one value for all rows.
struct BlockOperand {
  double const* values;  // null for a constant
  double constant;
};

/// Computes one operation for `count` rows. `results` must not overlap the operands. The number of
/// rows before the first that divides by zero, `count` when none does; results from that row on
/// mean nothing.
std::size_t applyToBlock(moxExParser::Opcode opcode, BlockOperand const& left,
                         BlockOperand const& right, double* results, std::size_t count);

/// The column's values `offset` rows before each of the rows from `first` on; 0 for nulls and for
/// rows that do not exist. They are put into `place`, or lie in the column's own array.
double const* loadBlock(BlockProgram::Load const& load, std::size_t first, std::size_t count,
                        double* place);

/// The same with an offset for each row.
void lookUpBlock(ReadColumn const& column, BlockOperand const& offsets, std::size_t first,
                 std::size_t count, double* results);
