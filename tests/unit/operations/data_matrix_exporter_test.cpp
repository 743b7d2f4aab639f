#include "mox/zyn/matrix/data_matrix_exporter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "mox/core/error.h"
#include "mox/zyn/format/decimal_formatter.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/matrix/data_matrix_exporter_format.h"
#include "support/random_tables.h"
#include "support/temporary_directory.h"
#include "unit/format/formatter_fixture.h"
#include "zyn/operations/export_row.h"

using namespace mox_test;

namespace {

constexpr char const* kCsv = "moxDataMatrixExporterCSVFormat";

using Matrix = std::shared_ptr<moxDataMatrix>;

std::string contentOf(std::filesystem::path const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A row of foreign make, over one column.
class ForeignRow final : public moxDataMatrixExporterRow {
 public:
  class Column final : public moxDataMatrixExporterColumn {
   public:
    explicit Column(std::shared_ptr<moxIterator> cursor) : cursor_(std::move(cursor)) {}
    std::string name() const override { return "testColumn"; }
    std::shared_ptr<moxIterator> getIterator() const override { return cursor_; }
    std::string columnName() const override { return "número"; }
    std::string value() const override { return "<" + std::to_string(cursor_->pos()) + ">"; }
    bool next() override { return cursor_->next(); }

   private:
    std::shared_ptr<moxIterator> cursor_;
  };

  explicit ForeignRow(std::shared_ptr<moxDataMatrixColumn> const& column)
      : column_(std::make_shared<Column>(column->begin())) {}
  std::string name() const override { return "testRow"; }
  unsigned int columnCount() const override { return 2; }
  std::shared_ptr<moxDataMatrixExporterColumn> column(unsigned int) const override {
    return column_;
  }
  bool next() override { return column_->next(); }

 private:
  std::shared_ptr<Column> column_;
};

class DataMatrixExporterTest : public FormatterFixture {
 protected:
  std::shared_ptr<moxDataMatrixExporter> exporterOf(Matrix const& sample) {
    auto const exporter = host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");
    exporter->setSampleDataMatrix(sample);
    exporter->setOutputFormat(kCsv);
    return exporter;
  }

  std::string exported(moxDataMatrixExporter const& exporter, Matrix const& data,
                       bool visible = false, bool detail = false) {
    auto const path = directory_.path() / "out.csv";
    EXPECT_TRUE(exporter.exportToFile(path.string(), data, visible, detail));
    return contentOf(path);
  }

  std::shared_ptr<moxDataMatrixExporterCSVFormat> csvOf(moxDataMatrixExporter& exporter) {
    return std::dynamic_pointer_cast<moxDataMatrixExporterCSVFormat>(exporter.getOutputFormat());
  }

  TemporaryDirectory directory_;
};

}  // namespace

TEST_F(DataMatrixExporterTest, WritesCellsByTheKindOfTheirColumn) {
  Matrix const data = matrix({{"i", ints(1234, null)},
                              {"d", doubles(12.0, null)},
                              {"t", texts("Ana", null)},
                              {"q", dates("2024-03-05 10:20:30", null)},
                              {"b", blobs("x", null)}});

  EXPECT_EQ(exported(*exporterOf(data), data), "1234;12;Ana;05/03/2024;\n;;;;\n");
}

TEST_F(DataMatrixExporterTest, AMatrixOfOneColumnWritesNoSeparator) {
  Matrix const data = matrix({{"a", ints(1, 2)}});

  EXPECT_EQ(exported(*exporterOf(data), data), "1\n2\n");

  Matrix const empty = matrix({{"a", ints(null)}});
  EXPECT_EQ(exported(*exporterOf(empty), empty), "\n");
}

TEST_F(DataMatrixExporterTest, EveryLineEndsWithASingleLineFeed) {
  Matrix const data = matrix({{"a", texts("x")}, {"b", texts("y")}});

  EXPECT_EQ(exported(*exporterOf(data), data), "x;y\n");
}

TEST_F(DataMatrixExporterTest, ValuesStandAsTheyAre) {
  Matrix const data = matrix({{"a", texts("um;dois", "linha\noutra", "\"aspas\"")}});

  EXPECT_EQ(exported(*exporterOf(data), data), "um;dois\nlinha\noutra\n\"aspas\"\n");
}

TEST_F(DataMatrixExporterTest, ASeparatorMayHaveManyBytesOrNone) {
  Matrix const data = matrix({{"a", ints(1, 2)}, {"b", texts("x", null)}, {"c", ints(3, 4)}});
  auto const exporter = exporterOf(data);
  csvOf(*exporter)->setHeaderFormatter("Exportar");

  csvOf(*exporter)->setSeparator(" | ");
  EXPECT_EQ(exported(*exporter, data), "a | b | c\n1 | x | 3\n2 |  | 4\n");

  csvOf(*exporter)->setSeparator("");
  EXPECT_EQ(exported(*exporter, data), "abc\n1x3\n24\n");

  std::string const endless(400'000, 's');  // and nothing else that would have the buffer grow
  csvOf(*exporter)->setSeparator(endless);
  csvOf(*exporter)->setHeaderFormatter("");
  EXPECT_TRUE(exported(*exporter, data) ==
              "1" + endless + "x" + endless + "3\n2" + endless + endless + "4\n");
}

TEST_F(DataMatrixExporterTest, VeryLongCellsAndNamesAreWrittenWhole) {
  std::string const name(700'000, 'n');
  std::string const cell(900'000, 'c');
  std::string const separator(300'000, 's');
  Matrix const data = matrix({{name, texts(cell, "x", cell)}, {"", ints(1, 2, 3)}});
  auto const exporter = exporterOf(data);
  csvOf(*exporter)->setHeaderFormatter("Exportar");
  csvOf(*exporter)->setSeparator(separator);

  EXPECT_TRUE(exported(*exporter, data) == name + separator + "\n" + cell + separator + "1\nx" +
                                               separator + "2\n" + cell + separator + "3\n");
}

TEST_F(DataMatrixExporterTest, AFormatWithoutAnExporterWritesNoHeadings) {
  auto const format = host_.get<moxDataMatrixExporterCSVFormat>(kCsv);
  format->setHeaderFormatter("Exportar");
  auto const path = directory_.path() / "alone.csv";

  format->exportToFile(path.string(), std::make_shared<ForeignRow>(column("a", ints(1))));
  EXPECT_EQ(contentOf(path), "<0>;<0>\n");

  auto exporter = host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");
  format->setParentExporter(exporter);
  format->exportToFile(path.string(), std::make_shared<ForeignRow>(column("a", ints(1))));
  EXPECT_EQ(contentOf(path), "número;número\n<0>;<0>\n");

  exporter.reset();
  format->exportToFile(path.string(), std::make_shared<ForeignRow>(column("a", ints(1))));
  EXPECT_EQ(contentOf(path), "<0>;<0>\n") << "an exporter that is gone is none";
}

TEST_F(DataMatrixExporterTest, TheHeaderExportarNeedsNoFormatterInTheList) {
  Matrix const data = matrix({{"a", ints(1)}, {"b", ints(2)}});
  auto const exporter = exporterOf(data);
  exporter->setColumnInfo("b", moxDataMatrixExporter::kSempre, "Segunda");
  csvOf(*exporter)->setHeaderFormatter("Exportar");

  EXPECT_EQ(exported(*exporter, data), "a;Segunda\n1;2\n");
  EXPECT_EQ(exported(*exporter, matrix({{"a", ints()}, {"b", ints()}})), "a;Segunda\n");
}

TEST_F(DataMatrixExporterTest, HeadingsPassThroughATextFormatterOfTheExporter) {
  Matrix const data = matrix({{"a", ints(1)}});
  auto const exporter = exporterOf(data);
  auto const heading = host_.get<moxTextAsString>("moxTextFormatter");
  heading->setDescription("cabeçalho");
  heading->setPrefix("[");
  heading->setSuffix("]");
  exporter->addFormatter(heading);
  auto const number = host_.get<moxGenericFormatter>("moxDecimalFormatter");
  number->setDescription("número");
  exporter->addFormatter(number);

  csvOf(*exporter)->setHeaderFormatter("cabeçalho");
  EXPECT_EQ(exported(*exporter, data), "[a]\n1\n");

  csvOf(*exporter)->setHeaderFormatter("número");
  EXPECT_EQ(exported(*exporter, data), "1\n") << "only texts head a column";

  csvOf(*exporter)->setHeaderFormatter("outro");
  EXPECT_EQ(exported(*exporter, data), "1\n");
}

TEST_F(DataMatrixExporterTest, ColumnsTakeTheirFormatterByName) {
  Matrix const data = matrix({{"v", doubles(1234.5)}, {"w", doubles(3.0)}, {"x", doubles(4.0)}});
  auto const exporter = exporterOf(data);
  auto const money = host_.get<moxDecimalAsString>("moxDecimalFormatter");
  money->setDescription("reais");
  money->setPrefix("R$ ");
  money->setDecimalPrecision(2);
  money->setDecimalSeparator(',');
  exporter->addFormatter(money);
  exporter->addFormatter(money);
  exporter->setColumnFormatter("v", "reais");
  exporter->setColumnFormatter("x", "sumido");

  EXPECT_EQ(exporter->getFormatters().size(), 1U);
  EXPECT_EQ(exported(*exporter, data), "R$ 1234,50;3;4\n");

  exporter->removeFormatter(money);
  EXPECT_FALSE(exporter->formatterByName("reais"));
  EXPECT_EQ(exported(*exporter, data), "1234;3;4\n");
}

TEST_F(DataMatrixExporterTest, ColumnsTakePartByTheirInfo) {
  Matrix const data = matrix({{"s", ints(1)}, {"v", ints(2)}, {"d", ints(3)}, {"n", ints(4)}});
  auto const exporter = exporterOf(data);
  exporter->setColumnInfo("v", moxDataMatrixExporter::kVisivel, "");
  exporter->setColumnInfo("d", moxDataMatrixExporter::kDetalhe, "");
  exporter->setColumnInfo("n", moxDataMatrixExporter::kNunca, "");
  exporter->setColumnInfo("unknown", moxDataMatrixExporter::kNunca, "");

  EXPECT_EQ(exported(*exporter, data), "1\n");
  EXPECT_EQ(exported(*exporter, data, true, false), "1;2\n");
  EXPECT_EQ(exported(*exporter, data, false, true), "1;3\n");
  EXPECT_EQ(exported(*exporter, data, true, true), "1;2;3\n");
}

TEST_F(DataMatrixExporterTest, AColumnThatTheMatrixLacksIsLeftOut) {
  auto const exporter = exporterOf(matrix({{"a", ints()}, {"b", ints()}, {"c", ints()}}));

  EXPECT_EQ(exported(*exporter, matrix({{"c", ints(3)}, {"a", ints(1)}})), "1;3\n");
  EXPECT_EQ(exported(*exporter, matrix({{"x", ints(3)}})), "");
}

TEST_F(DataMatrixExporterTest, WritesTheRowsThatStandInEveryColumn) {
  Matrix const data = matrix({{"a", ints(1, 2, 3)}, {"b", ints(1, 2)}});

  EXPECT_EQ(exported(*exporterOf(matrix({{"a", ints()}})), data), "1\n2\n");
}

TEST_F(DataMatrixExporterTest, WithoutAFormatNothingIsWritten) {
  auto const exporter = host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");
  auto const path = directory_.path() / "none.csv";

  EXPECT_FALSE(exporter->exportToFile(path.string(), matrix({{"a", ints(1)}}), true, true));
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_THROW(exporter->setOutputFormat("moxNoFormat"), moxPluginNotFound);
}

TEST_F(DataMatrixExporterTest, AFileThatCannotBeOpenedIsNotReported) {
  Matrix const data = matrix({{"a", ints(1)}});

  EXPECT_TRUE(exporterOf(data)->exportToFile((directory_.path() / "no" / "out.csv").string(), data,
                                             true, true));
  EXPECT_THROW(exporterOf(data)->exportToFile("x", nullptr, true, true), std::invalid_argument);
}

TEST_F(DataMatrixExporterTest, AShorterExportReplacesALongerFile) {
  Matrix const data = matrix({{"a", texts("a long line of text")}});
  exported(*exporterOf(data), data);

  Matrix const little = matrix({{"a", texts("x")}});
  EXPECT_EQ(exported(*exporterOf(little), little), "x\n");
}

TEST_F(DataMatrixExporterTest, XmlHoldsFormattersColumnsAndFormatInThisOrder) {
  auto const exporter = exporterOf(matrix({{"a", ints()}, {"b", texts()}}));
  auto const heading = host_.get<moxTextAsString>("moxTextFormatter");
  heading->setDescription("cabeçalho");
  exporter->addFormatter(heading);
  exporter->setColumnInfo("b", moxDataMatrixExporter::kDetalhe, "not kept");
  exporter->setColumnFormatter("b", "cabeçalho");
  csvOf(*exporter)->setSeparator(",");
  csvOf(*exporter)->setHeaderFormatter("Exportar");

  std::string const text = saved(*exporter);
  EXPECT_EQ(text,
            "<r><Formatters><moxTextFormatter description=\"cabeçalho\" prefix=\"\" suffix=\"\"/>"
            "</Formatters><Columns><Column name=\"a\" formatter=\"\" type=\"0\" expinfo=\"0\"/>"
            "<Column name=\"b\" formatter=\"cabeçalho\" type=\"2\" expinfo=\"2\"/></Columns>"
            "<OutputFormat><moxDataMatrixExporterCSVFormat separator=\",\" "
            "headerFormat=\"Exportar\"/></OutputFormat></r>");

  auto const again = host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");
  again->addFormatter(heading);
  ASSERT_TRUE(again->load(xml(text)));
  EXPECT_EQ(saved(*again), text);
  EXPECT_EQ(exported(*again, matrix({{"a", ints(1)}, {"b", texts("x")}}), false, true),
            "a,b\n1,x\n");
  EXPECT_FALSE(again->load(nullptr));
  EXPECT_FALSE(again->save(nullptr));
  EXPECT_EQ(saved(*again), text);
}

TEST_F(DataMatrixExporterTest, LoadingTakesThePlaceOfAllThatWasThere) {
  auto const exporter = exporterOf(matrix({{"a", ints()}, {"b", texts()}}));
  exporter->addFormatter(host_.get<moxGenericFormatter>("moxTextFormatter"));

  ASSERT_TRUE(
      exporter->load(xml("<r><Columns><Column name='c' type='7' expinfo='4'/></Columns>"
                         "</r>")));

  EXPECT_EQ(saved(*exporter),
            "<r><Formatters/><Columns><Column name=\"c\" formatter=\"\" type=\"0\" "
            "expinfo=\"0\"/></Columns><OutputFormat/></r>");
}

TEST_F(DataMatrixExporterTest, AFileOfAnUnknownFormatChangesNothing) {
  auto const exporter = exporterOf(matrix({{"a", ints()}}));
  exporter->addFormatter(host_.get<moxGenericFormatter>("moxTextFormatter"));
  std::string const before = saved(*exporter);

  EXPECT_THROW(exporter->load(xml("<r><Columns><Column name='b'/></Columns>"
                                  "<OutputFormat><moxNoFormat/></OutputFormat></r>")),
               moxPluginNotFound);

  EXPECT_EQ(saved(*exporter), before);
}

TEST_F(DataMatrixExporterTest, ANewSampleKeepsWhatWasSaidOfColumnsOfTheSameName) {
  auto const exporter = exporterOf(matrix({{"a", ints()}, {"b", ints()}, {"c", ints()}}));
  exporter->setColumnInfo("b", moxDataMatrixExporter::kDetalhe, "Segunda");
  exporter->setColumnFormatter("b", "reais");
  exporter->setColumnFormatter("missing", "reais");

  exporter->setSampleDataMatrix(matrix({{"d", ints()}, {"b", texts()}}));

  auto const columns = exporter->getColumns();
  ASSERT_EQ(columns.size(), 2U);
  EXPECT_EQ(columns[0].name, "d");
  EXPECT_EQ(columns[0].formatter, "");
  EXPECT_EQ(columns[1].name, "b");
  EXPECT_EQ(columns[1].info, moxDataMatrixExporter::kDetalhe);
  EXPECT_EQ(columns[1].header, "Segunda");
  EXPECT_EQ(columns[1].formatter, "reais");
  EXPECT_THROW(exporter->setSampleDataMatrix(nullptr), std::invalid_argument);
}

TEST_F(DataMatrixExporterTest, HostileNumbersInXmlAreAsIfNothingHadBeenSaid) {
  auto const exporter = host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");

  ASSERT_TRUE(exporter->load(
      xml("<r><Columns><Column name='a' type='99999999999' expinfo='-7'/></Columns></r>")));

  ASSERT_EQ(exporter->getColumns().size(), 1U);
  EXPECT_EQ(exporter->getColumns()[0].info, moxDataMatrixExporter::kSempre);
  EXPECT_FALSE(exporter->getOutputFormat());
  EXPECT_THROW(exporter->load(xml("<r><OutputFormat><moxNoFormat/></OutputFormat></r>")),
               moxPluginNotFound);
}

TEST_F(DataMatrixExporterTest, TheFormatWritesRowsOfForeignMake) {
  auto const format = host_.get<moxDataMatrixExporterCSVFormat>(kCsv);
  EXPECT_EQ(format->getSeparator(), ";");
  EXPECT_EQ(format->getHeaderFormatterName(), "");
  auto const path = directory_.path() / "foreign.csv";

  format->exportToFile(path.string(), std::make_shared<ForeignRow>(column("a", ints(1, 2))));
  EXPECT_EQ(contentOf(path), "<0>;<0>\n<1>;<1>\n");

  format->exportToFile(path.string(), std::make_shared<ForeignRow>(column("a", ints())));
  EXPECT_EQ(contentOf(path), "");
}

namespace {

/// A row that shows nothing but its published face.
class PublishedRow final : public moxDataMatrixExporterRow {
 public:
  explicit PublishedRow(std::shared_ptr<moxDataMatrixExporterRow> row) : row_(std::move(row)) {}
  std::string name() const override { return row_->name(); }
  unsigned int columnCount() const override { return row_->columnCount(); }
  std::shared_ptr<moxDataMatrixExporterColumn> column(unsigned int index) const override {
    return row_->column(index);
  }
  bool next() override { return row_->next(); }

 private:
  std::shared_ptr<moxDataMatrixExporterRow> row_;
};

std::shared_ptr<DME::Internals::ExportRow> rowOf(moxDataMatrix& data) {
  auto row = std::make_shared<DME::Internals::ExportRow>(data.rowCount());
  for (unsigned int i = 0; i < data.columnCount(); ++i) {
    row->addColumn(std::make_shared<DME::Internals::ExportColumn>(data.columnAt(i), nullptr, ""));
  }
  return row;
}

}  // namespace

TEST_F(DataMatrixExporterTest, AForeignRowBeginsWhereAllColumnsHaveOne) {
  auto const format = host_.get<moxDataMatrixExporterFormat>(kCsv);
  auto const path = directory_.path() / "out.csv";
  auto const longer = host_.get<moxDataMatrix>("moxDataMatrix");
  longer->addColumn(column("a", ints(1, 2)));
  longer->addColumn(column("b", ints()));

  format->exportToFile(path.string(), std::make_shared<PublishedRow>(rowOf(*longer)));

  EXPECT_EQ(contentOf(path), "");
}

TEST_F(DataMatrixExporterTest, WritesWhatTheRowsPublishedFaceTells) {
  RandomTables random(20240307, {.unevenColumns = false});
  auto const format = host_.get<moxDataMatrixExporterFormat>(kCsv);
  auto const fast = directory_.path() / "fast.csv";
  auto const plain = directory_.path() / "plain.csv";
  for (int round = 0; round < 20000; ++round) {
    Matrix const data = random.table();

    format->exportToFile(fast.string(), rowOf(*data));
    format->exportToFile(plain.string(), std::make_shared<PublishedRow>(rowOf(*data)));

    ASSERT_EQ(contentOf(fast), contentOf(plain)) << "round " << round;
    std::filesystem::remove(fast);  // writing over it would wait for the disk
    std::filesystem::remove(plain);
  }
}
