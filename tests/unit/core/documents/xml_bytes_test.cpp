#include "core/documents/xml_bytes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/documents/document_error.h"
#include "core/documents/xml_scanner.h"

namespace {

namespace xml_bytes = mox::core::xml_bytes;

constexpr std::size_t kLongest = 40;  // two steps and a half

/// Calls `check` with texts of every length that hold every byte at every place among letters.
template <class Check>
void forEachText(Check const& check) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (std::size_t place = 0; place < length; ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string text(length, 'a');
        text[place] = static_cast<char>(byte);
        check(text);
      }
    }
  }
}

TEST(XmlBytes, NamesEndWhereThePlainLoopEndsThem) {
  forEachText([](std::string const& text) {
    ASSERT_EQ(xml_bytes::endOfName(text, 0), xml_bytes::plain::endOfName(text, 0)) << text;
  });
}

TEST(XmlBytes, AsciiEndsWhereThePlainLoopEndsIt) {
  forEachText([](std::string const& text) {
    ASSERT_EQ(xml_bytes::endOfAscii(text, 0), xml_bytes::plain::endOfAscii(text, 0)) << text;
  });
}

TEST(XmlBytes, ValuesEndAndReadAsThePlainLoopHasThem) {
  std::mt19937 random(7);
  std::string const bytes = "abcdefghijklmnopqrstuvwxyz0123456789\"'<&\t\n\r\v\xC3\xA3";
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (std::size_t length = random() % kLongest; text.size() < length;) {
      text += bytes[random() % bytes.size()];
    }
    bool isAsWritten = true;
    bool isPlainlySo = true;
    ASSERT_EQ(xml_bytes::endOfValue(text, 0, '"', isAsWritten),
              xml_bytes::plain::endOfValue(text, 0, '"', isPlainlySo))
        << text;
    // A vertical tab is in no text that is read; whether it counts is open.
    if (text.find('\v') == std::string::npos) {
      ASSERT_EQ(isAsWritten, isPlainlySo) << text;
    }
  }
}

TEST(XmlBytes, NamesAreTheSameOnlyByteForByte) {
  for (std::size_t length = 1; length <= kLongest; ++length) {
    std::string const name(length, 'a');
    EXPECT_TRUE(xml_bytes::isSame(name, std::string(name)));
    EXPECT_FALSE(xml_bytes::isSame(name, name + 'a'));
    for (std::size_t place = 0; place < length; ++place) {
      std::string other = name;
      other[place] = 'b';
      EXPECT_FALSE(xml_bytes::isSame(name, other)) << other;
    }
  }
}

std::string complaintAbout(std::string const& text) {
  try {
    mox::core::scanXml(text);
  } catch (moxError const& error) {
    std::string all = error.errorMessage();
    for (auto const& detail : error.errorDetails()) {
      all += "; " + detail;
    }
    return all;
  }
  return "none";
}

TEST(XmlBytes, AWrongEncodingIsToldAheadOfAnEarlierControlCharacter) {
  EXPECT_NE(complaintAbout("<a>\x01\xFF</a>").find("not valid in its encoding"), std::string::npos);
  EXPECT_NE(complaintAbout("<a>\x01\xC3\xA3</a>").find("control characters"), std::string::npos);
  EXPECT_EQ(complaintAbout("<a>\xC3\xA3</a>"), "none");
}

}  // namespace
