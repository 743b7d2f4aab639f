#include "zyn/operations/block_machine.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kBlockRows = 512;
constexpr std::size_t kMostValues = std::size_t{1} << 17;  // 1 MiB of places

/// Blocks small enough that all places lie in the processor's cache, and that an expression with
/// very many of them takes no more memory than one with few.
std::size_t blockRowsFor(BlockProgram const& program) {
  std::size_t const fitting = kMostValues / (program.placeCount + 1);
  std::size_t const rows = std::min({kBlockRows, fitting, program.rowsAtOnce});
  return std::max<std::size_t>(rows, 1);
}

/// Places that stood a page apart, as columns' blocks do, would press into the same few lines of
/// the cache; so there are some lines more between them.
std::size_t strideFor(std::size_t rowsAtOnce) {
  constexpr std::size_t kApart = 40;  // five lines
  return rowsAtOnce < kBlockRows ? rowsAtOnce : rowsAtOnce + kApart;
}

}  // namespace

BlockMachine::BlockMachine(BlockProgram program, std::vector<double>& places)
    : program_(std::move(program)),
      places_(places),
      values_(program_.placeCount),
      rowsAtOnce_(blockRowsFor(program_)),
      stride_(strideFor(rowsAtOnce_)) {
  std::size_t const wanted = (program_.placeCount + 1) * stride_;  // one for a constant result
  places_.resize(std::max(places_.size(), wanted));
}

BlockOperand BlockMachine::operandFor(Operand const& operand) const {
  return {operand.isConstant() ? nullptr : values_[operand.place], operand.constant};
}

double const* BlockMachine::valuesOf(Operand const& operand, std::size_t count) {
  if (!operand.isConstant()) {
    return values_[operand.place];
  }
  double* const place = placeAt(program_.placeCount);
  std::fill(place, place + count, operand.constant);
  return place;
}

BlockMachine::Outcome BlockMachine::run(std::size_t first, std::size_t count) {
  for (std::size_t i = 0; i < program_.loads.size(); ++i) {
    values_[i] = loadBlock(program_.loads[i], first, count, placeAt(i));
  }
  std::size_t rows = program_.alwaysDividesByZero ? 0 : count;
  for (auto const& instruction : program_.instructions) {
    double* const target = placeAt(instruction.target);
    BlockOperand const left = operandFor(instruction.left);
    if (instruction.column) {
      lookUpBlock(*instruction.column, left, first, count, target);
    } else {
      BlockOperand const right = operandFor(instruction.right);
      rows = std::min(rows, applyToBlock(instruction.opcode, left, right, target, count));
    }
    values_[instruction.target] = target;
  }
  return {program_.result ? valuesOf(*program_.result, count) : nullptr, rows};
}
