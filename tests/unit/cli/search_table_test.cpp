#include "cli/output/search_table.h"

#include <gtest/gtest.h>

#include "cli/output/csv_writer.h"
#include "cli/output/json_writer.h"
#include "cli/output/table_writer.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/matrix/data_matrix_row.h"
#include "support/test_host.h"
#include "unit/cli/result_builder.h"
#include "zyn/matrix/data_matrix.h"

namespace mox::cli {
namespace {

using namespace testing;

/// Shows each cell as its place, and counts how often it is asked.
class CountingRunner final : public moxSearchRunner {
 public:
  explicit CountingRunner(std::shared_ptr<moxSQLDataSource> source) : source_(std::move(source)) {}

  void add(Column const& values, bool visible, std::string const& heading = {}) {
    matrix_->addColumn(values);
    auto const column = source_->createColumn(nullptr);
    column->setColumnName(values->getName());
    column->setVisible(visible);
    column->setVisibleName(heading);
  }

  std::string name() const override { return "testCountingRunner"; }
  void load(std::shared_ptr<moxSearch const> /*search*/) override {}
  void performSql() override {}
  std::vector<std::string> columnsHeaders() const override { return {}; }
  std::string getVisibleValue(unsigned int row, unsigned int column) const override {
    ++formatted;
    return std::to_string(row) + "/" + std::to_string(column);
  }
  std::shared_ptr<moxSearch const> getSearch() const override { return {}; }
  std::string getIcon(unsigned int row, unsigned int /*column*/) const override {
    ++iconsAsked;
    return row % 2 == 0 ? "" : std::string(row % 7, '*');
  }
  unsigned int rowCount() const override { return matrix_->rowCount(); }
  bool columnHasIcon(unsigned int column) const override {
    return static_cast<int>(column) == iconColumn;
  }
  int getInt(unsigned int /*row*/, int /*column*/) const override { return 0; }
  std::string getString(unsigned int /*row*/, int /*column*/) const override { return {}; }
  void clearFilters() override {}
  void pushFilter(std::shared_ptr<moxDataMatrixSQLFilter> /*filter*/) override {}
  int getColumnWidth(int /*column*/) const override { return 100; }
  std::shared_ptr<moxSQLDataSourceColumn const> getColumn(unsigned int column) const override {
    return std::as_const(*source_).columnAt(column);
  }
  int columnIndex(std::string const& name) const override {
    return matrix_->getColumnIndexByName(name);
  }
  double getDouble(int /*row*/, int /*column*/) const override { return 0; }
  datetime_t getDateTime(int /*row*/, int /*column*/) const override { return {}; }
  std::shared_ptr<moxDataMatrixRow> getRow(int /*row*/) const override { return {}; }
  void pushFixedFilter(std::shared_ptr<moxDataMatrixSQLFilter const> /*filter*/) override {}
  std::shared_ptr<moxDataMatrix> getDataMatrix() const override { return matrix_; }

  moxSQLDataSource& source() { return *source_; }

  int iconColumn = -1;
  mutable int formatted = 0;
  mutable int iconsAsked = 0;

 private:
  std::shared_ptr<moxSQLDataSource> source_;
  std::shared_ptr<DataMatrix> matrix_ = std::make_shared<DataMatrix>();
};

class SearchTableTest : public ::testing::Test {
 protected:
  std::string table(SearchPage page) const {
    auto const shown = searchScreen(runner_, page);
    return written([&](OutputBuffer& out) { writeTable(out, shown, {}); });
  }

  Column numbers(std::string const& name, int rows) const {
    std::vector<std::optional<int>> values;
    values.reserve(static_cast<std::size_t>(rows));
    for (int i = 0; i < rows; ++i) {
      values.emplace_back(i);
    }
    return ints(name, values);
  }

