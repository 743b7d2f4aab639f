#include "cli/output/csv_writer.h"

#include <limits>

#include <gtest/gtest.h>

#include "unit/cli/result_builder.h"

namespace mox::cli::testing {
namespace {

std::string csv(std::vector<Column> const& columns, CsvOptions const& options = {}) {
  return written([&](OutputBuffer& out) { writeCsv(out, result(columns), options); });
}

TEST(CsvWriter, WritesAHeaderAndALineARow) {
  EXPECT_EQ(csv({ints("a", {1, -2147483648}), doubles("b", {2.5, 0.1})}),
            "a,b\n1,2.5\n-2147483648,0.1\n");
}

TEST(CsvWriter, TellsNullFromEmptyText) {
  EXPECT_EQ(csv({ints("n", {std::nullopt, 0}), texts("t", {std::nullopt, ""})}),
            "n,t\n,\n0,\"\"\n");
}

TEST(CsvWriter, QuotesOnlyWhatNeedsIt) {
  EXPECT_EQ(
      csv({texts("x", {"plain text", "a,b", "say \"hi\"", "two\nlines", "cr\r", " blanks "})}),
      "x\nplain text\n\"a,b\"\n\"say \"\"hi\"\"\"\n\"two\nlines\"\n\"cr\r\"\n blanks \n");
}

TEST(CsvWriter, QuotesHeadersLikeTexts) {
  EXPECT_EQ(csv({ints("count(a,b)", {1}), ints("", {2})}), "\"count(a,b)\",\"\"\n1,2\n");
}

TEST(CsvWriter, KeepsBytesThatAreNoUtf8AndControlCharacters) {
  EXPECT_EQ(csv({texts("x", {"\x1b[31m\xff"})}), "x\n\x1b[31m\xff\n");
}

TEST(CsvWriter, ShowsControlCharactersAsPicturesOnATerminal) {
  EXPECT_EQ(csv({texts("x\x1b", {"\x1b[31m", "a\nb", "", "ação"})}, {.forTerminal = true}),
            "x␛\n␛[31m\na␊b\n\"\"\nação\n");
}

TEST(CsvWriter, WritesDaysWithoutATimeWhenNoRowHasOne) {
  EXPECT_EQ(csv({dates("d", {datetime_t(5, 3, 2024), std::nullopt, datetime_t(1, 1, 1)})}),
            "d\n2024-03-05\n\n0001-01-01\n");
}

TEST(CsvWriter, WritesTheTimeInEveryRowWhenOneHasIt) {
  EXPECT_EQ(csv({dates("d", {datetime_t(5, 3, 2024), datetime_t(31, 12, 1969, 23, 59, 58)})}),
            "d\n2024-03-05 00:00:00\n1969-12-31 23:59:58\n");
}

TEST(CsvWriter, WritesAnEmptyDateLikeANull) {
  EXPECT_EQ(csv({dates("d", {datetime_t()})}), "d\n\n");
}

TEST(CsvWriter, WritesBlobsAsBase64) {
  EXPECT_EQ(
      csv({blobs("b", {"f", "fo", "foo", "foob", "", std::nullopt, std::string("\0\xff", 2)})}),
      "b\nZg==\nZm8=\nZm9v\nZm9vYg==\n\"\"\n\nAP8=\n");
}

TEST(CsvWriter, WritesNothingForATableWithoutColumns) {
  EXPECT_EQ(csv({}), "");
}

TEST(CsvWriter, WritesTheHeaderOfATableWithoutRows) {
  EXPECT_EQ(csv({ints("a", {})}), "a\n");
}

TEST(CsvWriter, WritesOnlyTheRowsOfTheTable) {
  auto table = result({dates("d", {datetime_t(1, 1, 2024), datetime_t(1, 1, 2024, 8)})});
  table.rowCount = 1;
  EXPECT_EQ(written([&](OutputBuffer& out) { writeCsv(out, table, {}); }),
            "d\n2024-01-01 00:00:00\n")
      << "the form of a column does not depend on how many of its rows are shown";
}

TEST(CsvWriter, TellsHowFarItIs) {
  auto table = result({ints("n", std::vector<std::optional<int>>(10000, 7))});
  std::int64_t seen = 0;
  table.onRows = [&](std::int64_t rows) { seen = rows; };
  auto const text = written([&](OutputBuffer& out) { writeCsv(out, table, {}); });
  EXPECT_EQ(seen, 8192);
  EXPECT_EQ(text.size(), 2 + 2 * 10000U);
}

TEST(CsvWriter, WritesTextsLargerThanTheBuffer) {
  std::string const large(300000, 'x');
  EXPECT_EQ(csv({texts("x", {"a", large, "b"})}), "x\na\n" + large + "\nb\n");
}

}  // namespace
}  // namespace mox::cli::testing
