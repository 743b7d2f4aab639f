#pragma once

#include "mox/zyn/expressions/expression_operation.h"

namespace moxExParser {

enum class Opcode {
  kConstant,
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kReminder,
  kExp,
  kFloor,
  kRound,
  kCeil,
  kAbs,
};

/// An operation of the language itself, which says what it is: who compiles an expression need not
/// run it to know.
class BuiltinOperation : public moxExpressionOperation {
 public:
  virtual Opcode opcode() const = 0;
};

}  // namespace moxExParser
