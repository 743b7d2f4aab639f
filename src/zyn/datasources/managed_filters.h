#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "zyn/datasources/statement_filters.h"

/// Whether a manager passes on a filter that was given for it on this column.
bool speaksOf(moxManageFilterDataSource::ManageFilterData const& manager,
              std::string const& column);

/// The filters that managers pass on to one run, and the names that these filters bear during its
/// query: a filter is given under a name of the manager's, and the statement knows its column under
/// another. Lives no longer than the managers it was made of.
class ManagedFilters {
 public:
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

  /// Gathers what the context has for each manager, as far as the manager speaks of it.
  ManagedFilters(std::vector<ManageFilterData> const& managers,
                 moxDataSourceExecutionContext const& context);

  /// Gives the token's value to the statement, as each manager that speaks of the token says. False
  /// when none does.
  bool bindToken(std::string const& token, StatementFilters& statement);

  /// Gives the statement the conditions on columns.
  void addConditions(moxSQLDataSource const& definition, StatementFilters& statement);

  /// Those that came to nothing in the statement: their manager speaks of them, and yet relates
  /// them to no column and no token there.
  std::vector<StatementFilters::Filter> unused() const;

  /// Names the filters as the statement knows their columns; of two names for one the last rules.
  void rename() const;

  /// Gives the filters their own names back. A filter that had a table has lost it.
  void restoreNames() const;

 private:
  struct Managed {
    StatementFilters::Filter filter;
    std::string column;          // under which it was given
    std::string const* manager;  // for which it was given
  };

  struct Rename {
    std::shared_ptr<moxDataMatrixSQLFilter> filter;
    std::string table;
    std::string ownColumn;
    std::string statementColumn;
  };

  Managed const* find(std::string const& column) const;
  void noteRename(Managed const& managed, std::string const& table, std::string const& column);
  bool bindAs(std::string const& givenColumn, std::string const& token,
              StatementFilters& statement);
  bool bindRelated(ManageFilterData const& manager, std::string const& token,
                   StatementFilters& statement);
  bool bindAvaliable(ManageFilterData const& manager, std::string const& token,
                     StatementFilters& statement);

  std::vector<ManageFilterData> const& managers_;
  std::vector<Managed> filters_;
  std::vector<Rename> renames_;
};
