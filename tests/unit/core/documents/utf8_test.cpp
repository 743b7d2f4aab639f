#include "core/documents/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "core/documents/document_error.h"

namespace mox::core {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(FindInvalidUtf8, TakesEveryCharacter) {
  std::string text;
  for (char32_t c = 0; c < 0x110000; ++c) {
    if (c < 0xD800 || c > 0xDFFF) {
      appendUtf8(text, c);
    }
  }
  EXPECT_EQ(findInvalidUtf8(text), kNone);
  EXPECT_EQ(findInvalidUtf8(""), kNone);
}

TEST(FindInvalidUtf8, RefusesEverySurrogate) {
  for (char32_t c = 0xD800; c <= 0xDFFF; ++c) {
    std::string text = "abc";
    appendUtf8(text, c);
    ASSERT_EQ(findInvalidUtf8(text), 3U);
  }
}

TEST(FindInvalidUtf8, RefusesStrayCutAndOverlongSequences) {
  for (char const* const bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82",
        "\xE2(\xA1", "\xE2\x82(", "\xF0\x8F\xBF\xBF", "\xF0\x9F\x98", "\xF4\x90\x80\x80",
        "\xF5\x80\x80\x80", "\xFE", "\xFF"}) {
    EXPECT_EQ(findInvalidUtf8(bytes), 0U);
    EXPECT_EQ(findInvalidUtf8("0123456789 é " + std::string(bytes)), 14U);
  }
}

TEST(PositionAt, CountsLinesAndCharacters) {
  std::string_view const text = "ab\né\xF0\x9F\x98\x80x\n";
  auto const at = [&](std::size_t offset) {
    TextPosition const where = positionAt(text, offset);
    return std::to_string(where.line) + ":" + std::to_string(where.column);
  };
  EXPECT_EQ(at(0), "1:1");
  EXPECT_EQ(at(2), "1:3");
  EXPECT_EQ(at(3), "2:1");
  EXPECT_EQ(at(5), "2:2");
  EXPECT_EQ(at(9), "2:3");
  EXPECT_EQ(at(11), "3:1");
  EXPECT_EQ(at(1000), "3:1");
}

}  // namespace
}  // namespace mox::core
