#include "cli/output/csv_export.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#include "cli/output/csv_writer.h"
#include "core/app/host_container.h"
#include "mox/core/error.h"
#include "mox/zyn/format/generic_formatter.h"
#include "support/test_host.h"
#include "unit/cli/result_builder.h"
#include "zyn/matrix/data_matrix.h"

namespace mox::cli {
namespace {

using namespace testing;

/// An application that knows the format, as the program's does.
class CsvExportTest : public ::testing::Test {
 protected:
  CsvExportTest() {
    auto registration = host_.application().registry().newRegistration();
    registration.setLibraryName("ZYN");
    registration.registerClass(
        std::make_unique<core::HostContainer<CsvFormat>>(CsvFormat::kRegisteredName));
    host_.application().registry().add(std::move(registration));
  }

  std::shared_ptr<moxDataMatrixExporter> newExporter() {
    return host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");
  }

  std::string exported(std::vector<Column> const& columns, CsvFormat::Choices choices = {},
                       bool formatted = false) {
    auto const matrix = std::make_shared<DataMatrix>();
    for (auto const& column : columns) {
      matrix->addColumn(column);
    }
    return written([&](OutputBuffer& out) {
      exportCsv(*newExporter(), matrix, out, formatted, std::move(choices));
    });
  }

  TestHost host_;
};

/// Writes whole numbers between brackets.
class Brackets final : public moxGenericFormatter {
 public:
  std::string name() const override { return "testBrackets"; }
  bool save(std::shared_ptr<moxXMLNode> /*node*/) const override { return false; }
  bool load(std::shared_ptr<moxXMLNode> /*node*/) override { return false; }
  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override {
    auto const number = std::dynamic_pointer_cast<moxIteratorBase<int> const>(cell);
    return number && number->get() != 0 ? "<" + std::to_string(number->get()) + ">" : "";
  }
  void setDescription(std::string const& /*description*/) override {}
  std::string getDescription() const override { return "Colchetes"; }
  void setPrefix(std::string const& /*prefix*/) override {}
  void setSuffix(std::string const& /*suffix*/) override {}
  std::string getPrefix() const override { return {}; }
  std::string getSuffix() const override { return {}; }
};

std::vector<Column> columnsOfEveryKind() {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  return {ints("i", {1, std::nullopt, -2147483648}), doubles("d", {0.1, nan, std::nullopt}),
          texts("t, \"u\"", {"a,b", "", std::nullopt}),
          dates("m", {datetime_t(5, 3, 2024), datetime_t(), datetime_t(1, 1, 2024, 8)}),
          blobs("b", {"foo", "", std::nullopt})};
}

TEST_F(CsvExportTest, WritesPlainValuesOfEveryKind) {
  EXPECT_EQ(exported(columnsOfEveryKind()),
            "i,d,\"t, \"\"u\"\"\",m,b\n"
            "1,0.1,\"a,b\",2024-03-05 00:00:00,Zm9v\n"
            ",NaN,\"\",,\"\"\n"
            "-2147483648,,,2024-01-01 08:00:00,\n");
}

TEST_F(CsvExportTest, IsWhatTheWriterOfTablesWrites) {
  auto const columns = columnsOfEveryKind();
  EXPECT_EQ(exported(columns),
            written([&](OutputBuffer& out) { writeCsv(out, result(columns), {}); }));
}

TEST_F(CsvExportTest, ColumnsOfOneNameAndWithoutNameAreAllWritten) {
  EXPECT_EQ(exported({ints("a", {1}), ints("a", {2}), ints("", {3}), ints("0", {4})}),
            "a,a,\"\",0\n1,2,3,4\n");
}

TEST_F(CsvExportTest, FormattedValuesAreThoseOfTheColumnsFormatters) {
  auto const column = ints("n", {5, std::nullopt, 0});
  column->setFormatter(std::make_shared<Brackets>());
  EXPECT_EQ(exported({column, ints("m", {1, 2, 3})}, {}, true), "n,m\n<5>,1\n,2\n\"\",3\n");
  EXPECT_EQ(exported({column}), "n\n5\n\n0\n");
}

TEST_F(CsvExportTest, StopsAtTheLimitAndTellsHowFarItIs) {
  std::int64_t seen = 0;
  CsvFormat::Choices choices{{}, 9000, [&](std::int64_t rows) { seen = rows; }};
  auto const text = exported({ints("n", std::vector<std::optional<int>>(10000, 7))}, choices);
  EXPECT_EQ(text.size(), 2 + 2 * 9000U);
  EXPECT_EQ(seen, 8192);
  EXPECT_EQ(exported({ints("n", {1, 2})}, {{}, 0, {}}), "n\n");
}

TEST_F(CsvExportTest, ControlCharactersBecomePicturesOnATerminal) {
  EXPECT_EQ(exported({texts("x\x1b", {"\x1b[31m", "a\nb"})}, {{.forTerminal = true}, 10, {}}),
            "x␛\n␛[31m\na␊b\n");
}

TEST_F(CsvExportTest, ResultsWithoutRowsAndWithoutColumns) {
  EXPECT_EQ(exported({ints("a", {}), texts("b", {})}), "a,b\n");
  EXPECT_EQ(exported({}), "");
}

TEST_F(CsvExportTest, RowsAreThoseOfTheShortestColumn) {
  EXPECT_EQ(exported({ints("a", {1, 2, 3}), ints("b", {})}), "a,b\n");
  EXPECT_EQ(exported({ints("a", {1, 2, 3}), ints("b", {4})}), "a,b\n1,4\n");
}

TEST_F(CsvExportTest, LargeTextsPassTheBuffer) {
  std::string const large(300000, 'x');
  EXPECT_EQ(exported({texts("x", {"a", large, "b"})}), "x\na\n" + large + "\nb\n");
}

class CsvFormatFileTest : public CsvExportTest {
 protected:
  CsvFormatFileTest() { std::filesystem::create_directory(folder_); }
  ~CsvFormatFileTest() override { std::filesystem::remove_all(folder_); }

  std::string contentOf(std::string const& name) const {
    std::ifstream file(folder_ / name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }

  std::filesystem::path const folder_ =
      std::filesystem::path(::testing::TempDir()) /
      (std::string("zyn_csv_format_") +
       ::testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(CsvFormatFileTest, WithoutAnOutputAFileIsWrittenWhole) {
  auto const exporter = newExporter();
  exporter->setOutputFormat(CsvFormat::kRegisteredName);
  auto const matrix = std::make_shared<DataMatrix>();
  matrix->addColumn(texts("t", {"a,b"}));
  exporter->setSampleDataMatrix(matrix);
  EXPECT_TRUE(exporter->exportToFile((folder_ / "a.csv").string(), matrix, true, true));
  EXPECT_EQ(contentOf("a.csv"), "t\n\"a,b\"\n");
  EXPECT_THROW(exporter->exportToFile((folder_ / "b" / "a.csv").string(), matrix, true, true),
               moxError);
}

TEST_F(CsvExportTest, HasNoSettings) {
  auto const format = host_.get<moxDataMatrixExporterFormat>(CsvFormat::kRegisteredName);
  EXPECT_FALSE(format->load(nullptr));
  EXPECT_FALSE(format->save(nullptr));
}

}  // namespace
}  // namespace mox::cli
