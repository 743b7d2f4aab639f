#pragma once

#include <cstddef>
#include <vector>

#include "zyn/operations/block_kernels.h"
#include "zyn/operations/block_program.h"

/// Runs a program over one block of rows after another. Several machines may share the memory of
/// their places, as none keeps anything there between blocks.
class BlockMachine {
 public:
  /// The program, and the columns that it reads, must outlive the machine.
  BlockMachine(BlockProgram program, std::vector<double>& places);

  /// How many rows a block may have.
  std::size_t rowsAtOnce() const { return rowsAtOnce_; }

  struct Outcome {
    double const* values;  // valid until anything is run or a column changes; null without a result
    std::size_t rows;      // how many there are: those before the first that divides by zero
  };

  /// `count` is at least 1 and at most rowsAtOnce().
  Outcome run(std::size_t first, std::size_t count);

 private:
  double* placeAt(std::size_t index) { return places_.data() + index * stride_; }
  BlockOperand operandFor(Operand const& operand) const;
  double const* valuesOf(Operand const& operand, std::size_t count);

  BlockProgram program_;
  std::vector<double>& places_;
  std::vector<double const*> values_;  // where each place's values lie
  std::size_t rowsAtOnce_;
  std::size_t stride_;  // from one place to the next, in values
};
