#include "core/app/settings_text.h"

#include <gtest/gtest.h>

#include <string>

using mox::core::asciiSettings;
using mox::core::SettingsTextFault;

namespace {

/// "line: what", or "no fault".
std::string faultOf(std::string_view text) {
  try {
    asciiSettings(text);
    return "no fault";
  } catch (SettingsTextFault const& fault) {
    return std::to_string(fault.line()) + ": " + fault.what();
  }
}

constexpr char const* kForeign =
    "a letter or blank beyond ASCII stands outside of quotes; put it between quotes or remove it";
constexpr char const* kSeveralLines =
    "a text of several lines has no use here; write it in one line between single marks";

}  // namespace

TEST(SettingsText, AsciiStaysAsItIs) {
  for (auto const* const text :
       {"", "[database]\r\nurl = \"sqlite:x\"\r\n", "a = 'C:\\'\nb = \"x\\\"\\\\\"\n",
        "[users.m]\nunits = [\n  3,\n  [4],\n]\nx = {a = [1], b = \"]\"}\n",
        "[[a]]\n[ \"b c\" ]\n  [\t'd']\nempty = \"\"\n"}) {
    EXPECT_EQ(asciiSettings(text), text);
  }
}

TEST(SettingsText, LettersBeyondAsciiAreEscapedBetweenQuotes) {
  EXPECT_EQ(asciiSettings("\"ação\" = \"José €😀\""),
            "\"a\\U000000E7\\U000000E3o\" = \"Jos\\U000000E9 \\U000020AC\\U0001F600\"");
}

TEST(SettingsText, ALiteralTextThatNeedsEscapesIsQuoted) {
  EXPECT_EQ(asciiSettings("a = 'C:\\\"José\"'"), "a = \"C:\\\\\\\"Jos\\U000000E9\\\"\"");
}

TEST(SettingsText, CommentsAndTheByteOrderMarkAreLeftOut) {
  EXPECT_EQ(asciiSettings("\xEF\xBB\xBF# José\na = 1 # ação\n"), "\na = 1 \n");
  EXPECT_EQ(asciiSettings("a = \"#\" #"), "a = \"#\" ");
}

TEST(SettingsText, ATextWithoutEndStaysWithoutOne) {
  EXPECT_EQ(asciiSettings("a = \"é\nb = 1"), "a = \"\\U000000E9\nb = 1");
  EXPECT_EQ(asciiSettings("a = 'é"), "a = \"\\U000000E9");
  EXPECT_EQ(asciiSettings("a = \"x\\\nb"), "a = \"x\\\nb");
  EXPECT_EQ(asciiSettings("a = \"x\\"), "a = \"x\\");
}

TEST(SettingsText, LettersBeyondAsciiStandBetweenQuotes) {
  EXPECT_EQ(faultOf("[menu]\nação = 1\n"), std::string("2: ") + kForeign);
  EXPECT_EQ(faultOf("[menu]\ndir\xC2\xA0= 1\n"), std::string("2: ") + kForeign);
  EXPECT_EQ(faultOf("[menu]\ndir = \"a\"\xC2\xA0\n"), std::string("2: ") + kForeign);
  EXPECT_EQ(faultOf("a = 1\n\xEF\xBB\xBF"), std::string("2: ") + kForeign);
}

TEST(SettingsText, ControlCharactersStandNowhere) {
  std::string const what = "the control character 0x01 cannot stand here; remove it";
  EXPECT_EQ(faultOf("a\n\x01"), "2: " + what);
  EXPECT_EQ(faultOf("a = \"\x01\""), "1: " + what);
  EXPECT_EQ(faultOf("# \x01"), "1: " + what);
  EXPECT_EQ(faultOf(std::string_view("a = 'x\0'", 8)),
            "1: the control character 0x00 cannot stand here; remove it");
}

TEST(SettingsText, BytesAreUtf8) {
  EXPECT_EQ(faultOf("a\nb = \"\xE9\"\n"),
            "2: these bytes are no UTF-8; save the file in that encoding");
}

TEST(SettingsText, TextsOfSeveralLinesAreRefused) {
  EXPECT_EQ(faultOf("a = 1\nb = \"\"\"x\"\"\"\n"), std::string("2: ") + kSeveralLines);
  EXPECT_EQ(faultOf("b = '''x'''\n"), std::string("1: ") + kSeveralLines);
}
