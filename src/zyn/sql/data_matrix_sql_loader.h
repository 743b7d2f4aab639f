#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/zyn/sql/composed_select.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"
#include "zyn/sql/fetch_helpers.h"
#include "zyn/sql/select_statement.h"

class DataMatrixSQLLoader final : public virtual moxDataMatrixSQLLoader, public moxSelectComposer {
 public:
  using Filter = std::shared_ptr<moxDataMatrixSQLFilter const>;

  std::string name() const override { return "moxDataMatrixSQLLoader"; }

  void setDBConnection(moxDatabaseConnection* connection) override { connection_ = connection; }
  void setSql(std::string const& sql, std::pair<std::string, std::string> const& unitColumn,
              std::string const& whereWord, bool unitMayBeNull) override;
  void resetFilters() override;
  void addFilter(Filter filter) override;
  void removeFilter(Filter filter) override;
  std::vector<Filter> getFilters() const override { return filters_; }
  void setDataMatrix(std::shared_ptr<moxDataMatrix> matrix) override;
  void execute(std::vector<int> units, int matrixUnit) override;
  void execute() override;
  bool addOrderColumn(std::string const& table, std::string const& column,
                      bool descending) override;
  void clearOrderColumns() override { select_.clearOrderColumns(); }
  void addParameter(Filter parameter) override;
  void removeParameter(Filter parameter) override;
  std::vector<Filter> getParameters() const override { return parameters_; }
  void setSql(std::string const& sql, std::string const& beforeWhere, std::string const& afterWhere,
              std::pair<std::string, std::string> const& unitColumn, std::string const& whereWord,
              bool unitMayBeNull) override;
  void setPrefixSufix(std::string const& prefix, std::string const& sufix) override;

  moxComposedSelect compose(std::vector<int> const& units, int matrixUnit) const override;

 private:
  using Statement = std::shared_ptr<moxDatabaseConnection::PreparedStatement>;

  bool callerRestrictedUnits() const;
  Filter missingUnitFilter(std::vector<int> const& units, int matrixUnit) const;
  Filter makeUnitFilter(std::vector<int> const& units, int matrixUnit) const;
  Statement prepare() const;
  void bindFilters(Statement const& statement) const;
  void initFetchColumns(moxDatabaseConnection::PreparedStatement const& statement);
  void fetchRows(Statement const& statement) const;

  moxDatabaseConnection* connection_ = nullptr;  // not owned; null for the application's
  std::shared_ptr<moxDataMatrix> matrix_;
  std::vector<Filter> filters_;
  std::vector<Filter> parameters_;
  std::vector<std::unique_ptr<FetchHelper>>
      fetchers_;  // one a field, valid unless rebuildFetchers_
  bool rebuildFetchers_ = true;
  bool unitMayBeNull_ = false;
  SelectStatement select_;
  ColumnReference unitColumn_;  // an empty column for a statement that is not restricted
};
