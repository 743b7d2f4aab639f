#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "mox/core/database_connection.h"

class date_t;

/// A column as a statement calls it. An empty table leaves the column bare.
struct ColumnReference {
  std::string table;
  std::string column;

  bool operator==(ColumnReference const&) const = default;
};

/// Whether a column's time of day takes part in a comparison.
enum class Comparison { kWholeValue, kDayOnly };

/// "table.column", or "column" without a table.
std::string qualifiedName(ColumnReference const& reference);

/// Whether the column is the name of a mark, such as "{{p}}", that stands in the statement's own
/// text.
bool isStatementMark(ColumnReference const& reference);

/// The column followed by the operator. A column with "@" is an expression that says itself where
/// the operator goes: its first "@" makes room for it, and neither the table nor the comparison
/// changes anything.
std::string conditionOn(ColumnReference const& reference, std::string_view operatorText,
                        Comparison comparison = Comparison::kWholeValue);

/// The operator with the marks of the bounds in force; empty for a range without bounds.
std::string_view rangeOperator(bool hasMin, bool hasMax);

/// "column in (?, ?)" with a mark a value. No values give "1=0", whatever the column and the
/// negation.
std::string inCondition(ColumnReference const& reference, std::size_t valueCount, bool negated);

/// Bind a value at `*counter`, and move the counter to the next position.
void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter, int value);
void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter, double value);
void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter,
              std::string const& value);
void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter,
              date_t const& value);
void bindNextNull(moxDatabaseConnection::PreparedStatement& statement, int* counter);
