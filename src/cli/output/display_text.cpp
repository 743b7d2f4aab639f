#include "cli/output/display_text.h"

#include <clocale>
#include <cwchar>

#include "cli/output/utf8.h"

namespace mox::cli {

namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr char32_t kReplacementCharacter = 0xFFFD;

/// The library's table of widths belongs to a locale; the program itself stays in the "C" locale.
class WidthLocale {
 public:
  WidthLocale() : previous_(uselocale(utf8())) {}
  WidthLocale(WidthLocale const&) = delete;
  WidthLocale& operator=(WidthLocale const&) = delete;
  ~WidthLocale() { uselocale(previous_); }

  static bool isThere() { return utf8() != locale_t{}; }

 private:
  static locale_t utf8() {
    static locale_t const locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
    return locale;
  }

  locale_t previous_;
};

/// Marks that turn the direction of what follows them, which lets a cell disguise its neighbours.
bool turnsDirection(char32_t character) {
  return character == 0x200E || character == 0x200F || character == 0x061C ||
         (character >= 0x202A && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

/// Places of a character from U+0080 on, -1 for one that must not be shown.
int wideCharacterWidth(char32_t character) {
  if (character < 0xA0 || turnsDirection(character)) {
    return -1;
  }
  if (!WidthLocale::isThere()) {
    return 1;
  }
  WidthLocale const locale;
  return wcwidth(static_cast<wchar_t>(character));
}

struct Shown {
  char32_t character;
  int width;
};

/// What stands for a character on the screen.
Shown shown(char32_t character) {
  if (character < 0x20) {
    return {0x2400 + character, 1};
  }
  if (character < 0x7F) {
    return {character, 1};
  }
  if (character == 0x7F) {
    return {0x2421, 1};
  }
  int const width = wideCharacterWidth(character);
  return width < 0 ? Shown{kReplacementCharacter, 1} : Shown{character, width};
}

/// Steps through the shown characters of a text.
class ShownCharacters {
 public:
  explicit ShownCharacters(std::string_view raw) : raw_(raw) {}

  bool next(Shown& character) {
    if (at_ >= raw_.size()) {
      return false;
    }
    auto const decoded = decodeUtf8(raw_, at_);
    at_ += decoded.length;
    character = decoded.valid ? shown(decoded.codePoint) : Shown{kReplacementCharacter, 1};
    return true;
  }

 private:
  std::string_view raw_;
  std::size_t at_ = 0;
};

bool isPlainAscii(std::string_view raw) {
  for (char const character : raw) {
    if (character < 0x20 || character == 0x7F) {  // bytes of longer characters are negative
      return false;
    }
  }
  return true;
}

}  // namespace

int displayWidth(std::string_view raw, int limit) {
  if (isPlainAscii(raw)) {
    return static_cast<int>(std::min(raw.size(), static_cast<std::size_t>(limit)));
  }
  ShownCharacters characters(raw);
  Shown character{};
  int width = 0;
  while (width < limit && characters.next(character)) {
    width += character.width;
  }
  return std::min(width, limit);
}

int appendDisplayText(std::string& text, std::string_view raw, int maxWidth) {
  if (raw.size() <= static_cast<std::size_t>(maxWidth) && isPlainAscii(raw)) {
    text += raw;
    return static_cast<int>(raw.size());
  }
  ShownCharacters characters(raw);
  Shown character{};
  int width = 0;
  int cutWidth = 0;                   // of the text up to cutSize
  std::size_t cutSize = text.size();  // the longest beginning that leaves a place for the ellipsis
  while (characters.next(character)) {
    if (width + character.width > maxWidth) {
      text.resize(cutSize);
      text += kEllipsis;
      return cutWidth + 1;
    }
    appendUtf8(text, character.character);
    width += character.width;
    if (width < maxWidth) {
      cutSize = text.size();
      cutWidth = width;
    }
  }
  return width;
}

std::string oneLineText(std::string_view raw) {
  std::string folded;
  for (char const character : raw) {
    bool const isBreak = character == '\n' || character == '\r' || character == '\t';
    if (!isBreak) {
      folded += character;
    } else if (!folded.empty() && folded.back() != ' ') {
      folded += ' ';
    }
  }
  while (!folded.empty() && folded.back() == ' ') {
    folded.pop_back();
  }
  std::string text;
  appendDisplayText(text, folded, kNoWidthLimit);
  return text;
}

}  // namespace mox::cli
