#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "zyn/datasources/statement_tokens.h"

/// Why a filter is part of a statement.
struct StatementFilterOrigin {
  std::shared_ptr<moxDataMatrixSQLFilter const> filter;
  std::string column;  // a token with its braces; the condition's, where the filter tells none
  moxRunOrigin origin = moxRunOrigin::kUserFilter;
  std::string originName;  // as in moxRunPart
};

/// The way of a run's filters into its loader. Remembers where each came from only when asked to.
class StatementFilters {
 public:
  using Filter = std::shared_ptr<moxDataMatrixSQLFilter const>;
  using Origins = std::vector<StatementFilterOrigin>;

  StatementFilters(moxDataMatrixSQLLoader& loader, bool keepsOrigins)
      : loader_(loader), keepsOrigins_(keepsOrigins) {}

  /// A value for a mark of the statement's text.
  void addParameter(Filter const& filter, std::string const& token, moxRunOrigin origin,
                    std::string const& originName = {}) {
    loader_.addParameter(filter);
    keep(parameters_, filter, token, origin, originName);
  }

  /// A condition of its own. The loader keeps one that it has already once. One that only has a
  /// value, for a token that no statement holds, is left out: its value would go to the next mark,
  /// which may be the unit rule's.
  void addCondition(Filter const& filter, moxRunOrigin origin, std::string const& originName = {},
                    std::string const& column = {}) {
    if (holdsToken(filter->getColumnName()) && filter->getSql().empty()) {
      leftOut_.push_back(filter);
      return;
    }
    loader_.addFilter(filter);
    keep(conditions_, filter, column, origin, originName);
  }

  /// In the order of adding; empty when origins are not kept.
  Origins const& parameters() const { return parameters_; }
  Origins const& conditions() const { return conditions_; }

  std::vector<Filter> const& leftOut() const { return leftOut_; }

 private:
  void keep(Origins& origins, Filter const& filter, std::string const& column, moxRunOrigin origin,
            std::string const& originName) const {
    if (keepsOrigins_) {
      origins.push_back({filter, column, origin, originName});
    }
  }

  moxDataMatrixSQLLoader& loader_;
  bool const keepsOrigins_;
  Origins parameters_;
  Origins conditions_;
  std::vector<Filter> leftOut_;
};
