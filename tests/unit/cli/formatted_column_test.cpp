#include "cli/output/formatted_column.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/output/csv_writer.h"
#include "cli/output/json_writer.h"
#include "cli/output/table_writer.h"
#include "mox/zyn/format/generic_formatter.h"
#include "support/test_host.h"
#include "unit/cli/result_builder.h"
#include "zyn/matrix/data_matrix.h"

namespace mox::cli {
namespace {

using namespace testing;

/// Writes whole numbers between brackets.
class Brackets final : public moxGenericFormatter {
 public:
  std::string name() const override { return "testBrackets"; }
  bool save(std::shared_ptr<moxXMLNode> /*node*/) const override { return false; }
  bool load(std::shared_ptr<moxXMLNode> /*node*/) override { return false; }
  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override {
    auto const number = std::dynamic_pointer_cast<moxIteratorBase<int> const>(cell);
    return number ? "<" + std::to_string(number->get()) + ">" : "?";
  }
  void setDescription(std::string const& /*description*/) override {}
  std::string getDescription() const override { return {}; }
  void setPrefix(std::string const& /*prefix*/) override {}
  void setSuffix(std::string const& /*suffix*/) override {}
  std::string getPrefix() const override { return {}; }
  std::string getSuffix() const override { return {}; }
};

/// Rows come from the registry.
class FormattedColumnTest : public ::testing::Test {
 private:
  TestHost host_;
};

std::shared_ptr<DataMatrix> matrixOf(std::vector<Column> const& columns) {
  auto matrix = std::make_shared<DataMatrix>();
  for (auto const& column : columns) {
    matrix->addColumn(column);
  }
  return matrix;
}

Column bracketed(std::vector<std::optional<int>> const& values) {
  auto column = ints("n", values);
  column->setFormatter(std::make_shared<Brackets>());
  return column;
}

ResultTable formattedResult(moxDataMatrix const& matrix) {
  return {formattedColumnsOf(matrix), matrix.rowCount(), {}, {}};
}

TEST_F(FormattedColumnTest, CellsAreTheTextsOfTheFormatterAndNullsStay) {
  auto const matrix = matrixOf({bracketed({5, std::nullopt, -1}), texts("t", {"a", "b", "c"})});
  auto const result = formattedResult(*matrix);
  EXPECT_EQ(written([&](OutputBuffer& out) { writeCsv(out, result, {}); }),
            "n,t\n<5>,a\n,b\n<-1>,c\n");
  EXPECT_EQ(
      written([&](OutputBuffer& out) { writeNdjson(out, result); }),
      "{\"n\":\"<5>\",\"t\":\"a\"}\n{\"n\":null,\"t\":\"b\"}\n{\"n\":\"<-1>\",\"t\":\"c\"}\n");
}

TEST_F(FormattedColumnTest, ColumnsWithoutFormatterStayTheirOwn) {
  auto const plain = ints("n", {1});
  auto const matrix = matrixOf({plain});
  EXPECT_EQ(formattedColumnsOf(*matrix).at(0), plain);
}

TEST_F(FormattedColumnTest, MatrixWithoutRowsGivesItsColumns) {
  auto const matrix = matrixOf({bracketed({})});
  auto const columns = formattedColumnsOf(*matrix);
  ASSERT_EQ(columns.size(), 1U);
  EXPECT_EQ(columns[0]->numRows(), 0U);
  EXPECT_EQ(columns[0]->getName(), "n");
}

TEST_F(FormattedColumnTest, NumbersKeepTheirSideInATable) {
  auto const matrix = matrixOf({bracketed({5, 10}), texts("t", {"a", "b"})});
  auto const columns = formattedColumnsOf(*matrix);
  EXPECT_EQ(typeOfValues(*columns[0]), moxDataMatrixTypes::Int);
  EXPECT_EQ(columns[0]->getType(), moxDataMatrixTypes::Text);
  auto result = formattedResult(*matrix);
  result.headings = {"Número", "Texto"};
  EXPECT_EQ(written([&](OutputBuffer& out) { writeTable(out, result, {}); }),
            "Número  Texto\n──────  ─────\n   <5>  a\n  <10>  b\n");
}

TEST_F(FormattedColumnTest, RowsPastTheEndAreNull) {
  auto const matrix = matrixOf({bracketed({5})});
  auto const column =
      std::dynamic_pointer_cast<moxDataMatrixTextColumn const>(formattedColumnsOf(*matrix).at(0));
  EXPECT_TRUE(column->isNull(1));
  EXPECT_EQ(column->getValue(1), "");
  EXPECT_EQ(column->getValue(0), "<5>");
}

TEST_F(FormattedColumnTest, ViewsAreNotWrittenTo) {
  auto const matrix = matrixOf({bracketed({5})});
  auto const column = std::const_pointer_cast<moxDataMatrixColumn>(formattedColumnsOf(*matrix)[0]);
  EXPECT_THROW(column->appendNull(), std::logic_error);
  EXPECT_THROW(column->clear(), std::logic_error);
  EXPECT_THROW(column->setName("x"), std::logic_error);
}

}  // namespace
}  // namespace mox::cli
