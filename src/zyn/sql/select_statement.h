#pragma once

#include <string>
#include <vector>

#include "zyn/sql/sql_condition.h"

/// The text of a select, kept in the parts that callers give and put together on demand. A plain
/// value: it knows no database and no filter, only the conditions' texts.
class SelectStatement {
 public:
  /// An empty `whereWord` is "where".
  void setText(std::string selectPart, std::string beforeWhere, std::string afterWhere,
               std::string const& whereWord);

  /// Text around the whole statement, parted from it by a blank; empty for none.
  void setPrefixSuffix(std::string const& prefix, std::string const& suffix);

  /// False, and nothing changes, when the table or the column is empty or the column is ordered by
  /// already: the first direction stands.
  bool addOrderColumn(ColumnReference const& column, bool descending);
  void clearOrderColumns() { orderColumns_.clear(); }

  /// The part between select and order, with one condition a filter in the filters' order; empty
  /// ones are left out. Without filters it is the text before the conditions alone. When filters
  /// are there and none has a condition it is empty, and even the text before the conditions is
  /// left out.
  std::string buildWhere(std::vector<std::string> const& conditions) const;

  /// " order by " and the columns; empty without order columns.
  std::string buildOrderBy() const;

  /// The whole statement. Nothing is put between its parts: blanks are theirs to bring.
  std::string compose(std::vector<std::string> const& conditions) const;

 private:
  struct OrderColumn {
    ColumnReference column;
    bool descending;
  };

  std::string selectPart_;
  std::string beforeWhere_;
  std::string afterWhere_;
  std::string prefix_;  // with its blank
  std::string suffix_;  // with its blank
  std::string whereWord_ = "where";
  std::vector<OrderColumn> orderColumns_;
};
