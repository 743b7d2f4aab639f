#include "cli/output/value_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace mox::cli {

namespace {

char* put(char* first, std::string_view text) {
  std::memcpy(first, text.data(), text.size());
  return first + text.size();
}

void putDigits(char* first, int count, int value) {
  for (int i = count - 1; i >= 0; --i) {
    first[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
}

constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The four characters of up to three bytes.
std::array<char, 4> base64Group(std::string_view bytes) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    bits = bits << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
  }
  std::array<char, 4> group{};
  for (std::size_t i = 0; i < 4; ++i) {
    group[i] = i <= bytes.size() ? kBase64[bits >> (18 - 6 * i) & 63U] : '=';
  }
  return group;
}

}  // namespace

char* formatDouble(char* first, double value) {
  if (std::isnan(value)) {
    return put(first, "NaN");
  }
  if (std::isinf(value)) {
    return put(first, value < 0 ? "-Infinity" : "Infinity");
  }
  double const magnitude = std::fabs(value);
  bool const writtenOut = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e16);
  auto const form = writtenOut ? std::chars_format::fixed : std::chars_format::scientific;
  return std::to_chars(first, first + kLongestDouble, value, form).ptr;
}

std::string formatMoment(datetime_t const& moment, bool withTime) {
  std::string text = withTime ? "0000-00-00 00:00:00" : "0000-00-00";
  putDigits(text.data(), 4, moment.year());
  putDigits(text.data() + 5, 2, moment.month());
  putDigits(text.data() + 8, 2, moment.day());
  if (withTime) {
    putDigits(text.data() + 11, 2, moment.hour());
    putDigits(text.data() + 14, 2, moment.minute());
    putDigits(text.data() + 17, 2, moment.second());
  }
  return text;
}

std::string base64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    auto const group = base64Group(bytes.substr(at, 3));
    text.append(group.data(), group.size());
  }
  return text;
}

}  // namespace mox::cli
