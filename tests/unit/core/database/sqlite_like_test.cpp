#include "core/database/sqlite_like.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace mox::core {
namespace {

TEST(SqliteLike, MatchesRunsAndSingleCharacters) {
  EXPECT_TRUE(isLike("abc", "abc"));
  EXPECT_TRUE(isLike("abc", "a%"));
  EXPECT_TRUE(isLike("abc", "%c"));
  EXPECT_TRUE(isLike("abc", "%b%"));
  EXPECT_TRUE(isLike("abc", "a_c"));
  EXPECT_TRUE(isLike("", "%"));
  EXPECT_TRUE(isLike("", ""));
  EXPECT_FALSE(isLike("abc", "ab"));
  EXPECT_FALSE(isLike("ab", "abc"));
  EXPECT_FALSE(isLike("", "_"));
  EXPECT_FALSE(isLike("abd", "%c"));
}

TEST(SqliteLike, IgnoresCaseAndAccentsOfLatinLetters) {
  EXPECT_TRUE(isLike("JOÃO DA SILVA", "%joao%"));
  EXPECT_TRUE(isLike("joao", "João"));
  EXPECT_TRUE(isLike("Conceição", "conceic_o"));
  EXPECT_TRUE(isLike("Ñandú", "nandu"));
  EXPECT_FALSE(isLike("ø", "o"));
  EXPECT_TRUE(isLike("Øst", "øst"));
}

TEST(SqliteLike, ABackslashTakesTheNextCharacterAsItIs) {
  EXPECT_TRUE(isLike("50%", "50\\%"));
  EXPECT_FALSE(isLike("50x", "50\\%"));
  EXPECT_TRUE(isLike("a_b", "a\\_b"));
  EXPECT_FALSE(isLike("axb", "a\\_b"));
  EXPECT_TRUE(isLike("a\\", "a\\"));
  EXPECT_TRUE(isLike("a\\b", "a\\\\b"));
}

TEST(SqliteLike, AnotherEscapeCanBeNamed) {
  EXPECT_TRUE(isLike("50%", "50!%", U'!'));
  EXPECT_TRUE(isLike("a\\b", "a\\b", U'!'));
}

TEST(SqliteLike, OneMarkIsOneCharacterHoweverManyBytes) {
  EXPECT_TRUE(isLike("a\u00e9b", "a_b"));
  EXPECT_TRUE(isLike("a\u20acb", "a_b"));
  EXPECT_TRUE(isLike("a\U0001F600b", "a_b"));
  EXPECT_TRUE(
      isLike("a\xFF"
             "b",
             "a_b"));
  EXPECT_TRUE(isLike("a\xC3", "a_"));
}

TEST(SqliteLike, CutOffAndBrokenTextsAreReadToTheirEnd) {
  EXPECT_TRUE(isLike("\xF0\x9F", "__"));
  EXPECT_FALSE(isLike("\xF0\x9F", "_"));
  EXPECT_TRUE(isLike("\xE2\x28\xA1", "_(_"));
}

bool plainLike(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) {
    return text.empty();
  }
  if (pattern[0] == '%') {
    return plainLike(text, pattern.substr(1)) ||
           (!text.empty() && plainLike(text.substr(1), pattern));
  }
  bool const escaped = pattern[0] == '\\' && pattern.size() > 1;
  char const wanted = escaped ? pattern[1] : pattern[0];
  bool const matches = !text.empty() && ((!escaped && wanted == '_') || wanted == text[0]);
  return matches && plainLike(text.substr(1), pattern.substr(escaped ? 2 : 1));
}

TEST(SqliteLike, AgreesWithAPlainReadingOfThePattern) {
  std::mt19937 random(11);
  auto const make = [&](char const* letters, unsigned count) {
    std::string text;
    for (unsigned i = random() % 9; i > 0; --i) {
      text += letters[random() % count];
    }
    return text;
  };
  for (int round = 0; round < 200000; ++round) {
    std::string const text = make("ab%\\", 4);
    std::string const pattern = make("ab%_\\", 5);
    ASSERT_EQ(isLike(text, pattern), plainLike(text, pattern)) << text << " like " << pattern;
  }
}

TEST(SqliteLike, ManyRunsDoNotMultiply) {
  std::string pattern;
  for (int i = 0; i < 1000; ++i) {
    pattern += "%a";
  }
  EXPECT_FALSE(isLike(std::string(100000, 'a'), pattern + "%b"));
}

}  // namespace
}  // namespace mox::core
