#include "zyn/operations/block_program.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "zyn/expressions/arithmetic.h"
#include "zyn/expressions/constant_value.h"
#include "zyn/operations/column_operation.h"

namespace {

using moxExParser::Opcode;

double computed(Opcode opcode, double left, double right) {
  switch (opcode) {
    case Opcode::kAdd:
      return left + right;
    case Opcode::kSubtract:
      return left - right;
    case Opcode::kMultiply:
      return left * right;
    case Opcode::kDivide:
      return left / right;
    case Opcode::kReminder:
      return std::fmod(left, right);
    case Opcode::kExp:
      return std::pow(left, right);
    case Opcode::kFloor:
      return moxExParser::floorAt(left, moxExParser::scaleFor(right));
    case Opcode::kRound:
      return moxExParser::roundAt(left, moxExParser::scaleFor(right));
    case Opcode::kCeil:
      return moxExParser::ceilAt(left, moxExParser::scaleFor(right));
    case Opcode::kAbs:
      return std::fabs(left);
    case Opcode::kConstant:
      break;
  }
  return left;
}

bool isPlacesFunction(Opcode opcode) {
  return opcode == Opcode::kFloor || opcode == Opcode::kRound || opcode == Opcode::kCeil;
}

/// Goes through the operations as an evaluation does, with operands on the stack in place of
/// values.
class Compiler {
 public:
  explicit Compiler(ColumnResolver const& resolve) : resolve_(resolve) {}

  /// False for an operation that is not known.
  bool add(moxExpressionOperation const& operation) {
    if (auto const* const builtin =
            dynamic_cast<moxExParser::BuiltinOperation const*>(&operation)) {
      addBuiltin(*builtin);
      return true;
    }
    auto const* const column = dynamic_cast<ColumnOperation const*>(&operation);
    return column != nullptr && addColumn(*column);
  }

  /// Whether the evaluation ends here, in every row.
  bool hasEnded() const { return hasEnded_; }

  BlockProgram finish() {
    if (!stack_.empty()) {
      program_.result = stack_.back();
    }
    // Temporary places were numbered by themselves; they stand behind those of the loads.
    auto const first = static_cast<std::uint32_t>(program_.loads.size());
    for (auto& instruction : program_.instructions) {
      instruction.target += first;
      relocate(instruction.left, first);
      relocate(instruction.right, first);
    }
    if (program_.result) {
      relocate(*program_.result, first);
    }
    program_.placeCount = first + temporaries_;
    return std::move(program_);
  }

 private:
  static constexpr std::uint32_t kTemporary = std::uint32_t{1} << 31;  // marks a temporary place

  static bool isTemporary(Operand const& operand) {
    return !operand.isConstant() && (operand.place & kTemporary) != 0;
  }

  static void relocate(Operand& operand, std::uint32_t first) {
    if (isTemporary(operand)) {
      operand.place = (operand.place & ~kTemporary) + first;
    }
  }

  void addBuiltin(moxExParser::BuiltinOperation const& operation) {
    Opcode const opcode = operation.opcode();
    if (opcode == Opcode::kConstant) {
      push(static_cast<moxExParser::ConstantValue const&>(operation).value());
      return;
    }
    std::size_t const wanted = opcode == Opcode::kAbs ? 1 : 2;
    if (stack_.size() < wanted) {
      endEarly(opcode);
      return;
    }
    Operand const right = wanted == 2 ? pop() : Operand{};
    Operand const left = pop();
    apply(opcode, left, right);
  }

  /// An operator with too few values leaves the stack as it was; a function has taken the last one.
  void endEarly(Opcode opcode) {
    if (isPlacesFunction(opcode)) {
      stack_.clear();
    }
    hasEnded_ = true;
  }

