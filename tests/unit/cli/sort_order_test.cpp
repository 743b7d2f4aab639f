#include "cli/sort_order.h"

#include <gtest/gtest.h>

#include "cli/error_text.h"

namespace mox::cli {
namespace {

using Order = std::vector<SortColumn>;

std::string refusal(std::string const& text) {
  try {
    parseSortOrder(text);
  } catch (UsageError const& error) {
    return error.what();
  }
  return "accepted";
}

TEST(SortOrder, ReadsNamesAndDirections) {
  EXPECT_EQ(parseSortOrder("a"), (Order{{"a", false}}));
  EXPECT_EQ(parseSortOrder("a:desc,b,c:asc"), (Order{{"a", true}, {"b", false}, {"c", false}}));
}

TEST(SortOrder, KeepsAnEndingThatIsNoDirection) {
  EXPECT_EQ(parseSortOrder("a:x,b:DESC"), (Order{{"a:x", false}, {"b:DESC", false}}));
  EXPECT_EQ(parseSortOrder("a:x:desc"), (Order{{"a:x", true}}));
}

TEST(SortOrder, ReadsQuotedNames) {
  EXPECT_EQ(parseSortOrder("\"count(a,b)\":desc,\"x:desc\",\"say \"\"hi\"\"\""),
            (Order{{"count(a,b)", true}, {"x:desc", false}, {"say \"hi\"", false}}));
  EXPECT_EQ(parseSortOrder("\"\"\"\""), (Order{{"\"", false}}));
}

TEST(SortOrder, RefusesWhatItCannotRead) {
  EXPECT_EQ(refusal(""), "--sort : a column has no name");
  EXPECT_EQ(refusal("a,"), "--sort a,: a column has no name");
  EXPECT_EQ(refusal(":desc"), "--sort :desc: a column has no name");
  EXPECT_EQ(refusal("\"\""), "--sort \"\": a column has no name");
  EXPECT_EQ(refusal("\"a"), "--sort \"a: a quote is not closed");
  EXPECT_EQ(refusal("\"a\":up"), "--sort \"a\":up: the direction is asc or desc, not up");
  EXPECT_EQ(refusal("\"a\"b"), "--sort \"a\"b: a comma is missing");
}

}  // namespace
}  // namespace mox::cli
