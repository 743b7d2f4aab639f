#include "zyn/format/ascii_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace {

constexpr std::size_t kBytesTakenAway = 2;

struct Replacement {
  std::string_view found;
  std::string_view by;
};

// In the order of use, which matters: a hit takes bytes that a later row would have found.
constexpr auto kReplacements = std::to_array<Replacement>({
    {"Ä", "A"}, {"Á", "A"}, {"Â", "A"}, {"À", "A"}, {"Ã", "A"}, {"Å", "A"}, {"@", "A"}, {"ä", "a"},
    {"á", "a"}, {"â", "a"}, {"à", "a"}, {"ã", "a"}, {"Ë", "E"}, {"É", "E"}, {"Ê", "E"}, {"È", "E"},
    {"Ẽ", "E"}, {"&", "E"}, {"ë", "e"}, {"é", "e"}, {"ê", "e"}, {"è", "e"}, {"ẽ", "e"}, {"Ï", "I"},
    {"Í", "I"}, {"Î", "I"}, {"Ì", "I"}, {"Ĩ", "I"}, {"ï", "i"}, {"í", "i"}, {"î", "i"}, {"ì", "i"},
    {"ĩ", "i"}, {"Ö", "O"}, {"Ó", "O"}, {"Ô", "O"}, {"Ò", "O"}, {"Õ", "O"}, {"ö", "o"}, {"ó", "o"},
    {"ô", "o"}, {"ò", "o"}, {"õ", "o"}, {"Ü", "U"}, {"Ú", "U"}, {"Û", "U"}, {"Ù", "U"}, {"Ũ", "U"},
    {"ü", "u"}, {"ú", "u"}, {"û", "u"}, {"ù", "u"}, {"ũ", "u"}, {"Ç", "C"}, {"ç", "c"}, {"Ñ", "N"},
    {"ñ", "n"}, {"$", "S"}, {"º", "o"}, {"°", "o"}, {"§", ""},
});

bool mayBeReplaced(char byte) {
  return static_cast<unsigned char>(byte) >= 0x80 || byte == '@' || byte == '&' || byte == '$';
}

// What is kept moves to the front in the same pass: a hit takes at least as much away as it puts
// in. The search goes on one byte behind the start of a hit, which for a hit that puts nothing in
// passes over one byte of the text.
void replaceAll(std::string& text, Replacement const& row) {
  std::size_t hit = text.find(row.found);
  if (hit == std::string::npos) {
    return;
  }
  char* const bytes = text.data();
  std::size_t kept = 0;
  std::size_t from = 0;
  for (; hit != std::string::npos; hit = text.find(row.found, from + 1 - row.by.size())) {
    std::copy(bytes + from, bytes + hit, bytes + kept);
    kept += hit - from;
    std::copy(row.by.begin(), row.by.end(), bytes + kept);
    kept += row.by.size();
    from = std::min(hit + kBytesTakenAway, text.size());
  }
  std::copy(bytes + from, bytes + text.size(), bytes + kept);
  text.resize(kept + text.size() - from);
}

bool isKept(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte == ' ';
}

bool isSpace(char byte) {
  return std::isspace(static_cast<unsigned char>(byte)) != 0;
}

}  // namespace

void replaceAccents(std::string& text) {
  if (std::none_of(text.begin(), text.end(), mayBeReplaced)) {
    return;
  }
  for (auto const& row : kReplacements) {
    replaceAll(text, row);
  }
}

void keepLettersDigitsAndBlanks(std::string& text) {
  std::erase_if(text, [](char byte) { return !isKept(byte); });
}

void trimSpace(std::string& text) {
  auto const end = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
  text.erase(end, text.end());
  text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), isSpace));
}

void toUpperBytes(std::string& text) {
  for (char& byte : text) {
    byte = static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
  }
}