  TestHost host_;
  CountingRunner runner_{host_.get<moxSQLDataSource>("moxSQLDataSource")};
};

TEST_F(SearchTableTest, OnlyTheVisibleColumnsAreShownUnderTheirHeadings) {
  runner_.add(ints("id", {1, 2}), false);
  runner_.add(texts("nome", {"a", std::nullopt}), true, "Aluno");
  runner_.add(ints("n", {3, 4}), true);
  EXPECT_EQ(table({0, 2}),
            "Aluno    n\n"
            "─────  ───\n"
            "0/1    0/2\n"
            "null   1/2\n");
}

TEST_F(SearchTableTest, TheKeyOfWhatIsReferredToStandsBehindTheFirstThatRefers) {
  runner_.add(ints("id", {1}), false);
  runner_.add(texts("nome", {"a"}), true);
  runner_.add(texts("apelido", {"b"}), true);
  runner_.add(ints("numero", {9}), true);
  auto const columns = runner_.source().columns();
  columns[1]->setIdColumn(columns[0]);
  columns[2]->setIdColumn(columns[0]);
  columns[3]->setIdColumn(columns[3]);
  auto const shown = searchScreen(runner_, {0, 1});
  EXPECT_EQ(shown.headings, (std::vector<std::string>{"nome", "id", "apelido", "numero"}));
}

TEST_F(SearchTableTest, AKeyThatIsVisibleOrNotInTheResultIsNotAdded) {
  runner_.add(texts("nome", {"a"}), true);
  runner_.add(ints("id", {1}), true);
  auto const missing = runner_.source().createColumn(nullptr);
  missing->setColumnName("fora");
  auto const columns = runner_.source().columns();
  columns[0]->setIdColumn(columns[1]);
  columns[1]->setIdColumn(missing);
  EXPECT_EQ(searchScreen(runner_, {0, 1}).headings, (std::vector<std::string>{"nome", "id"}));
}

TEST_F(SearchTableTest, IconsStandAheadOfTheTextsInOneWidth) {
  runner_.iconColumn = 0;
  runner_.add(texts("nome", {"a", "b", "c", std::nullopt, std::nullopt}), true);
  EXPECT_EQ(table({0, 5}),
            "nome\n"
            "─────────\n"
            "      0/0\n"
            "[*]   1/0\n"
            "      2/0\n"
            "[***] 3/0\n"
            "null\n");
}

TEST_F(SearchTableTest, APageFormatsItsOwnRowsAlone) {
  constexpr int kRows = 1000000;
  runner_.iconColumn = 0;
  runner_.add(numbers("id", kRows), true);
  runner_.add(numbers("n", kRows), true);
  auto const text = table({500000, 50});
  EXPECT_EQ(runner_.formatted, 2 * 2 * 50) << "measured once, written once";
  EXPECT_LE(runner_.iconsAsked, 3 * 50);
  EXPECT_NE(text.find("500049/1\n"), std::string::npos);
  EXPECT_EQ(text.find("500050/1"), std::string::npos);
}

TEST_F(SearchTableTest, ProgramsGetAllColumnsPlainOrAsTheyAreShown) {
  runner_.add(ints("id", {1, 2, 3}), false);
  runner_.add(texts("nome", {"a", std::nullopt, "c"}), true, "Aluno");
  auto const plain = searchValues(runner_, {1, 2}, false);
  EXPECT_EQ(written([&](OutputBuffer& out) { writeCsv(out, plain, {}); }), "id,nome\n2,\n3,c\n");
  EXPECT_EQ(runner_.formatted, 0);
  auto const shown = searchValues(runner_, {1, 2}, true);
  EXPECT_EQ(written([&](OutputBuffer& out) { writeJson(out, shown); }),
            "[\n{\"id\":\"1/0\",\"nome\":null},\n{\"id\":\"2/0\",\"nome\":\"2/1\"}\n]\n");
}

TEST_F(SearchTableTest, BlobsStayBlobs) {
  runner_.add(blobs("foto", {"abc"}), true);
  EXPECT_EQ(table({0, 1}), "foto\n──────────────\n<blob 3 bytes>\n") << table({0, 1});
}

TEST_F(SearchTableTest, ASearchThatShowsNothingHasNoColumns) {
  runner_.add(ints("id", {1}), false);
  EXPECT_TRUE(searchScreen(runner_, {0, 1}).columns.empty());
  EXPECT_EQ(table({0, 1}), "");
}

}  // namespace
}  // namespace mox::cli
