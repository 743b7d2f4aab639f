#include "zyn/matrix/text_ref.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace {

TextRef refOf(std::string const& text) {
  return {text.data(), static_cast<std::uint32_t>(text.size())};
}

int sign(int order) {
  return (order > 0) - (order < 0);
}

/// Every text of up to three of these bytes: the zero byte, plain ones, and ones above 127, which
/// a signed char would put before the others.
std::deque<std::string> shortTexts() {
  std::string const alphabet("\0a\x80\xff", 4);
  std::deque<std::string> texts = {""};
  for (std::size_t from = 0, length = 0; length < 3; ++length) {
    std::size_t const to = texts.size();
    for (; from < to; ++from) {
      for (char const byte : alphabet) {
        texts.push_back(texts[from] + byte);
      }
    }
  }
  return texts;
}

/// Texts around the lengths where a reference changes its form, that differ from each other in the
/// prefix, just behind it, or at the end.
std::deque<std::string> longTexts() {
  std::deque<std::string> texts;
  for (std::size_t length = 0; length <= 17; ++length) {
    std::string const plain(length, 'm');
    texts.push_back(plain);
    for (std::size_t place : {std::size_t{0}, std::size_t{3}, std::size_t{4}, std::size_t{11},
                              std::size_t{12}, length - 1}) {
      for (char const byte : {'\0', 'a', '\xff'}) {
        std::string other = plain;
        if (place < length) {
          other[place] = byte;
          texts.push_back(other);
        }
      }
    }
  }
  return texts;
}

void expectLikeStrings(std::deque<std::string> const& texts) {
  for (std::string const& left : texts) {
    for (std::string const& right : texts) {
      int const expected = sign(left.compare(right));
      ASSERT_EQ(sign(TextRef::compare(refOf(left), refOf(right))), expected)
          << testing::PrintToString(left) << " and " << testing::PrintToString(right);
      ASSERT_EQ(refOf(left) == refOf(right), expected == 0)
          << testing::PrintToString(left) << " and " << testing::PrintToString(right);
    }
  }
}

}  // namespace

TEST(TextRef, HoldsTextsOfEveryLengthAroundTheInlineLimit) {
  for (std::size_t length = 0; length <= 20; ++length) {
    std::string const text = std::string("abcdefghijklmnopqrst").substr(0, length);
    TextRef const ref = refOf(text);

    EXPECT_EQ(ref.view(), text);
    EXPECT_EQ(ref.size(), length);
    EXPECT_EQ(ref.isInline(), length <= 12);
  }
}

TEST(TextRef, ADefaultOneIsTheEmptyText) {
  EXPECT_EQ(TextRef().view(), "");
  EXPECT_TRUE(TextRef() == TextRef(nullptr, 0));
}

TEST(TextRef, KeepsZeroBytes) {
  std::string const inlined("a\0b\0", 4);
  std::string const longer("a\0b\0cdefghijklm\0", 16);

  EXPECT_EQ(refOf(inlined).view(), inlined);
  EXPECT_EQ(refOf(longer).view(), longer);
}

TEST(TextRef, AnInlineCopyNeedsNeitherTheOriginalNorItsBytes) {
  std::string bytes = "twelve bytes";
  TextRef const copy = refOf(bytes);
  bytes.assign(12, '#');

  EXPECT_EQ(copy.view(), "twelve bytes");
}

TEST(TextRef, ALongOneRefersToTheBytesItWasGiven) {
  std::string const bytes = "thirteen byte";

  EXPECT_EQ(static_cast<void const*>(refOf(bytes).data()), bytes.data());
}

TEST(TextRef, OrdersShortTextsAsStringsDo) {
  expectLikeStrings(shortTexts());
}

TEST(TextRef, OrdersTextsAroundTheInlineLimitAsStringsDo) {
  expectLikeStrings(longTexts());
}

TEST(TextRef, PrefixOrdersLikeTheFirstFourBytes) {
  EXPECT_EQ(refOf("").prefix(), 0U);
  EXPECT_EQ(refOf("a").prefix(), 0x61000000U);
  EXPECT_EQ(refOf("abcd").prefix(), 0x61626364U);
  EXPECT_EQ(refOf("\xff\x80 and more than twelve").prefix(), 0xff802061U);
}
