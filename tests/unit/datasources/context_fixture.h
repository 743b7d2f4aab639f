#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/progress_notifier.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/filters/filter_specification.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "zyn/datasources/data_source_execution_context.h"
#include "zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox_test {

using Texts = std::vector<std::string>;

/// An execution that does what the test says, and by default registers a matrix of two rows.
/// `Interface` is moxDataSourceExecution or one derived from it.
template <class Interface>
class FakeExecutionOf : public virtual Interface {
 public:
  using Context = std::shared_ptr<moxDataSourceExecutionContext>;
  using Work = std::function<bool(Context const&, std::string const&)>;

  explicit FakeExecutionOf(Work work = {}) : work_(std::move(work)) {}

  std::string name() const override { return "fakeExecution"; }
  bool generateDataMatrix(Context context, std::string const& targetName) const override {
    targets.push_back(targetName);
    return work_ ? work_(context, targetName)
                 : context->registerDataMatrix(targetName, matrix({{"a", ints(1, 2)}}));
  }
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const&) const override {}
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }

  mutable Texts targets;  // of the runs so far

 private:
  Work work_;
};

using FakeExecution = FakeExecutionOf<moxDataSourceExecution>;

/// A SQL source's execution, as far as a context looks at one.
class FakeSqlExecution final : public FakeExecutionOf<moxSQLDataSourceExecution> {
 public:
  using FakeExecutionOf::FakeExecutionOf;

  /// The source whose rows the statement needs.
  std::string filterDataSource;

  std::string getFilterDataSource() const override { return filterDataSource; }
  std::pair<std::string, std::string> getDataSourceFilterRelation() const override { return {}; }
  bool setDataSourceFilterRelation(std::string const&, std::string const&,
                                   std::string const&) override {
    return false;
  }
  void setFiltersDataSource(std::vector<FilterDataSource> const&) override {}
  void setManageFiltersData(std::vector<ManageFilterData> const&) override {}
  void addFiltersDataSource(FilterDataSource) override {}
  void addManageFiltersData(ManageFilterData const&) override {}
};

/// Writes down what it is told, and answers false where the test says so.
class ScriptedNotifier final : public moxDataSourceExecutionProgressNotifier {
 public:
  /// The step with that number, counted from 1, is answered with false; 0 for none.
  explicit ScriptedNotifier(int stopAt = 0) : stopAt_(stopAt) {}

  std::string name() const override { return "scriptedNotifier"; }
  void setTotal(int count) override { told.push_back("total " + std::to_string(count)); }
  bool step(int done) override {
    told.push_back("step " + std::to_string(done));
    return ++steps_ != stopAt_;
  }

  Texts told;

 private:
  int const stopAt_;
  int steps_ = 0;
};

class ContextTest : public testing::Test {
 protected:
  using Filter = std::shared_ptr<moxDataMatrixSQLFilter>;
  using List = std::vector<moxDataSourceToProcess>;
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

  ContextTest() : context_(std::make_shared<DataSourceExecutionContext>()) {}

  static moxDataSourceToProcess entry(
      std::string const& name,
      std::shared_ptr<moxDataSourceExecution> execution = std::make_shared<FakeExecution>()) {
    return {name, {false, std::move(execution)}};
  }

  static Filter filterOn(std::string const& column) {
    auto filter = std::make_shared<DataMatrixSQLIntegerUniqueFilter>();
    filter->setColumnName("", column);
    filter->setValue(1);
    return filter;
  }

  /// The columns of a source's filters, in their order.
  static Texts columnsOf(moxDataSourceExecutionContext const& context, std::string const& source) {
    Texts columns;
    for (auto const& filter : context.getDataSourceFilters(source)) {
      columns.push_back(filter->getColumnName());
    }
    return columns;
  }

  static ManageFilterData manager(std::string const& name, Texts const& related,
                                  Texts const& available) {
    ManageFilterData made;
    made.name = name;
    for (auto const& filterName : related) {
      made.related.push_back({"", "", "", "", filterName});
    }
    for (auto const& filterName : available) {
      made.avaliable.push_back({filterName});
    }
    return made;
  }

  /// Has the calling thread work for a user of that unit.
  void logIn(int unit, int headOffice) {
    mox::core::User user;
    user.id = 7;
    user.units = {{unit, headOffice}};
    host_.logIn(user);
  }

  bool run(List const& list, std::vector<int> const& units = {}, int headOffice = 0) {
    return context_->processDataSources(nullptr, list, units, headOffice);
  }

  TestHost host_;
  std::shared_ptr<DataSourceExecutionContext> context_;
};

}  // namespace mox_test
