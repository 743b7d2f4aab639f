#include "core/documents/text_decoder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "core/documents/document_error.h"
#include "core/documents/utf8.h"

namespace mox::core {

namespace {

// windows-1252 differs from ISO-8859-1 in 0x80 to 0x9F; its five free places keep their number.
constexpr std::array<char32_t, 32> kWindows1252 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

std::string decodeLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (char const c : bytes) {
    appendUtf8(text, static_cast<unsigned char>(c));
  }
  return text;
}

std::string decodeWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (char const c : bytes) {
    auto const byte = static_cast<unsigned char>(c);
    appendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : byte);
  }
  return text;
}

bool isLeadSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isTrailSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

std::string decodeUtf16(std::string_view bytes, bool bigEndian) {
  auto const unitAt = [&](std::size_t offset) -> char32_t {
    auto const first = static_cast<unsigned char>(bytes[offset]);
    auto const second = static_cast<unsigned char>(bytes[offset + 1]);
    return bigEndian ? first << 8 | second : second << 8 | first;
  };
  if (bytes.size() % 2 != 0) {
    throw DocumentError("XML", "it is UTF-16 with an odd number of bytes");
  }
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    char32_t character = unitAt(i);
    if (isLeadSurrogate(character) && i + 2 < bytes.size() && isTrailSurrogate(unitAt(i + 2))) {
      character = 0x10000 + ((character - 0xD800) << 10) + (unitAt(i + 2) - 0xDC00);
      i += 2;
    }
    appendUtf8(text, character);
  }
  return text;
}

/// The value of `encoding` in the declaration, in lower case; empty when there is none.
std::string declaredEncoding(std::string_view bytes) {
  constexpr std::string_view kKey = "encoding";
  if (!bytes.starts_with("<?xml")) {
    return {};
  }
  std::string_view declaration = bytes.substr(0, std::min(bytes.find("?>"), bytes.size()));
  std::size_t const key = declaration.find(kKey);
  if (key == std::string_view::npos) {
    return {};
  }
  declaration.remove_prefix(key + kKey.size());
  std::size_t const open = declaration.find_first_of("\"'");
  if (open == std::string_view::npos) {
    return {};
  }
  std::size_t const close = declaration.find(declaration[open], open + 1);
  std::string label(declaration.substr(open + 1, std::min(close, declaration.size()) - open - 1));
  std::transform(label.begin(), label.end(), label.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return label;
}

bool isOneOf(std::string const& label, std::initializer_list<std::string_view> labels) {
  return std::find(labels.begin(), labels.end(), label) != labels.end();
}

/// An unknown label is shown as far as it is harmless and short.
std::string printable(std::string_view label) {
  std::string text;
  for (char const c : label.substr(0, 40)) {
    text += std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' ? c : '?';
  }
  return text;
}

std::string_view decodeDeclared(std::string_view bytes, std::string& room) {
  std::string const label = declaredEncoding(bytes);
  if (isOneOf(label, {"", "utf-8", "utf8", "us-ascii", "ascii"})) {
    return bytes;
  }
  if (isOneOf(label, {"iso-8859-1", "iso8859-1", "iso_8859-1", "latin1", "latin-1"})) {
    return room = decodeLatin1(bytes);
  }
  if (isOneOf(label, {"windows-1252", "cp1252"})) {
    return room = decodeWindows1252(bytes);
  }
  throw DocumentError(
      "XML", "the encoding \"" + printable(label) + "\" is not known; save the document as UTF-8");
}

}  // namespace

std::string_view decodeXml(std::string_view bytes, std::string& room) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\xEF\xBB\xBF"sv)) {
    return bytes.substr(3);
  }
  if (bytes.starts_with("\xFE\xFF"sv)) {
    return room = decodeUtf16(bytes.substr(2), true);
  }
  if (bytes.starts_with("\xFF\xFE"sv)) {
    return room = decodeUtf16(bytes.substr(2), false);
  }
  if (bytes.starts_with("\0<"sv)) {
    return room = decodeUtf16(bytes, true);
  }
  if (bytes.starts_with("<\0"sv)) {
    return room = decodeUtf16(bytes, false);
  }
  return decodeDeclared(bytes, room);
}

std::string decodeXml(std::string_view bytes) {
  std::string room;
  std::string_view const text = decodeXml(bytes, room);
  return room.empty() ? std::string(text) : std::move(room);
}

}  // namespace mox::core