  void apply(Opcode opcode, Operand const& left, Operand const& right) {
    if (opcode == Opcode::kDivide && right.isConstant() && right.constant == 0.0) {
      program_.alwaysDividesByZero = true;
      hasEnded_ = true;
    } else if (left.isConstant() && right.isConstant()) {
      push(computed(opcode, left.constant, right.constant));
    } else {
      emit({opcode, {}, left, right, 0});
    }
  }

  void emit(BlockProgram::Instruction instruction) {
    instruction.target = takeTemporary();
    release(instruction.left);
    release(instruction.right);
    stack_.push_back({instruction.target | kTemporary, 0.0});
    program_.instructions.push_back(instruction);
  }

  bool addColumn(ColumnOperation const& operation) {
    if (stack_.empty()) {
      hasEnded_ = true;
      return true;
    }
    auto const column = resolve_(operation);
    if (!column) {
      return false;
    }
    Operand const offset = pop();
    offset.isConstant() ? addLoad(*column, offset.constant) : addLookUp(*column, offset);
    return true;
  }

  /// Whether a fixed offset may lead to a value other than 0. A row of a column that is computed
  /// later than this cell is null then, which counts as 0 like a row that does not exist.
  static bool mayReach(ReadColumn const& column, double offset) {
    constexpr double kRowsThatCanBe = 4294967296.0;  // 2^32
    if (!column.hasNumbers() || !(std::fabs(offset) < kRowsThatCanBe)) {
      return false;
    }
    switch (column.origin) {
      case ReadColumn::Origin::kInput:
        return true;
      case ReadColumn::Origin::kEarlier:
        return offset >= 0;
      case ReadColumn::Origin::kSelf:
        return offset >= 1;
    }
    return false;
  }

  void addLoad(ReadColumn const& column, double writtenOffset) {
    double const offset = std::trunc(writtenOffset);
    if (!mayReach(column, offset)) {
      push(0.0);
      return;
    }
    auto const rows = static_cast<std::int64_t>(offset);
    if (column.origin == ReadColumn::Origin::kSelf) {
      program_.rowsAtOnce = std::min(program_.rowsAtOnce, static_cast<std::size_t>(rows));
    }
    auto const [found, isNew] = known_.try_emplace(
        {column.ints, column.doubles, rows}, static_cast<std::uint32_t>(program_.loads.size()));
    if (isNew) {
      program_.loads.push_back({column, rows});
    }
    stack_.push_back({found->second, 0.0});
  }

  void addLookUp(ReadColumn const& column, Operand const& offset) {
    if (!column.hasNumbers()) {
      release(offset);
      push(0.0);
      return;
    }
    if (column.origin == ReadColumn::Origin::kSelf) {
      program_.rowsAtOnce = 1;
    }
    emit({Opcode::kConstant, column, offset, {}, 0});
  }

  void push(double constant) { stack_.push_back({Operand::kConstant, constant}); }

  Operand pop() {
    Operand const top = stack_.back();
    stack_.pop_back();
    return top;
  }

  std::uint32_t takeTemporary() {
    if (free_.empty()) {
      return temporaries_++;
    }
    std::uint32_t const place = free_.back();
    free_.pop_back();
    return place;
  }

  void release(Operand const& operand) {
    if (isTemporary(operand)) {
      free_.push_back(operand.place & ~kTemporary);
    }
  }

  ColumnResolver const& resolve_;
  BlockProgram program_;
  std::vector<Operand> stack_;
  std::vector<std::uint32_t> free_;
  std::uint32_t temporaries_ = 0;
  std::map<std::tuple<void const*, void const*, std::int64_t>, std::uint32_t> known_;
  bool hasEnded_ = false;
};

}  // namespace

std::optional<BlockProgram> compileExpression(
    std::vector<std::unique_ptr<moxExpressionOperation>> const& operations,
    ColumnResolver const& resolve) {
  Compiler compiler(resolve);
  for (auto const& operation : operations) {
    if (compiler.hasEnded()) {
      break;
    }
    if (!compiler.add(*operation)) {
      return {};
    }
  }
  return compiler.finish();
}
