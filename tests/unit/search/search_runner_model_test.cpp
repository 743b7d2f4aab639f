// The runner beside the plain way of doing it, in which everything is looked up at each cell.

#include <optional>
#include <random>

#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/format/date_formatter.h"
#include "mox/zyn/format/decimal_formatter.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_row.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "unit/search/runner_fixture.h"

namespace {

using search_test::Texts;
using Filter = std::shared_ptr<moxDataMatrixSQLFilter>;
using Column = std::shared_ptr<moxSQLDataSourceColumn const>;

class PlainRunner {
 public:
  PlainRunner(TestHost& host, std::shared_ptr<moxSearch const> search)
      : host_(host), search_(std::move(search)) {}

  void performSql(std::vector<Filter> const& filters) {
    auto const context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    auto const source = search_->getDataSource();
    for (auto const& filter : filters) {
      context->addDataSourceFixedFilter(search_->getSqlDataSource()->getName(), filter);
    }
    context->processDataSources({}, {{source->getName(), {false, source->createExecution()}}}, {},
                                0);
    matrix_ = context->getDataMatrix(source->getName());
    Texts names;
    for (auto const& column : source->getColumns()) {
      names.push_back(column.first);
    }
    matrix_->orderColumnsByName(names);
    if (auto const column = search_->getInitialOrderColumn()) {
      auto const sorter = host_.get<moxDataMatrixSorter>("moxDataMatrixSorter");
      sorter->pushSortColumn(column->getColumnName(), !search_->getInitialOrderAscending());
      matrix_ = sorter->transform(matrix_);
    }
  }

  std::string visible(unsigned int row, unsigned int column) const {
    if (!isInside(row, column)) {
      return {};
    }
    auto const cells = matrix_->columnAt(column);
    auto const definition = search_->getSqlDataSource()->columnAt(column);
    auto const formatter = definition ? definition->getFormatter() : nullptr;
    return textAt(cells, formatter ? formatter : defaultFor(cells->getType()), row);
  }

  std::string icon(unsigned int row, unsigned int column) const {
    auto const iconColumn = isInside(row, column) ? iconColumnOf(column) : nullptr;
    auto const cells = iconColumn ? matrix_->columnByName(iconColumn->getColumnName()) : nullptr;
    return cells ? textAt(cells, iconColumn->getIconFormatter(), row) : std::string();
  }

  bool hasIcon(unsigned int column) const {
    auto const iconColumn = column < matrix_->columnCount() ? iconColumnOf(column) : nullptr;
    return iconColumn && iconColumn->getIconFormatter();
  }

  template <class T>
  T value(unsigned int row, int column) const {
    auto const cells = column < 0 ? nullptr : matrix_->columnAt(static_cast<unsigned int>(column));
    auto const typed = std::dynamic_pointer_cast<moxDataMatrixTypedColumn<T>>(cells);
    return typed && row < matrix_->rowCount() ? typed->getValue(row) : T{};
  }

  moxDataMatrix const& matrix() const { return *matrix_; }

 private:
  bool isInside(unsigned int row, unsigned int column) const {
    return column < matrix_->columnCount() && row < matrix_->rowCount();
  }

  Column iconColumnOf(unsigned int column) const {
    auto const definition = search_->getSqlDataSource()->columnAt(column);
    return definition ? definition->getIconColumn() : nullptr;
  }

  static std::string textAt(std::shared_ptr<moxDataMatrixColumn> const& cells,
                            std::shared_ptr<moxGenericFormatter const> const& formatter,
                            unsigned int row) {
    auto const cell = cells->begin();
    return formatter && cell->goTo(row) ? formatter->asString(cell) : std::string();
  }

  std::shared_ptr<moxGenericFormatter const> defaultFor(moxDataMatrixTypes::Types type) const {
    constexpr char const* kNames[] = {"moxIntegralFormatter", "moxDecimalFormatter",
                                      "moxTextFormatter", "moxDateFormatter"};
    if (type > moxDataMatrixTypes::Date) {
      return {};
    }
    auto const made = host_.get<moxGenericFormatter>(kNames[type]);
    if (auto const dates = std::dynamic_pointer_cast<moxDateAsString>(made)) {
      dates->setMask("%d/%m/%Y");
    }
    return made;
  }

  TestHost& host_;
  std::shared_ptr<moxSearch const> search_;
  std::shared_ptr<moxDataMatrix> matrix_;
};

/// A table with a column of each kind twice over, and searches on it, by chance.
class SearchRunnerModel : public search_test::RunnerTest {
 protected:
  static constexpr unsigned int kColumns = 10;

  unsigned int chance(unsigned int choices) {
    return static_cast<unsigned int>(random_() % choices);
  }

  static std::string nameOf(unsigned int column) { return "c" + std::to_string(column); }

  std::string valueFor(unsigned int column) {
    if (chance(5) == 0) {
      return "null";
    }
    switch (column % 5) {
      case 0:
        return std::to_string(static_cast<int>(chance(9)) - 4);
      case 1:
        return std::to_string(chance(2000)) + "." + std::to_string(chance(100)) + "5";
      case 2:
        return "'" + std::string(std::size_t{9} * chance(4), 'a') + std::to_string(chance(5)) + "'";
      case 3:
        return "'20" + std::to_string(10 + chance(15)) + "-0" + std::to_string(1 + chance(9)) +
               "-1" + std::to_string(chance(10)) + "'";
      default:
        return "x'41" + std::to_string(10 + chance(80)) + "'";
    }
  }

