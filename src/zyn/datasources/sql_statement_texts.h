#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"

/// A statement in the pieces that filters go between. Each piece brings its key word and the blank
/// ahead of it.
struct SQLStatementTexts {
  std::string select;  // a plain statement as a whole
  std::string from;
  std::string join;
  std::string where;
  std::string tail;      // group and order; tokens in it stay as they stand
  bool ordered = false;  // a filter source gave the order, in the place of the definition's
};

/// The definition's statement with what the filter sources, in their order, change of it. Throws
/// moxError for a filter source's mark whose column the definition does not have, and when a second
/// filter source wants to replace the select list; std::out_of_range for a mark too many.
SQLStatementTexts composeSQLStatement(
    moxSQLDataSource const& definition,
    std::vector<std::shared_ptr<moxFilterDataSource const>> const& filterSources);
