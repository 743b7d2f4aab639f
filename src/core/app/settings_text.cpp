#include "core/app/settings_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/documents/utf8.h"

namespace mox::core {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isControl(char character) {
  return (static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\r' &&
          character != '\n') ||
         character == 0x7F;
}

bool isAscii(char character) {
  return static_cast<unsigned char>(character) < 0x80;
}

std::size_t lineAt(std::string_view text, std::size_t offset) {
  return 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + offset, '\n'));
}

void demandCharacters(std::string_view text) {
  if (auto const invalid = findInvalidUtf8(text); invalid != std::string_view::npos) {
    throw SettingsTextFault(lineAt(text, invalid),
                            "these bytes are no UTF-8; save the file in that encoding");
  }
  if (auto const control = std::find_if(text.begin(), text.end(), isControl);
      control != text.end()) {
    throw SettingsTextFault(
        lineAt(text, control - text.begin()),
        fmt::format("the control character {:#04x} cannot stand here; remove it",
                    static_cast<unsigned char>(*control)));
  }
}

/// Walks a text of sound characters once, in and out of comments and quotes.
class AsciiWriter {
 public:
  explicit AsciiWriter(std::string_view text) : text_(text) {}

  std::string write() {
    while (!atEnd()) {
      writeOne(current());
    }
    return std::move(ascii_);
  }

 private:
  void writeOne(char character) {
    if (!isAscii(character)) {
      fail(
          "a letter or blank beyond ASCII stands outside of quotes; put it between quotes or "
          "remove it");
    } else if (character == '#') {
      skipComment();
    } else if (character == '"' || character == '\'') {
      writeText();
    } else {
      line_ += character == '\n' ? 1 : 0;
      ascii_ += text_[position_++];
    }
  }

  void skipComment() { position_ = std::min(text_.find('\n', position_), text_.size()); }

  // The text's end is that of its quotes or, for one that is not closed, that of its line.
  void writeText() {
    char const quote = current();
    if (text_.substr(position_, 3) == std::string(3, quote)) {
      fail("a text of several lines has no use here; write it in one line between single marks");
    }
    std::size_t end = position_ + 1;
    while (end < text_.size() && text_[end] != quote && text_[end] != '\n') {
      end += text_[end] == '\\' && quote == '"' && text_.substr(end + 1, 1) != "\n" ? 2 : 1;
    }
    end = std::min(end, text_.size());
    auto const content = text_.substr(position_ + 1, end - position_ - 1);
    bool const isClosed = end < text_.size() && text_[end] == quote;
    quote == '"' ? writeQuoted(content, isClosed) : writeLiteral(content, isClosed);
    position_ = end + (isClosed ? 1 : 0);
  }

  void writeQuoted(std::string_view content, bool isClosed) {
    ascii_ += '"';
    for (std::size_t i = 0; i < content.size();) {
      i += isAscii(content[i]) ? copyOf(content[i]) : writeEscape(content.substr(i));
    }
    ascii_ += isClosed ? "\"" : "";
  }

  // A literal text has no escapes: one that needs them is written as a quoted one.
  void writeLiteral(std::string_view content, bool isClosed) {
    bool const isPlain = std::all_of(content.begin(), content.end(), isAscii);
    char const quote = isPlain ? '\'' : '"';
    ascii_ += quote;
    for (std::size_t i = 0; i < content.size();) {
      bool const needsEscape = !isPlain && (content[i] == '\\' || content[i] == '"');
      ascii_ += needsEscape ? "\\" : "";
      i += isAscii(content[i]) ? copyOf(content[i]) : writeEscape(content.substr(i));
    }
    ascii_ += isClosed ? std::string(1, quote) : "";
  }

  std::size_t copyOf(char character) {
    ascii_ += character;
    return 1;
  }

  // Gives the length of the character, whose bytes are known to be well-formed.
  std::size_t writeEscape(std::string_view from) {
    auto const byteAt = [&](std::size_t i) { return static_cast<unsigned char>(from[i]); };
    std::size_t const length = byteAt(0) < 0xE0 ? 2 : byteAt(0) < 0xF0 ? 3 : 4;
    unsigned code = byteAt(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
      code = code << 6 | (byteAt(i) & 0x3FU);
    }
    ascii_ += fmt::format("\\U{:08X}", code);
    return length;
  }

  bool atEnd() const { return position_ >= text_.size(); }
  char current() const { return text_[position_]; }

  [[noreturn]] void fail(char const* what) const { throw SettingsTextFault(line_, what); }

  std::string_view const text_;
  std::string ascii_;
  std::size_t position_ = 0;
  std::size_t line_ = 1;
};

}  // namespace

std::string asciiSettings(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) {
    text.remove_prefix(kByteOrderMark.size());
  }
  demandCharacters(text);
  return AsciiWriter(text).write();
}

}  // namespace mox::core
