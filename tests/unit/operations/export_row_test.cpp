#include "zyn/operations/export_row.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/foreign_column.h"
#include "unit/format/formatter_fixture.h"

using namespace mox_test;
using DME::Internals::ExportColumn;
using DME::Internals::ExportRow;

namespace {

class ExportRowTest : public FormatterFixture {};

std::shared_ptr<ExportColumn> exported(Cells const& cells, std::string const& header = "") {
  return std::make_shared<ExportColumn>(column("nota", cells), nullptr, header);
}

}  // namespace

TEST_F(ExportRowTest, GoesThroughTheRowsOfItsMatrix) {
  ExportRow row(2);
  row.addColumn(exported(ints(7, null, 9)));
  row.addColumn(exported(texts("a", "b")));

  ASSERT_EQ(row.columnCount(), 2U);
  EXPECT_EQ(row.name(), "moxDataMatrixExporterRow");
  EXPECT_EQ(row.column(0)->value(), "7");
  EXPECT_EQ(row.column(1)->value(), "a");
  EXPECT_TRUE(row.next());
  EXPECT_EQ(row.column(0)->value(), "");
  EXPECT_EQ(row.column(1)->value(), "b");
  EXPECT_FALSE(row.next()) << "a column's further rows are none of the matrix";
  EXPECT_EQ(row.column(1)->value(), "b") << "it stays on the last one";
}

TEST_F(ExportRowTest, HasNoColumnBehindTheLast) {
  ExportRow row(3);
  EXPECT_EQ(row.columnCount(), 0U);
  EXPECT_EQ(row.column(0), nullptr);
  EXPECT_EQ(row.rowCount(), 0U);
  EXPECT_FALSE(row.next());

  row.addColumn(exported(ints(1, 2, 3)));
  EXPECT_EQ(row.column(1), nullptr);
  EXPECT_EQ(row.rowCount(), 3U);
}

TEST_F(ExportRowTest, AColumnIsHeadedByItsNameUnlessTold) {
  EXPECT_EQ(exported(ints(1))->columnName(), "nota");
  EXPECT_EQ(exported(ints(1), "Nota final")->columnName(), "Nota final");
}

TEST_F(ExportRowTest, AColumnMovesByItselfToo) {
  auto const one = exported(ints(1, 2));
  EXPECT_EQ(one->name(), "moxDataMatrixExporterColumn");
  EXPECT_EQ(one->getFormatter(), nullptr) << "that of its kind of values";
  EXPECT_TRUE(one->next());
  EXPECT_EQ(one->getIterator()->pos(), 1U);
  std::string text = ">";
  one->appendValue(text);
  EXPECT_EQ(text, ">2");
  EXPECT_FALSE(one->next());
  EXPECT_EQ(one->value(), "");
}

TEST_F(ExportRowTest, ColumnsOfForeignMakeHaveTextsToo) {
  ExportColumn const one(std::make_shared<ForeignDoubleColumn>(
                             "n", std::vector<std::optional<double>>{12.0, std::nullopt}),
                         nullptr, "");
  EXPECT_EQ(one.value(), "12");
  EXPECT_EQ(one.text().at(1), "");
  EXPECT_EQ(one.text().at(2), "");
}
