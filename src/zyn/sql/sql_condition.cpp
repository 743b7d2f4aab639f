#include "zyn/sql/sql_condition.h"

namespace {

constexpr char kOperatorPlace = '@';
constexpr std::string_view kMarkOpening = "{{";
constexpr char const* kNothing = "1=0";

std::string leftSide(ColumnReference const& reference, Comparison comparison) {
  auto name = qualifiedName(reference);
  return comparison == Comparison::kDayOnly ? "date(" + name + ")" : name;
}

}  // namespace

std::string qualifiedName(ColumnReference const& reference) {
  return reference.table.empty() ? reference.column : reference.table + "." + reference.column;
}

bool isStatementMark(ColumnReference const& reference) {
  return reference.column.find(kMarkOpening) != std::string::npos;
}

std::string conditionOn(ColumnReference const& reference, std::string_view operatorText,
                        Comparison comparison) {
  auto const place = reference.column.find(kOperatorPlace);
  if (place == std::string::npos) {
    return leftSide(reference, comparison).append(operatorText);
  }
  return std::string(reference.column).replace(place, 1, operatorText);
}

std::string_view rangeOperator(bool hasMin, bool hasMax) {
  if (hasMin && hasMax) {
    return " between ? and ? ";
  }
  if (hasMin) {
    return " >= ? ";
  }
  return hasMax ? " <= ? " : "";
}

std::string inCondition(ColumnReference const& reference, std::size_t valueCount, bool negated) {
  if (valueCount == 0) {
    return kNothing;
  }
  std::string operatorText = negated ? " not in (?" : " in (?";
  operatorText.reserve(operatorText.size() + 3 * valueCount);
  for (std::size_t i = 1; i < valueCount; ++i) {
    operatorText += ", ?";
  }
  operatorText += ')';
  return conditionOn(reference, operatorText);
}

void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter, int value) {
  statement.bindInt((*counter)++, value);
}

void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter, double value) {
  statement.bindDouble((*counter)++, value);
}

void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter,
              std::string const& value) {
  statement.bindString((*counter)++, value);
}

void bindNext(moxDatabaseConnection::PreparedStatement& statement, int* counter,
              date_t const& value) {
  statement.bindDate((*counter)++, value);
}

void bindNextNull(moxDatabaseConnection::PreparedStatement& statement, int* counter) {
  statement.bindNull((*counter)++);
}
