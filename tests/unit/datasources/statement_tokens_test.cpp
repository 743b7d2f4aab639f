#include "zyn/datasources/statement_tokens.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StatementTokens, TextWithoutTokensStaysAsItIs) {
  auto const statement = parseTokens("select { from } where a = '?'");
  EXPECT_EQ(statement.query, "select { from } where a = '?'");
  EXPECT_THAT(statement.tokens, IsEmpty());
}

TEST(StatementTokens, EachTokenBecomesAMark) {
  auto const statement = parseTokens("a = {{x}} and b = {{ y }}!");
  EXPECT_EQ(statement.query, "a = ? and b = ?!");
  EXPECT_THAT(statement.tokens, ElementsAre("x", " y "));
}

TEST(StatementTokens, TokenThatStandsTwiceIsThereTwice) {
  auto const statement = parseTokens("{{x}}{{x}}");
  EXPECT_EQ(statement.query, "??");
  EXPECT_THAT(statement.tokens, ElementsAre("x", "x"));
}

TEST(StatementTokens, OpeningWithoutClosingTakesTheRest) {
  auto const statement = parseTokens("a = {{x} and b");
  EXPECT_EQ(statement.query, "a = ?");
  EXPECT_THAT(statement.tokens, ElementsAre("x} and b"));
}

TEST(StatementTokens, OpeningAtTheEndIsAnEmptyToken) {
  auto const statement = parseTokens("a = {{");
  EXPECT_EQ(statement.query, "a = ?");
  EXPECT_THAT(statement.tokens, ElementsAre(""));
}

TEST(StatementTokens, ClosingWithoutOpeningIsText) {
  EXPECT_EQ(parseTokens("a }} b").query, "a }} b");
}

TEST(StatementTokens, TokenEndsAtTheFirstClosing) {
  auto const statement = parseTokens("{{a{{b}}c}}");
  EXPECT_EQ(statement.query, "?c}}");
  EXPECT_THAT(statement.tokens, ElementsAre("a{{b"));
}

TEST(StatementTokens, EmptyTextHasNone) {
  EXPECT_EQ(parseTokens("").query, "");
  EXPECT_THAT(parseTokens("").tokens, IsEmpty());
}

TEST(StatementTokens, FiltersNameATokenWithItsBraces) {
  EXPECT_EQ(tokenColumn("p_id"), "{{p_id}}");
}

}  // namespace
