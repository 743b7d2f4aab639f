#pragma once

#include <string>
#include <vector>

#include "core/database/sql_tokens.h"

namespace mox::core {

/// Part of a token list: from `begin` up to before `end`.
struct TokenRange {
  int begin = 0;
  int end = 0;

  bool isEmpty() const { return begin >= end; }
};

/// An entry of a select list.
struct SelectItem {
  TokenRange expression;  // without the alias
  std::string name;       // alias, or the column's own name; empty for an expression without alias
  bool isStar = false;    // `*` or `t.*`
  std::string starOf;     // `t`, or empty
};

/// A table or subquery that a select reads.
struct SelectSource {
  std::string alias;    // as the statement calls it: the table's name where no alias is given
  std::string table;    // empty for a subquery
  TokenRange subquery;  // empty for a table
  std::vector<std::string> names;  // of the subquery's columns where `with x (a, b)` gives them
};

/// The first select of a reading statement, as far as its result depends on it. Built from tokens
/// alone, without a grammar of expressions: what is not understood is left out.
struct SelectShape {
  std::vector<SelectItem> items;
  std::vector<SelectSource> sources;
  std::vector<SelectSource> known;  // named subqueries that its own subqueries may read
};

/// `known` are the named subqueries (`with`) that the text around it offers.
SelectShape parseSelect(SqlTokens const& tokens, TokenRange range,
                        std::vector<SelectSource> const& known = {});

}  // namespace mox::core
