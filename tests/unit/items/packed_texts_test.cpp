#include "zyn/items/packed_texts.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using Three = PackedTexts<3>;

TEST(PackedTexts, TextsThatWereNeverSetAreEmpty) {
  Three const texts;
  EXPECT_EQ(texts[0], "");
  EXPECT_EQ(texts[2], "");
}

TEST(PackedTexts, EachTextIsGivenBackAsItWas) {
  using namespace std::string_view_literals;
  Three texts;
  texts.assign({"first", "", "with a NUL\0 in it"sv});
  EXPECT_EQ(texts[0], "first");
  EXPECT_EQ(texts[1], "");
  EXPECT_EQ(texts[2], "with a NUL\0 in it"sv);
  EXPECT_EQ(texts.all(), (Three::Views{"first", "", "with a NUL\0 in it"sv}));
}

TEST(PackedTexts, SettingOneLeavesTheOthers) {
  Three texts;
  texts.set(1, "b");
  texts.set(2, std::string(100, 'c'));
  texts.set(0, "a");
  texts.set(1, "");
  EXPECT_EQ(texts.all(), (Three::Views{"a", "", std::string(100, 'c')}));
}

TEST(PackedTexts, ATextMayBeSetToAnotherOne) {
  Three texts;
  texts.assign({"a", "bc", "def"});
  texts.set(0, texts[2]);
  texts.set(2, texts[2].substr(1));
  EXPECT_EQ(texts.all(), (Three::Views{"def", "bc", "ef"}));
}

}  // namespace
