#pragma once

#include <string_view>

/// What can be told of a statement's text without understanding it: its words outside of quotes,
/// comments, parentheses and `case ... end`, as MariaDB reads them. Tokens `{{name}}` are passed
/// over wherever they stand. What is in doubt counts as found: the shape serves to keep a condition
/// from being widened.
struct StatementShape {
  /// The part of a statement that a text appended to it would belong to.
  enum class Clause {
    kNone,   // none of the words below was seen
    kOn,     // of a join
    kWhere,  // or having
    kOther   // group, order, limit
  };

  Clause lastClause = Clause::kNone;
  bool weakOperatorInLastClause = false;  // "or", "xor" or "||": weaker than an "and" behind it
  bool weakOperatorInCondition = false;   // in any where or having
  bool weakOperator = false;              // anywhere
  bool outerJoin = false;                 // its "on" does not restrict the rows
  bool setOperation = false;              // union, intersect or except, in the last statement
  bool setOperationAtFirst = false;       // the same in the first one
  bool severalStatements = false;         // there is a ";"
  bool openEnd = false;                   // it ends within a comment or a quote
  bool balanced = true;                   // each parenthesis has its other half
};

StatementShape shapeOf(std::string_view text);
