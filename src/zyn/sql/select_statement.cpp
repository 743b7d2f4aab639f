#include "zyn/sql/select_statement.h"

#include <algorithm>
#include <utility>

namespace {

std::string joinConditions(std::vector<std::string> const& conditions) {
  std::string joined;
  for (auto const& condition : conditions) {
    if (condition.empty()) {
      continue;
    }
    if (!joined.empty()) {
      joined += " and ";
    }
    joined += condition;
  }
  return joined;
}

}  // namespace

void SelectStatement::setText(std::string selectPart, std::string beforeWhere,
                              std::string afterWhere, std::string const& whereWord) {
  selectPart_ = std::move(selectPart);
  beforeWhere_ = std::move(beforeWhere);
  afterWhere_ = std::move(afterWhere);
  whereWord_ = whereWord.empty() ? "where" : whereWord;
}

void SelectStatement::setPrefixSuffix(std::string const& prefix, std::string const& suffix) {
  prefix_ = prefix.empty() ? prefix : prefix + " ";
  suffix_ = suffix.empty() ? suffix : " " + suffix;
}

bool SelectStatement::addOrderColumn(ColumnReference const& column, bool descending) {
  auto const isSame = [&](OrderColumn const& order) { return order.column == column; };
  if (column.table.empty() || column.column.empty() ||
      std::any_of(orderColumns_.begin(), orderColumns_.end(), isSame)) {
    return false;
  }
  orderColumns_.push_back({column, descending});
  return true;
}

std::string SelectStatement::buildWhere(std::vector<std::string> const& conditions) const {
  if (conditions.empty()) {
    return beforeWhere_;
  }
  auto const joined = joinConditions(conditions);
  // Definitions rely on it: filters that serve only marks of the statement's own text take
  // beforeWhere along.
  if (joined.empty()) {
    return {};
  }
  return " " + beforeWhere_ + " " + whereWord_ + " " + joined;
}

std::string SelectStatement::buildOrderBy() const {
  std::string text;
  for (auto const& order : orderColumns_) {
    text += text.empty() ? " order by " : ", ";
    text += qualifiedName(order.column);
    text += order.descending ? " desc " : " asc ";
  }
  return text;
}

std::string SelectStatement::compose(std::vector<std::string> const& conditions) const {
  return prefix_ + selectPart_ + buildWhere(conditions) + afterWhere_ + buildOrderBy() + suffix_;
}
