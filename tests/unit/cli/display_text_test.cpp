#include "cli/output/display_text.h"

#include <gtest/gtest.h>

namespace mox::cli {
namespace {

struct Shown {
  std::string text;
  int width;

  bool operator==(Shown const&) const = default;
};

void PrintTo(Shown const& shown, std::ostream* out) {
  *out << '"' << shown.text << "\" in " << shown.width;
}

Shown display(std::string_view raw, int maxWidth = kNoWidthLimit) {
  Shown shown;
  shown.width = appendDisplayText(shown.text, raw, maxWidth);
  return shown;
}

TEST(DisplayText, CountsPlacesNotBytes) {
  EXPECT_EQ(display("abc"), (Shown{"abc", 3}));
  EXPECT_EQ(display("ação"), (Shown{"ação", 4}));
  EXPECT_EQ(display("漢字"), (Shown{"漢字", 4}));
  EXPECT_EQ(display("e\u0301a"), (Shown{"e\u0301a", 2})) << "a combining accent takes no place";
  EXPECT_EQ(display(""), (Shown{"", 0}));
}

TEST(DisplayText, MakesControlCharactersHarmless) {
  EXPECT_EQ(display("\x1b[2J"), (Shown{"␛[2J", 4}));
  EXPECT_EQ(display("a\tb\nc\r"), (Shown{"a␉b␊c␍", 6}));
  EXPECT_EQ(display(std::string_view("\0\x7f", 2)), (Shown{"␀␡", 2}));
  EXPECT_EQ(display("\xC2\x9B"
                    "31m"),
            (Shown{"\uFFFD31m", 4}))
      << "a control sequence of one character";
  EXPECT_EQ(display("\u202Eabc"), (Shown{"\uFFFDabc", 4})) << "text turned round";
  EXPECT_EQ(display("\u2028"), (Shown{"\uFFFD", 1}));
}

TEST(DisplayText, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(display("a\xff\xC3"), (Shown{"a\uFFFD\uFFFD", 3}));
}

TEST(DisplayText, EndsLongTextsInAnEllipsis) {
  EXPECT_EQ(display("abcdef", 6), (Shown{"abcdef", 6}));
  EXPECT_EQ(display("abcdefg", 6), (Shown{"abcde…", 6}));
  EXPECT_EQ(display("çççç", 3), (Shown{"çç…", 3}));
  EXPECT_EQ(display("ab", 1), (Shown{"…", 1}));
}

TEST(DisplayText, NeverCutsAWideCharacterInTwo) {
  EXPECT_EQ(display("漢字漢字", 6), (Shown{"漢字…", 5}));
  EXPECT_EQ(display("漢字", 3), (Shown{"漢…", 3}));
  EXPECT_EQ(display("漢", 1), (Shown{"…", 1}));
}

TEST(DisplayText, KeepsACombiningAccentWithItsLetter) {
  EXPECT_EQ(display("abe\u0301d", 3), (Shown{"ab…", 3}));
  EXPECT_EQ(display("ae\u0301cd", 3), (Shown{"ae\u0301…", 3}));
}

TEST(DisplayWidth, AgreesWithTheTextShown) {
  for (std::string const raw : {"", "abc", "ação", "漢字", "\x1b[0m", "\xff", "e\u0301"}) {
    EXPECT_EQ(displayWidth(raw), display(raw).width) << raw;
  }
}

TEST(DisplayWidth, StopsAtTheLimit) {
  EXPECT_EQ(displayWidth("abcdef", 4), 4);
  EXPECT_EQ(displayWidth("漢字漢", 3), 3);
}

TEST(OneLineText, FoldsLinesIntoOne) {
  EXPECT_EQ(oneLineText("near \"x\"\n\tat line 1\r\n"), "near \"x\" at line 1");
  EXPECT_EQ(oneLineText("a\x1b[31mb"), "a␛[31mb");
  EXPECT_EQ(oneLineText("\n\n"), "");
}

}  // namespace
}  // namespace mox::cli
