#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "zyn/datasources/managed_filters.h"
#include "zyn/datasources/statement_filters.h"

/// Gives a value to each token of a statement. Serves one run.
class TokenBinder {
 public:
  using Filters = std::vector<StatementFilters::Filter>;

  /// `ownFilters` are those given for this source.
  TokenBinder(moxSQLDataSource const& definition, moxDataSourceExecutionContext const& context,
              Filters const& ownFilters, ManagedFilters& managed, StatementFilters& statement)
      : definition_(definition),
        context_(context),
        ownFilters_(ownFilters),
        managed_(managed),
        statement_(statement) {}

  /// `token` is without its braces. A filter given for this source comes first, then the managers,
  /// then a parameter that the definition declares, which is bound as null, then the tokens of the
  /// session. Throws moxError for a token that nobody knows, for a declared parameter of a kind
  /// that cannot be null, and for the user's token when nobody is logged in.
  void bind(std::string const& token);

 private:
  bool bindOwn(std::string const& key);
  bool bindDeclared(std::string const& key);
  bool bindBuiltIn(std::string const& token, std::string const& key);
  std::vector<std::shared_ptr<moxFilterSpecification const>> const& specifications();

  moxSQLDataSource const& definition_;
  moxDataSourceExecutionContext const& context_;
  Filters const& ownFilters_;
  ManagedFilters& managed_;
  StatementFilters& statement_;
  std::optional<std::vector<std::shared_ptr<moxFilterSpecification const>>> specifications_;
};
