#include "escola/generator/people.h"

#include <array>
#include <utility>

#include "escola/generator/words.h"

namespace escola {

namespace {

constexpr std::int64_t kPersonBound = 10'000'000;
constexpr std::int64_t kPersonSpread = 7'654'321;  // has no divisor in common with kPersonBound

int checkDigit(std::string_view digits) {
  int sum = 0;
  int weight = static_cast<int>(digits.size()) + 1;
  for (char const digit : digits) {
    sum += (digit - '0') * weight--;
  }
  int const rest = sum % 11;
  return rest < 2 ? 0 : 11 - rest;
}

/// Letters with accents as the plain letter; two bytes each in UTF-8, all behind the lead byte
/// 0xC3.
char plainLetter(unsigned char second) {
  static constexpr std::array<std::pair<std::string_view, char>, 7> kLetters{
      {{"\xA0\xA1\xA2\xA3\x80\x81\x82\x83", 'a'},
       {"\xA8\xA9\xAA\x88\x89\x8A", 'e'},
       {"\xAC\xAD\x8C\x8D", 'i'},
       {"\xB2\xB3\xB4\xB5\x93\x94\x95", 'o'},
       {"\xB9\xBA\xBC\x9A\x9C", 'u'},
       {"\xA7\x87", 'c'},
       {"\xB1\x91", 'n'}}};
  for (auto const& [seconds, letter] : kLetters) {
    if (seconds.find(static_cast<char>(second)) != std::string_view::npos) {
      return letter;
    }
  }
  return '-';
}

std::string_view lastWord(std::string_view text) {
  return text.substr(text.rfind(' ') + 1);
}

std::string mailName(std::string_view name) {
  std::string result;
  for (std::size_t at = 0; at < name.size(); ++at) {
    auto const byte = static_cast<unsigned char>(name[at]);
    if (byte == 0xC3 && at + 1 < name.size()) {
      result += plainLetter(static_cast<unsigned char>(name[++at]));
    } else if (byte == ' ') {
      result += '.';
    } else {
      result += static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte);
    }
  }
  return result;
}

void appendNumber(std::string& bytes, std::uint32_t value, int count) {
  for (int shift = 0; shift < count * 8; shift += 8) {
    bytes += static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU);
  }
}

constexpr std::uint32_t kPictureSide = 16;
constexpr std::uint32_t kColours = 16;

void appendPictureHeader(std::string& bytes) {
  constexpr std::uint32_t kPixelsAt = 14 + 40 + kColours * 4;
  constexpr std::uint32_t kPixelBytes = kPictureSide * kPictureSide / 2;
  bytes += "BM";
  appendNumber(bytes, kPixelsAt + kPixelBytes, 4);
  appendNumber(bytes, 0, 4);
  appendNumber(bytes, kPixelsAt, 4);
  appendNumber(bytes, 40, 4);
  appendNumber(bytes, kPictureSide, 4);
  appendNumber(bytes, kPictureSide, 4);
  appendNumber(bytes, 1, 2);
  appendNumber(bytes, 4, 2);  // bits a point
  appendNumber(bytes, 0, 4);
  appendNumber(bytes, kPixelBytes, 4);
  appendNumber(bytes, 2835, 4);  // points a metre
  appendNumber(bytes, 2835, 4);
  appendNumber(bytes, kColours, 4);
  appendNumber(bytes, 0, 4);
}

}  // namespace

std::string padded(std::int64_t number, int width) {
  std::string digits = std::to_string(number);
  if (digits.size() < static_cast<std::size_t>(width)) {
    digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
  }
  return digits;
}

std::string fullName(Random& random, bool female, std::string_view family) {
  std::string name(random.pick(female ? femaleNames() : maleNames()));
  int const count = random.chance(150) ? 3 : random.chance(700) ? 2 : 1;
  std::string_view previous;
  for (int place = 0; place < count; ++place) {
    std::string_view const drawn = random.pick(surnames());
    std::string_view const surname = place + 1 == count && !family.empty() ? family : drawn;
    if (lastWord(surname) != previous) {
      name += " ";
      name += surname;
    }
    previous = lastWord(surname);
  }
  return name;
}

std::string_view familyOf(std::string_view name) {
  std::string_view const last = lastWord(name);
  std::string_view const before = name.substr(0, name.size() - last.size() - 1);
  for (std::string_view const particle : {"da", "de", "do", "dos", "das"}) {
    if (lastWord(before) == particle) {
      return name.substr(name.size() - last.size() - 1 - particle.size());
    }
  }
  return last;
}

std::string cpf(std::int64_t person) {
  std::string digits = "00" + padded(person % kPersonBound * kPersonSpread % kPersonBound, 7);
  digits += static_cast<char>('0' + checkDigit(digits));
  digits += static_cast<char>('0' + checkDigit(digits));
  return digits.substr(0, 3) + "." + digits.substr(3, 3) + "." + digits.substr(6, 3) + "-" +
         digits.substr(9);
}

std::string email(std::string_view name, std::int64_t id, std::string_view domain) {
  std::string_view const first = name.substr(0, name.find(' '));
  return mailName(first) + "." + mailName(lastWord(name)) + "." + std::to_string(id) + "@" +
         std::string(domain) + ".example";
}

std::string phone(Random& random, std::string_view areaCode) {
  return "(" + std::string(areaCode) + ") 90000-" + padded(random.below(10000), 4);
}

std::string address(Random& random) {
  std::string text(random.pick(streets()));
  text += ", " + std::to_string(random.between(1, 1999));
  if (random.chance(200)) {
    int const floor = random.between(1, 20);
    text += ", ap. " + std::to_string(floor * 100 + random.between(1, 8));
  }
  return text;
}

std::string thumbnail(Random& random) {
  std::string bytes;
  appendPictureHeader(bytes);
  for (std::uint32_t colour = 0; colour < kColours; ++colour) {
    appendNumber(bytes, static_cast<std::uint32_t>(random.next() & 0xFFFFFFU), 4);
  }
  for (std::uint32_t line = 0; line < kPictureSide; ++line) {
    auto const half = static_cast<std::uint32_t>(random.next());  // 8 points of 4 bits
    std::uint32_t mirrored = 0;
    for (unsigned point = 0; point < 8; ++point) {
      mirrored = mirrored << 4U | (half >> (4 * point) & 0xFU);
    }
    for (unsigned byte = 0; byte < 4; ++byte) {
      bytes += static_cast<char>(half >> (24 - 8 * byte) & 0xFFU);
    }
    for (unsigned byte = 0; byte < 4; ++byte) {
      bytes += static_cast<char>(mirrored >> (24 - 8 * byte) & 0xFFU);
    }
  }
  return bytes;
}

}  // namespace escola
