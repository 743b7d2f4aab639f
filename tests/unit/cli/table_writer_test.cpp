#include "cli/output/table_writer.h"

#include <gtest/gtest.h>

#include "unit/cli/result_builder.h"

namespace mox::cli::testing {
namespace {

std::string table(std::vector<Column> const& columns, TableOptions const& options = {}) {
  return written([&](OutputBuffer& out) { writeTable(out, result(columns), options); });
}

TEST(TableWriter, AlignsNumbersToTheRightAndTextsToTheLeft) {
  EXPECT_EQ(table({ints("id", {1, 10}), texts("nome", {"Ana Conceição", "Zé"}),
                   doubles("nota", {9.5, 10})}),
            "id  nome           nota\n"
            "──  ─────────────  ────\n"
            " 1  Ana Conceição   9.5\n"
            "10  Zé               10\n");
}

TEST(TableWriter, AlignsWideAndCombiningCharacters) {
  EXPECT_EQ(table({texts("a", {"漢字", "e\u0301", "abcd"}), ints("n", {1, 2, 3})}),
            "a     n\n"
            "────  ─\n"
            "漢字  1\n"
            "e\u0301     2\n"
            "abcd  3\n");
}

TEST(TableWriter, ShowsNullsAsAWordAndBlobsByTheirSize) {
  EXPECT_EQ(table({ints("n", {std::nullopt}), texts("t", {std::nullopt}), blobs("b", {"abc"})}),
            "   n  t     b\n"
            "────  ────  ──────────────\n"
            "null  null  <blob 3 bytes>\n");
}

TEST(TableWriter, StylesHeadersAndNullsOnly) {
  EXPECT_EQ(table({texts("t", {std::nullopt, "x"})}, {.styled = true}),
            "\x1b[1mt\x1b[22m\n"
            "────\n"
            "\x1b[2mnull\x1b[22m\n"
            "x\n");
}

TEST(TableWriter, LetsNoCellSteerTheTerminal) {
  EXPECT_EQ(table({texts("h\x1b", {"\x1b[31mred\nline"})}),
            "h␛\n"
            "─────────────\n"
            "␛[31mred␊line\n")
      << "also in the header";
}

TEST(TableWriter, ShortensLongTextsToTheTerminal) {
  EXPECT_EQ(table({ints("id", {1}), texts("texto", {std::string(100, 'x')})}, {.width = 20}),
            "id  texto\n"
            "──  ────────────────\n"
            " 1  xxxxxxxxxxxxxxx…\n");
}

TEST(TableWriter, ShortensHeadersOfNarrowNumbers) {
  EXPECT_EQ(table({ints("um_nome_muito_longo", {1234}), texts("t", {"abcdefgh"})}, {.width = 16}),
            "um_no…  t\n"
            "──────  ────────\n"
            "  1234  abcdefgh\n");
}

TEST(TableWriter, LeavesOutColumnsThatCannotFitAndNamesThem) {
  StringSink sink;
  OutputBuffer out(sink);
  auto const leftOut = writeTable(
      out,
      result({ints("a", {1000000}), ints("b", {1000000}), ints("c", {5}), ints("d", {1000000})}),
      {.width = 22});
  out.flush();
  EXPECT_EQ(leftOut, (std::vector<std::string>{"d"}));
  EXPECT_EQ(sink.text,
            "      a        b  c  …\n"
            "───────  ───────  ─  ─\n"
            "1000000  1000000  5  …\n");
}

TEST(TableWriter, ShowsTheHeaderOfATableWithoutRows) {
  EXPECT_EQ(table({ints("id", {}), texts("nome", {})}),
            "id  nome\n"
            "──  ────\n");
}

TEST(TableWriter, WritesNothingForATableWithoutColumns) {
  EXPECT_EQ(table({}), "");
}

}  // namespace
}  // namespace mox::cli::testing
