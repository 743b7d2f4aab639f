#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "mox/zyn/expressions/expression_operation.h"
#include "zyn/expressions/builtin_operation.h"
#include "zyn/matrix/column_storage.h"

class ColumnOperation;

/// A column that an expression reads: the storage of one of the module's own columns.
struct ReadColumn {
  enum class Origin {
    kInput,    // stands there before anything is computed
    kEarlier,  // computed before this column, row by row
    kSelf,     // this column: only its earlier rows are there
  };

  ColumnStorage<int> const* ints = nullptr;  // one of these, or neither: then every value is 0
  ColumnStorage<double> const* doubles = nullptr;
  Origin origin = Origin::kInput;

  bool hasNumbers() const { return ints != nullptr || doubles != nullptr; }
  std::size_t rows() const {
    if (ints != nullptr) {
      return ints->size();
    }
    return doubles != nullptr ? doubles->size() : 0;
  }
};

/// A constant, or a place of values, one a row.
struct Operand {
  static constexpr std::uint32_t kConstant = std::numeric_limits<std::uint32_t>::max();

  std::uint32_t place = kConstant;
  double constant = 0.0;  // valid for a constant

  bool isConstant() const { return place == kConstant; }
};

/// An expression in a form that runs over blocks of rows: values of columns are brought into
/// places, then instructions work from place to place. It is the same for every row, as how many
/// values lie on an evaluation's stack does not depend on them.
struct BlockProgram {
  /// A column's values at a fixed number of rows before each row, brought into a place.
  struct Load {
    ReadColumn column;
    std::int64_t offset;
  };

  /// One operation, or the reading of a column whose row offset is computed. The target is none of
  /// its operands.
  struct Instruction {
    moxExParser::Opcode opcode;
    std::optional<ReadColumn> column;  // read at offset `left`; then the opcode does not count
    Operand left;
    Operand right;
    std::uint32_t target;
  };

  std::vector<Load> loads;  // into the places from 0 on
  std::vector<Instruction> instructions;
  std::uint32_t placeCount = 0;
  std::optional<Operand> result;  // empty: the expression gives no value, in any row
  bool alwaysDividesByZero = false;

  /// How many rows may run at once: values of the column itself must be there before they are read.
  std::size_t rowsAtOnce = std::numeric_limits<std::size_t>::max();
};

/// What a column operation reads; empty for a column whose storage cannot be taken.
using ColumnResolver = std::function<std::optional<ReadColumn>(ColumnOperation const&)>;

/// Compiles the operations of an expression. Empty when one of them is not known: the expression is
/// then evaluated row by row.
std::optional<BlockProgram> compileExpression(
    std::vector<std::unique_ptr<moxExpressionOperation>> const& operations,
    ColumnResolver const& resolve);
