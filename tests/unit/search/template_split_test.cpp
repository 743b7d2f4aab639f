#include "zyn/search/template_split.h"

#include <gtest/gtest.h>

#include "zyn/search/search_runner.h"

namespace {

using Columns = std::vector<std::string>;

}  // namespace

TEST(TemplateSplit, LosesTheTrailingLiteral) {
  auto const split = splitTemplate("a{{b}}c{{d}}e");
  EXPECT_EQ(split.text, "a?c?");
  EXPECT_EQ(split.columns, (Columns{"b", "d"}));
}

TEST(TemplateSplit, IsOfferedByTheRunner) {
  auto const split = moxSE_Runner().parse("x{{y}}");
  EXPECT_EQ(split.text, "x?");
  EXPECT_EQ(split.columns, Columns{"y"});
}

TEST(TemplateSplit, ATextWithoutPlaceholdersIsEmpty) {
  for (auto const* text : {"", "plain", "{", "}}", "a}}b"}) {
    EXPECT_EQ(splitTemplate(text).text, "") << text;
    EXPECT_TRUE(splitTemplate(text).columns.empty()) << text;
  }
}

TEST(TemplateSplit, AnEmptyPlaceholderCountsAsNone) {
  auto const split = splitTemplate("a{{}}b{{c}}");
  EXPECT_EQ(split.text, "ab?");
  EXPECT_EQ(split.columns, Columns{"c"});
}

TEST(TemplateSplit, PlaceholdersSideBySide) {
  auto const split = splitTemplate("{{a}}{{b}}");
  EXPECT_EQ(split.text, "??");
  EXPECT_EQ(split.columns, (Columns{"a", "b"}));
}

TEST(TemplateSplit, AnOpenPlaceholderIsDropped) {
  auto const split = splitTemplate("a{{b}}c{{d");
  EXPECT_EQ(split.text, "a?c");
  EXPECT_EQ(split.columns, Columns{"b"});
}

TEST(TemplateSplit, MarksInsideAPlaceholderAreItsText) {
  auto const split = splitTemplate("{{a{{b}}");
  EXPECT_EQ(split.text, "?");
  EXPECT_EQ(split.columns, Columns{"a{{b"});
}