  void fill() {
    constexpr char const* kTypes[] = {"int", "double", "text", "date", "blob"};
    std::string create = "create table t (";
    for (unsigned int i = 0; i < kColumns; ++i) {
      create += (i == 0 ? "" : ", ") + nameOf(i) + " " + kTypes[i % 5];
    }
    host_.database().execute("drop table if exists t");
    host_.database().execute(create + ")");
    for (unsigned int row = chance(30); row > 0; --row) {
      std::string values;
      for (unsigned int i = 0; i < kColumns; ++i) {
        values += (i == 0 ? "" : ", ") + valueFor(i);
      }
      host_.database().execute("insert into t values (" + values + ")");
    }
  }

  std::shared_ptr<moxGenericFormatter> formatter() {
    constexpr char const* kNames[] = {"moxIntegralFormatter", "moxDecimalFormatter",
                                      "moxTextFormatter", "moxTextFilter", "moxDateFormatter"};
    auto made = host_.get<moxGenericFormatter>(kNames[chance(5)]);
    if (chance(2) == 0) {
      made->setPrefix("<");
    }
    if (chance(3) == 0) {
      made->setSuffix(">");
    }
    if (auto const dates = std::dynamic_pointer_cast<moxDateAsString>(made)) {
      dates->setMask(chance(2) == 0 ? "%Y-%m-%d" : "%b");
    }
    if (auto const decimals = std::dynamic_pointer_cast<moxDecimalAsString>(made)) {
      decimals->setDecimalPrecision(chance(4));
    }
    return made;
  }

  /// Some of the table's columns in any order, some twice, and some that it has not.
  std::shared_ptr<moxSQLDataSource> source() {
    constexpr moxSQLDataSourceColumn::FieldTypes kTypes[] = {
        moxSQLDataSourceColumn::kInt, moxSQLDataSourceColumn::kDouble,
        moxSQLDataSourceColumn::kText, moxSQLDataSourceColumn::kDate,
        moxSQLDataSourceColumn::kBlob};
    auto made = host_.get<moxSQLDataSource>("moxSQLDataSource");
    made->setName("fonte");
    made->setSQL("select * from t");
    for (unsigned int count = 1 + chance(kColumns + 2); count > 0; --count) {
      unsigned int const named = chance(kColumns + 1);
      auto const column = made->createColumn(nullptr);
      column->setColumnName(nameOf(named));
      column->setDbType(kTypes[named % 5]);
      if (chance(2) == 0) {
        column->setFormatter(formatter());
      }
      if (chance(2) == 0) {
        column->setIconFormatter(formatter());
      }
    }
    auto const columns = made->columns();
    for (auto const& column : columns) {
      if (chance(2) == 0) {
        column->setIconColumn(columns[chance(static_cast<unsigned int>(columns.size()))]);
      }
    }
    return made;
  }

  std::shared_ptr<moxSearch> randomSearch() {
    auto const made = source();
    auto search = searchOn(made);
    auto const column = made->columnAt(chance(4));
    // Blobs are sorted by their addresses, which differ from run to run.
    if (chance(3) != 0 && column && column->getDbType() != moxSQLDataSourceColumn::kBlob) {
      search->setInitialOrderColumn(column, chance(2) == 0);
    }
    return search;
  }

  std::vector<Filter> randomFilters() {
    std::vector<Filter> filters;
    if (chance(3) == 0) {
      filters.push_back(equals("c0", static_cast<int>(chance(9)) - 4));
    }
    return filters;
  }

  static void compare(moxSearchRunner const& runner, PlainRunner const& plain) {
    ASSERT_TRUE(mox_test::sameMatrix(*runner.getDataMatrix(), plain.matrix()));
    EXPECT_EQ(runner.rowCount(), plain.matrix().rowCount());
    for (unsigned int column = 0; column <= plain.matrix().columnCount() + 1; ++column) {
      EXPECT_EQ(runner.columnHasIcon(column), plain.hasIcon(column));
      for (unsigned int row = 0; row <= plain.matrix().rowCount() + 1; ++row) {
        compareCell(runner, plain, row, column);
      }
    }
  }

  static void compareCell(moxSearchRunner const& runner, PlainRunner const& plain, unsigned int row,
                          unsigned int column) {
    auto const index = static_cast<int>(column);
    EXPECT_EQ(runner.getVisibleValue(row, column), plain.visible(row, column));
    EXPECT_EQ(runner.getIcon(row, column), plain.icon(row, column));
    EXPECT_EQ(runner.getInt(row, index), plain.value<int>(row, index));
    EXPECT_EQ(runner.getString(row, index), plain.value<std::string>(row, index));
    EXPECT_EQ(runner.getDouble(static_cast<int>(row), index), plain.value<double>(row, index));
    EXPECT_EQ(runner.getDateTime(static_cast<int>(row), index),
              plain.value<datetime_t>(row, index));
  }

  std::mt19937 random_;
};

}  // namespace

TEST_F(SearchRunnerModel, EveryAnswerIsThatOfThePlainWay) {
  constexpr unsigned int kSearches = 400;
  for (unsigned int seed = 1; seed <= kSearches && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    random_.seed(seed);
    fill();
    auto const search = randomSearch();
    auto const filters = randomFilters();
    auto const runner = runnerOf(search);
    for (auto const& filter : filters) {
      runner->pushFilter(filter);
    }
    PlainRunner plain(host_, search);
    runner->performSql();
    plain.performSql(filters);
    compare(*runner, plain);
  }
}
