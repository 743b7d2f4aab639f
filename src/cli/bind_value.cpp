#include "cli/bind_value.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "cli/error_text.h"

namespace mox::cli {

namespace {

[[noreturn]] void refuse(std::string const& text, std::string const& why) {
  throw UsageError("--bind " + text + ": " + why);
}

template <class Number>
std::optional<Number> wholeText(std::string_view text) {
  Number number{};
  auto const end = text.data() + text.size();
  auto const result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) {
    return std::nullopt;
  }
  return number;
}

/// Digits, perhaps with a sign, a point and an exponent; the words for infinity and no number are
/// texts.
bool looksLikeNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789+-.eE") == text.npos;
}

bool hasNeedlessZero(std::string_view text) {
  if (text.starts_with('-')) {
    text.remove_prefix(1);
  }
  return text.size() > 1 && text[0] == '0' && text[1] >= '0' && text[1] <= '9';
}

bool isWhole(std::string_view text) {
  return text.find_first_of(".eE") == text.npos;
}

BindValue bareValue(std::string const& text) {
  constexpr double kLargestExact = 9007199254740992.0;  // 2^53
  if (!looksLikeNumber(text) || hasNeedlessZero(text)) {
    return text;
  }
  if (auto const number = wholeText<int>(text)) {
    return *number;
  }
  auto const number = wholeText<double>(text);
  if (!number || (isWhole(text) && std::fabs(*number) >= kLargestExact)) {
    return text;
  }
  return *number;
}

int intValue(std::string const& whole, std::string_view text) {
  auto const number = wholeText<int>(text);
  if (!number) {
    refuse(whole, "no whole number between -2147483648 and 2147483647");
  }
  return *number;
}

double doubleValue(std::string const& whole, std::string_view text) {
  auto const number = looksLikeNumber(text) ? wholeText<double>(text) : std::nullopt;
  if (!number) {
    refuse(whole, "no number that a double can hold");
  }
  return *number;
}

/// The day must be one of the calendar: date_t would carry 30 February on into March.
date_t dateValue(std::string const& whole, std::string_view text) {
  auto const part = [&](std::size_t from, std::size_t count) {
    std::string_view const digits = text.substr(from, count);
    return digits.find_first_not_of("0123456789") == digits.npos
               ? wholeText<int>(digits).value_or(0)
               : 0;
  };
  constexpr std::string_view kForm = "YYYY-MM-DD";
  if (text.size() == kForm.size() && text[4] == '-' && text[7] == '-') {
    date_t const date(part(8, 2), part(5, 2), part(0, 4));
    if (date && date.day() == part(8, 2) && date.month() == part(5, 2) &&
        date.year() == part(0, 4)) {
      return date;
    }
  }
  refuse(whole, "no day of the form YYYY-MM-DD");
}

}  // namespace

BindValue parseBindValue(std::string const& text) {
  if (text == "null") {
    return NullValue{};
  }
  auto const colon = text.find(':');
  std::string const type = text.substr(0, colon == text.npos ? 0 : colon);
  std::string const value = colon == text.npos ? text : text.substr(colon + 1);
  if (type == "int") {
    return intValue(text, value);
  }
  if (type == "double") {
    return doubleValue(text, value);
  }
  if (type == "text") {
    return value;
  }
  if (type == "date") {
    return dateValue(text, value);
  }
  return bareValue(text);
}

}  // namespace mox::cli
