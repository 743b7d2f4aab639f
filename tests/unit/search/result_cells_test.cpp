#include "zyn/search/result_cells.h"

#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "support/foreign_column.h"
#include "unit/search/runner_fixture.h"

namespace {

using mox_test::blobs;
using mox_test::dates;
using mox_test::doubles;
using mox_test::ForeignIntColumn;
using mox_test::ints;
using mox_test::matrix;
using mox_test::null;
using mox_test::texts;

class ResultCellsTest : public search_test::RunnerTest {
 protected:
  std::shared_ptr<moxSQLDataSource> columns(std::string const& content) {
    return query("<Command>x</Command><Columns>" + content + "</Columns>");
  }

  static std::string formatters(std::string const& content) {
    return "<Formatters " + content + "</Formatters>";
  }
};

/// The status is shown as an icon by its key; the name has no icon of its own.
std::string const kIcons =
    "<Column columnName=\"nome\" Type=\"1\"><IconColumn columnName=\"situacao\"/></Column>"
    "<Column columnName=\"situacao\" Type=\"2\"><Formatters Icon=\"moxIntegralFormatter\">"
    "<Icon prefix=\"icone-\" suffix=\".png\"/></Formatters></Column>"
    "<Column columnName=\"idade\" Type=\"2\"><IconColumn columnName=\"idade\"/></Column>";

}  // namespace

TEST_F(ResultCellsTest, OfNothingEverythingIsNeutral) {
  ResultCells const cells;
  EXPECT_EQ(cells.text(0, 0), "");
  EXPECT_EQ(cells.icon(0, 0), "");
  EXPECT_FALSE(cells.hasIcon(0));
  EXPECT_EQ(cells.value<int>(0, 0), 0);
}

TEST_F(ResultCellsTest, AnIconIsTheCellOfTheIconColumnByItsIconFormatter) {
  auto const rows =
      matrix({{"nome", texts("Ana", "Bia")}, {"situacao", ints(2, null)}, {"idade", ints(7, 8)}});
  ResultCells const cells(*rows, columns(kIcons).get());
  EXPECT_TRUE(cells.hasIcon(0));
  EXPECT_EQ(cells.icon(0, 0), "icone-2.png");
  EXPECT_EQ(cells.icon(1, 0), "");
  EXPECT_EQ(cells.icon(2, 0), "");
  EXPECT_EQ(cells.text(0, 0), "Ana");
}

TEST_F(ResultCellsTest, WithoutAnIconColumnThereIsNoIcon) {
  auto const rows = matrix({{"nome", texts("Ana")}, {"situacao", ints(2)}, {"idade", ints(7)}});
  ResultCells const cells(*rows, columns(kIcons).get());
  EXPECT_FALSE(cells.hasIcon(1));
  EXPECT_EQ(cells.icon(0, 1), "");
}

TEST_F(ResultCellsTest, AnIconColumnWithoutAnIconFormatterIsNone) {
  auto const rows = matrix({{"nome", texts("Ana")}, {"situacao", ints(2)}, {"idade", ints(7)}});
  ResultCells const cells(*rows, columns(kIcons).get());
  EXPECT_FALSE(cells.hasIcon(2));
  EXPECT_EQ(cells.icon(0, 2), "");
}

TEST_F(ResultCellsTest, OutsideThereAreNoIcons) {
  auto const rows = matrix({{"nome", texts("Ana")}});
  ResultCells const cells(*rows, columns(kIcons).get());
  EXPECT_TRUE(cells.hasIcon(0));    // by the definition
  EXPECT_EQ(cells.icon(0, 0), "");  // the result lacks the column of the keys
  EXPECT_FALSE(cells.hasIcon(1));
  EXPECT_EQ(cells.icon(0, 1), "");
}

TEST_F(ResultCellsTest, AColumnMayHoldItsOwnIcon) {
  auto const rows = matrix({{"x", texts("a", null)}});
  auto const definition =
      columns("<Column columnName=\"x\" Type=\"1\"><IconColumn columnName=\"x\"/>" +
              formatters("Icon=\"moxTextFormatter\"><Icon suffix=\".svg\"/>") + "</Column>");
  ResultCells const cells(*rows, definition.get());
  EXPECT_EQ(cells.icon(0, 0), "a.svg");
  EXPECT_EQ(cells.icon(1, 0), "");
  EXPECT_EQ(cells.text(0, 0), "a");
}

