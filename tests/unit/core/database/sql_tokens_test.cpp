#include "core/database/sql_tokens.h"

#include <gtest/gtest.h>

#include <random>

namespace mox::core {
namespace {

std::vector<std::string> textsOf(std::string_view text) {
  SqlTokens const tokens(text);
  std::vector<std::string> texts;
  texts.reserve(static_cast<std::size_t>(tokens.count()));
  for (int i = 0; i < tokens.count(); ++i) {
    texts.emplace_back(tokens.textAt(i));
  }
  return texts;
}

using Texts = std::vector<std::string>;

TEST(SqlTokens, PartsWordsNumbersMarksAndCharacters) {
  EXPECT_EQ(textsOf("select a.b+1.5e-3,?"),
            (Texts{"select", "a", ".", "b", "+", "1.5e-3", ",", "?"}));
  EXPECT_EQ(textsOf(""), Texts{});
  EXPECT_EQ(textsOf("  \n\t "), Texts{});
}

TEST(SqlTokens, ReadsQuotesWithDoublingsAndBackslashes) {
  EXPECT_EQ(textsOf("'it''s' x"), (Texts{"'it''s'", "x"}));
  EXPECT_EQ(textsOf(R"('it\'s' x)"), (Texts{R"('it\'s')", "x"}));
  EXPECT_EQ(textsOf(R"("a\"b;" x)"), (Texts{R"("a\"b;")", "x"}));
  EXPECT_EQ(textsOf(R"(`a\` x)"), (Texts{R"(`a\`)", "x"}));
  EXPECT_EQ(textsOf("`a``b` x"), (Texts{"`a``b`", "x"}));
}

TEST(SqlTokens, LeavesCommentsOut) {
  EXPECT_EQ(textsOf("a -- b ; '\nc"), (Texts{"a", "c"}));
  EXPECT_EQ(textsOf("a # b ; '\nc"), (Texts{"a", "c"}));
  EXPECT_EQ(textsOf("a /* b ; ' \n */ c"), (Texts{"a", "c"}));
  EXPECT_EQ(textsOf("a --"), (Texts{"a"}));
  EXPECT_EQ(textsOf("a /* open"), (Texts{"a"}));
}

TEST(SqlTokens, TwoMinusSignsBeforeAnOperandAreNoComment) {
  EXPECT_EQ(textsOf("a--1"), (Texts{"a", "-", "-", "1"}));
}

TEST(SqlTokens, TellsWhenTheTextEndsInsideAQuote) {
  EXPECT_TRUE(SqlTokens("select 'a").isCutOff());
  EXPECT_TRUE(SqlTokens(R"(select 'a\')").isCutOff());
  EXPECT_TRUE(SqlTokens(R"('\)").isCutOff());
  EXPECT_FALSE(SqlTokens("select 'a'").isCutOff());
  EXPECT_FALSE(SqlTokens("").isCutOff());
}

TEST(SqlTokens, CountsBracketsAroundAToken) {
  SqlTokens const tokens("a (b (c)) d");
  EXPECT_EQ(tokens.at(0).depth, 0);
  EXPECT_EQ(tokens.at(2).depth, 1);
  EXPECT_EQ(tokens.at(4).depth, 2);
  EXPECT_EQ(tokens.at(7).depth, 0);
  EXPECT_EQ(tokens.behindBracket(1, tokens.count()), 7);
}

TEST(SqlTokens, GivesNamesWithoutTheirQuotes) {
  SqlTokens const tokens("`a``b` \"c\"\"d\" e 'f''g'");
  EXPECT_EQ(tokens.nameAt(0), "a`b");
  EXPECT_EQ(tokens.nameAt(1), "c\"d");
  EXPECT_EQ(tokens.nameAt(2), "e");
  EXPECT_EQ(tokens.nameAt(3), "f'g");
  EXPECT_EQ(tokens.nameAt(4), "");
}

TEST(SqlTokens, ComparesWordsWithoutTheirCase) {
  SqlTokens const tokens("SeLeCt 'select'");
  EXPECT_TRUE(tokens.isWord(0, "select"));
  EXPECT_FALSE(tokens.isWord(1, "select"));
  EXPECT_FALSE(tokens.isWord(-1, "select"));
  EXPECT_FALSE(tokens.isWord(2, "select"));
}

TEST(SqlTokens, TakesAnyBytesWithoutLosingItsPlace) {
  constexpr char kPieces[] = "'\"`\\-#/*();?ab1. \n\0\xC3";
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (unsigned i = random() % 24; i > 0; --i) {
      text += kPieces[random() % (sizeof kPieces - 1)];
    }
    SqlTokens const tokens(text);
    std::size_t place = 0;
    for (int i = 0; i < tokens.count(); ++i) {
      ASSERT_LE(place, tokens.at(i).begin) << text;
      ASSERT_LT(tokens.at(i).begin, tokens.at(i).end) << text;
      ASSERT_GE(tokens.at(i).depth, 0) << text;
      place = tokens.at(i).end;
    }
    ASSERT_LE(place, text.size()) << text;
  }
}

}  // namespace
}  // namespace mox::core
