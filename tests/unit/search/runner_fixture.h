#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/search/search_runner.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/matrix_builder.h"
#include "unit/search/fake_sources.h"
#include "unit/search/search_fixture.h"

/// Searches that are run.
namespace search_test {

using Texts = std::vector<std::string>;

class RunnerTest : public SearchTest {
 protected:
  std::shared_ptr<moxSearchRunner> newRunner() {
    return host_.get<moxSearchRunner>("moxSearchRunner");
  }

  std::shared_ptr<moxSearchRunner> runnerOf(std::shared_ptr<moxSearch const> search) {
    auto made = newRunner();
    made->load(std::move(search));
    return made;
  }

  std::shared_ptr<moxSearch> searchOn(std::shared_ptr<moxDataSource> source,
                                      std::string const& internalName = "pesq") {
    auto made = newSearch();
    made->setInternalName(internalName);
    made->setDataSource(std::move(source));
    return made;
  }

  std::shared_ptr<moxSQLDataSource> query(std::string const& content,
                                          std::string const& name = "consulta") {
    auto made = host_.get<moxSQLDataSource>("moxSQLDataSource");
    EXPECT_TRUE(made->load(
        document("<moxSQLDataSource name=\"" + name + "\">" + content + "</moxSQLDataSource>")
            ->root()));
    return made;
  }

  std::shared_ptr<moxDataMatrixSQLIntegerUniqueFilter> equals(std::string const& column,
                                                              int value) {
    auto filter =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    filter->setColumnName("", column);
    filter->setValue(value);
    return filter;
  }

  /// The texts of a column as they are shown.
  static Texts shown(moxSearchRunner const& runner, unsigned int column) {
    Texts texts;
    for (unsigned int row = 0; row < runner.rowCount(); ++row) {
      texts.push_back(runner.getVisibleValue(row, column));
    }
    return texts;
  }
};

}  // namespace search_test