// "table.curso" shows what "curso_id" refers to: both are columns like any other.
TEST_F(ResultCellsTest, AReferenceColumnIsReadByItsPlace) {
  auto const definition = columns(
      "<Column columnName=\"curso\" Type=\"1\"><refColumn columnName=\"curso_id\"/>"
      "</Column><Column columnName=\"curso_id\" Type=\"2\"/>");
  auto const rows = matrix({{"curso", texts("Física")}, {"curso_id", ints(12)}});
  ResultCells const cells(*rows, definition.get());
  EXPECT_EQ(definition->columnAt(0)->getIdColumn(), definition->columnAt(1));
  EXPECT_EQ(cells.text(0, 0), "Física");
  EXPECT_EQ(cells.value<int>(0, 1), 12);
}

TEST_F(ResultCellsTest, EveryKindHasAFormatterOfItsOwn) {
  auto const rows = matrix({{"i", ints(-7)},
                            {"d", doubles(2.5)},
                            {"t", texts("ç")},
                            {"m", dates("2024-03-05 10:20:30")},
                            {"b", blobs("bytes")}});
  ResultCells const cells(*rows, nullptr);
  EXPECT_EQ(cells.text(0, 0), "-7");
  EXPECT_EQ(cells.text(0, 1), "2");
  EXPECT_EQ(cells.text(0, 2), "ç");
  EXPECT_EQ(cells.text(0, 3), "05/03/2024");
  EXPECT_EQ(cells.text(0, 4), "");
}

TEST_F(ResultCellsTest, FormattersDressTheirValues) {
  auto const definition = columns(
      "<Column columnName=\"i\">" +
      formatters("Visual=\"moxIntegralFormatter\"><Visual prefix=\"(\" suffix=\")\"/>") +
      "</Column><Column columnName=\"d\">" +
      formatters("Visual=\"moxDecimalFormatter\"><Visual precision=\"1\" separator=\",\"/>") +
      "</Column><Column columnName=\"t\">" +
      formatters("Visual=\"moxTextFormatter\"><Visual prefix=\"&lt;\"/>") +
      "</Column><Column columnName=\"m\">" +
      formatters("Visual=\"moxDateFormatter\"><Visual mask=\"%Y\"/>") +
      "</Column><Column columnName=\"b\">" + formatters("Visual=\"moxTextFormatter\"><Visual/>") +
      "</Column>");
  auto const rows = matrix({{"i", ints(1, null)},
                            {"d", doubles(2.25, null)},
                            {"t", texts("x", null)},
                            {"m", dates("2024-03-05", null)},
                            {"b", blobs("y", null)}});
  ResultCells const cells(*rows, definition.get());
  std::vector<std::string> const expected{"(1)", "2,2", "<x", "2024", "y"};
  for (unsigned int i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(cells.text(0, i), expected[i]);
    EXPECT_EQ(cells.text(1, i), "");
    EXPECT_EQ(cells.text(2, i), "");
  }
}

// The text filter dresses empty texts as well, and nothing but a null goes without.
TEST_F(ResultCellsTest, ADerivedFormatterIsAskedItself) {
  auto const definition = columns(
      "<Column columnName=\"t\">" +
      formatters("Visual=\"moxTextFilter\"><Visual upper=\"1\" suffix=\"!\"/>") + "</Column>");
  auto const rows = matrix({{"t", texts("a", "", null)}});
  ResultCells const cells(*rows, definition.get());
  EXPECT_EQ(cells.text(0, 0), "A!");
  EXPECT_EQ(cells.text(1, 0), "!");
  EXPECT_EQ(cells.text(2, 0), "");
}

TEST_F(ResultCellsTest, AFormatterOfAnotherKindShowsNothing) {
  auto const definition =
      columns("<Column columnName=\"i\">" +
              formatters("Visual=\"moxDateFormatter\"><Visual mask=\"%Y\"/>") + "</Column>");
  ResultCells const cells(*matrix({{"i", ints(1)}}), definition.get());
  EXPECT_EQ(cells.text(0, 0), "");
  EXPECT_EQ(cells.value<int>(0, 0), 1);
}

TEST_F(ResultCellsTest, ColumnsOfForeignMakeAreReadAlike) {
  auto const rows = matrix({});
  rows->addColumn(
      std::make_shared<ForeignIntColumn>("i", std::vector<std::optional<int>>{1, std::nullopt, 3}));
  ResultCells const cells(*rows, nullptr);
  EXPECT_EQ(cells.text(0, 0), "1");
  EXPECT_EQ(cells.text(1, 0), "");
  EXPECT_EQ(cells.text(2, 0), "3");
  EXPECT_EQ(cells.value<int>(2, 0), 3);
}

TEST_F(ResultCellsTest, RowsThatSomeColumnLacksAreOutside) {
  auto const rows = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1)}});
  ResultCells const cells(*rows, nullptr);
  EXPECT_EQ(cells.text(0, 0), "1");
  EXPECT_EQ(cells.text(1, 0), "");
  EXPECT_EQ(cells.value<int>(1, 0), 2);  // read from the column alone
}
