#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "zyn/datasources/managed_filters.h"
#include "zyn/datasources/run_recorder.h"
#include "zyn/datasources/statement_filters.h"

class moxDataMatrix;

/// One statement of one run, from its text to its rows, with a loader and a matrix of its own. The
/// operations are called once each, in the order in which they stand here: filters give their
/// values in the order in which they come.
class SQLStatementRun {
 public:
  using FilterSources = std::vector<std::shared_ptr<moxFilterDataSource const>>;
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
  using Filters = std::vector<StatementFilters::Filter>;

  /// `source` is the run's name in the context. Definition and context outlive the run.
  SQLStatementRun(moxSQLDataSource const& definition, moxDataSourceExecutionContext const& context,
                  std::string source);

  /// The text, with its order and around it what the definition has before and behind it.
  void compose(FilterSources const& filterSources);

  /// Values of the tokens; what the managers pass on; and as conditions those of `ownFilters` that
  /// serve no token. `managers` outlive the run.
  void bind(std::vector<ManageFilterData> const& managers, Filters ownFilters);

  /// A condition by the values of the source `relatedSource`, on `column`.
  void restrict(StatementFilters::Filter const& filter, std::string const& relatedSource,
                std::string const& column);

  /// The conditions that the filter sources bring. May ask the database for their values.
  void addFixedConditions(FilterSources const& filterSources);

  /// Asks the database, unless the run only puts statements together, and gives the matrix's
  /// columns the formatters of the definition's. When it throws, managed filters keep the names
  /// that the statement has for them: their context ends with the run.
  void execute();

  std::shared_ptr<moxDataMatrix> const& matrix() const { return matrix_; }

 private:
  void addOrder();
  void loadRows();
  void dressMatrix() const;

  moxSQLDataSource const& definition_;
  moxDataSourceExecutionContext const& context_;
  std::string const source_;
  RunRecorderHolder const* const report_;  // null when none is kept
  std::shared_ptr<moxDataMatrixSQLLoader> const loader_;
  std::shared_ptr<moxDataMatrix> const matrix_;
  StatementFilters filters_;
  std::vector<std::string> tokens_;
  std::unique_ptr<ManagedFilters> managed_;
};
