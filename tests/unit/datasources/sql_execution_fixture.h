#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/fake_database.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "unit/datasources/fake_filter_source.h"
#include "zyn/datasources/sql_data_source.h"
#include "zyn/datasources/sql_data_source_execution.h"

namespace mox_test {

using Texts = std::vector<std::string>;
using Origin = moxSQLDataSourceColumn::SQLColum;
using Manager = moxManageFilterDataSource::ManageFilterData;

/// A definition named "fonte" on a database that writes down what it is sent, and one run of it in
/// a context of its own.
class SQLExecutionTest : public testing::Test {
 protected:
  SQLExecutionTest()
      : host_(std::unique_ptr<moxDatabaseConnection>(database_ = new FakeDatabase)),
        source_(std::make_shared<SQLDataSource>()),
        context_(newContext()),
        execution_(std::make_shared<SQLDataSourceExecution>(source_)) {
    source_->setName("fonte");
  }

  std::shared_ptr<moxDataSourceExecutionContext> newContext() {
    return host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  }

  void composed(std::string const& from, std::string const& where = {}) {
    source_->setSQLTipo(moxSQLDataSource::kComposed);
    source_->setSQLFrom(from);
    source_->setSQLWhere(where);
  }

  /// A column with an origin in the database; with an expression it is selected by a composed
  /// statement.
  std::shared_ptr<moxSQLDataSourceColumn> column(std::string const& table,
                                                 std::string const& nameOrigin,
                                                 std::string const& expression = {},
                                                 std::string const& alias = {}) {
    moxDatabaseConnection::FieldInfo info;
    info.name = alias.empty() ? nameOrigin : alias;
    info.columnName = nameOrigin;
    info.tableAlias = table;
    info.tableName = table;
    auto const made = source_->createColumn(&info);
    made->setSQLColumn({expression, alias});
    return made;
  }

  std::shared_ptr<moxDataMatrixSQLIntegerUniqueFilter> equals(std::string const& table,
                                                              std::string const& column,
                                                              int value) {
    auto const filter =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    filter->setColumnName(table, column);
    filter->setValue(value);
    return filter;
  }

  std::shared_ptr<moxFilterSpecification> specification(std::string const& className,
                                                        std::string const& table,
                                                        std::string const& column) {
    auto const made = host_.get<moxFilterSpecification>(className);
    made->setTableName(table);
    made->setColumn(column);
    source_->addFilter(made);
    return made;
  }

  std::shared_ptr<FakeFilterSource> filterSource() {
    auto const made = std::make_shared<FakeFilterSource>();
    execution_->addFiltersDataSource(made);
    return made;
  }

  /// The context's units and head office, as a run of nothing would set them.
  void useUnits(std::vector<int> const& units, int headOffice) {
    context_->processDataSources({}, {}, units, headOffice);
  }

  bool run(std::string const& target = {}) {
    return execution_->generateDataMatrix(context_, target);
  }

  /// Runs, and gives the statement that was sent.
  std::string sent(std::string const& target = {}) {
    EXPECT_TRUE(run(target));
    return database_->preparedTexts().empty() ? std::string() : database_->preparedTexts().back();
  }

  Texts const& binds() const { return database_->binds(); }

  /// The message of the moxError that the run throws; nothing when it throws none.
  std::optional<std::string> failure() {
    try {
      run();
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return std::nullopt;
  }

  FakeDatabase* database_;  // the host's
  TestHost host_;
  std::shared_ptr<SQLDataSource> source_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
  std::shared_ptr<SQLDataSourceExecution> execution_;
};

}  // namespace mox_test
