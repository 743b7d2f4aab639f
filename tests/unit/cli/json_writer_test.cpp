#include "cli/output/json_writer.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "unit/cli/result_builder.h"

namespace mox::cli::testing {
namespace {

std::string json(std::vector<Column> const& columns) {
  return written([&](OutputBuffer& out) { writeJson(out, result(columns)); });
}

std::string ndjson(std::vector<Column> const& columns) {
  return written([&](OutputBuffer& out) { writeNdjson(out, result(columns)); });
}

std::string jsonText(std::string_view text) {
  return written([&](OutputBuffer& out) { writeJsonText(out, text); });
}

TEST(JsonWriter, WritesAnObjectALineInAnArray) {
  EXPECT_EQ(json({ints("a", {1, std::nullopt}), texts("b", {"x", ""})}),
            "[\n{\"a\":1,\"b\":\"x\"},\n{\"a\":null,\"b\":\"\"}\n]\n");
}

TEST(JsonWriter, WritesAnEmptyArrayWithoutRows) {
  EXPECT_EQ(json({ints("a", {})}), "[]\n");
  EXPECT_EQ(json({}), "[]\n");
}

TEST(JsonWriter, WritesNothingAroundTheObjectsOfNdjson) {
  EXPECT_EQ(ndjson({ints("a", {1, 2})}), "{\"a\":1}\n{\"a\":2}\n");
  EXPECT_EQ(ndjson({ints("a", {})}), "");
}

TEST(JsonWriter, WritesWhatIsNoNumberAsNull) {
  double const infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ndjson({doubles("d", {1.5, std::nan(""), infinity, -infinity})}),
            "{\"d\":1.5}\n{\"d\":null}\n{\"d\":null}\n{\"d\":null}\n");
}

TEST(JsonWriter, WritesMomentsAndBlobsAsTexts) {
  EXPECT_EQ(ndjson({dates("d", {datetime_t(5, 3, 2024), datetime_t()}),
                    blobs("b", {"foo", std::nullopt})}),
            "{\"d\":\"2024-03-05\",\"b\":\"Zm9v\"}\n{\"d\":null,\"b\":null}\n");
}

TEST(JsonWriter, MakesEqualNamesDifferent) {
  EXPECT_EQ(ndjson({ints("a", {1}), ints("a", {2}), ints("a", {3})}),
            "{\"a\":1,\"a_2\":2,\"a_3\":3}\n");
}

TEST(JsonWriter, LeavesTheNameOfAnotherColumnAlone) {
  EXPECT_EQ(distinctNames({"a", "a", "a_2", "a"}),
            (std::vector<std::string>{"a", "a_3", "a_2", "a_4"}));
  EXPECT_EQ(distinctNames({"a_2", "a_2", "a", "a"}),
            (std::vector<std::string>{"a_2", "a_2_2", "a", "a_3"}));
  EXPECT_EQ(distinctNames({"", ""}), (std::vector<std::string>{"", "_2"}));
}

TEST(JsonText, EscapesQuotesBackslashesAndControls) {
  EXPECT_EQ(jsonText("say \"hi\" \\ \b\f\n\r\t"), R"("say \"hi\" \\ \b\f\n\r\t")");
  EXPECT_EQ(jsonText(std::string_view("\0\x1b\x1f\x7f", 4)), R"("\u0000\u001b\u001f\u007f")");
}

TEST(JsonText, EscapesTheControlsPastAsciiThatTerminalsObey) {
  EXPECT_EQ(jsonText("\xC2\x9B"), R"("\u009b")");
}

TEST(JsonText, KeepsAccentsAndWideCharacters) {
  EXPECT_EQ(jsonText("ação 漢字 😀"), "\"ação 漢字 😀\"");
}

TEST(JsonText, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(jsonText("a\xff"
                     "b"),
            "\"a\uFFFDb\"");
  EXPECT_EQ(jsonText("\xC3"), "\"\uFFFD\"") << "cut off";
  EXPECT_EQ(jsonText("\xC0\xAF"), "\"\uFFFD\uFFFD\"") << "overlong";
  EXPECT_EQ(jsonText("\xED\xA0\x80"), "\"\uFFFD\uFFFD\uFFFD\"") << "surrogate";
  EXPECT_EQ(jsonText("\xF4\x90\x80\x80"), "\"\uFFFD\uFFFD\uFFFD\uFFFD\"")
      << "past the last character";
  EXPECT_EQ(jsonText("\xE2\x82"
                     "x"),
            "\"\uFFFDx\"");
}

TEST(JsonText, IsReadBackByAnotherParserForEveryPairOfBytes) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      std::string const raw{static_cast<char>(first), static_cast<char>(second)};
      auto const parsed = nlohmann::json::parse(jsonText(raw), nullptr, false);
      ASSERT_TRUE(parsed.is_string()) << first << " " << second;
      bool const isUtf8 = !nlohmann::json(raw)
                               .dump(-1, ' ', false, nlohmann::json::error_handler_t::ignore)
                               .compare(nlohmann::json(raw).dump(
                                   -1, ' ', false, nlohmann::json::error_handler_t::replace));
      if (isUtf8) {
        ASSERT_EQ(parsed.get<std::string>(), raw);
      }
    }
  }
}

}  // namespace
}  // namespace mox::cli::testing
