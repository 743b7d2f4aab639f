#include "core/database/text_dates.h"

#include <cstdint>

#include <fmt/format.h>

namespace mox::core {
namespace {

constexpr int kDaysBeforeEpoch = 719163;  // from 31 December of the year 0 to 1 January 1970
constexpr std::int64_t kSecondsPerDay = 86400;
// By whether the year has a leap day, then by month, which counts from 1.
constexpr int kDaysInMonth[2][13] = {{0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
                                     {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};
constexpr int kDaysBeforeMonth[2][13] = {
    {0, 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334},
    {0, 0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335}};

struct Parts {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Of years 0 and up. The longer rule holds for centuries, which 16 divides where 400 does.
std::size_t leapDays(unsigned year) {
  unsigned const mask = year % 100 == 0 ? 15 : 3;
  return (year & mask) == 0 ? 1 : 0;
}

// Without a jump for each part: the dates of a load follow no pattern that the processor could
// guess from.
bool isInRange(Parts const& p) {
  auto const isOutside = [](int value, int first, int last) {
    return static_cast<unsigned>(value - first) > static_cast<unsigned>(last - first) ? 1U : 0U;
  };
  return (isOutside(p.year, 1, 9999) | isOutside(p.month, 1, 12) | isOutside(p.day, 1, 31) |
          isOutside(p.hour, 0, 23) | isOutside(p.minute, 0, 59) | isOutside(p.second, 0, 59)) == 0;
}

// The calendar's own conversion carries parts of any size on; parts that are in range need none of
// it, and a load converts one for every cell of a date column. Empty for a day that the calendar
// has not: an optional would be put together in memory, which costs as much as the conversion.
datetime_t momentOf(Parts const& p) {
  if (!isInRange(p)) {
    return {};
  }
  auto const month = static_cast<std::size_t>(p.month);
  std::size_t const leap = leapDays(static_cast<unsigned>(p.year));
  if (p.day > kDaysInMonth[leap][month]) {
    return {};
  }
  auto const before = static_cast<unsigned>(p.year) - 1;
  unsigned const centuries = before / 100;
  auto const daysBefore = static_cast<int>(before * 365 + before / 4 - centuries + centuries / 4);
  int const days = daysBefore + kDaysBeforeMonth[leap][month] + p.day - kDaysBeforeEpoch;
  int const seconds = (p.hour * 60 + p.minute) * 60 + p.second;
  return datetime_t::fromTime_t(std::int64_t{days} * kSecondsPerDay + seconds);
}

constexpr int kNoNumber = 100000;  // beyond the bound of every part, also as half of a year

// kNoNumber when one of the two characters is no digit: the bounds of the parts refuse it later,
// all at once.
int two(char const* text) {
  unsigned const tens = static_cast<unsigned char>(text[0]) - static_cast<unsigned>('0');
  unsigned const ones = static_cast<unsigned char>(text[1]) - static_cast<unsigned>('0');
  return tens > 9 || ones > 9 ? kNoNumber : static_cast<int>(tens * 10 + ones);
}

bool isFraction(std::string_view text) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (!isDigit(text[i])) {
      return false;
    }
  }
  return text.empty() || (text.front() == '.' && text.size() > 1);
}

bool readIsoTime(std::string_view text, Parts& parts) {
  if (text.size() < 19 || (text[10] != ' ' && text[10] != 'T') || text[13] != ':' ||
      text[16] != ':') {
    return false;
  }
  parts.hour = two(text.data() + 11);
  parts.minute = two(text.data() + 14);
  parts.second = two(text.data() + 17);
  return text.size() == 19 || isFraction(text.substr(19));
}

class LenientReader {
 public:
  explicit LenientReader(std::string_view text) : text_(text) {
    while (!text_.empty() && (text_.front() == ' ' || text_.front() == '\t')) {
      text_.remove_prefix(1);
    }
  }

  std::optional<Parts> read() {
    std::size_t const digits = countDigits();
    return digits > 4 ? readUndivided(digits) : readDivided();
  }

 private:
  std::size_t countDigits() const {
    std::size_t count = 0;
    while (count < text_.size() && isDigit(text_[count])) {
      ++count;
    }
    return count;
  }

  int take(std::size_t digits) {
    int value = 0;
    for (std::size_t i = 0; i < digits; ++i) {
      value = value * 10 + (text_[i] - '0');
    }
    text_.remove_prefix(digits);
    return value;
  }

  bool takePart(int& part) {
    std::size_t const digits = countDigits();
    if (digits == 0 || digits > 2) {
      return false;
    }
    part = take(digits);
    return true;
  }

  bool takeSeparator() {
    if (text_.empty() || isDigit(text_.front())) {
      return false;
    }
    unsigned char const c = static_cast<unsigned char>(text_.front());
    bool const letter = ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c >= 0x80;
    text_.remove_prefix(1);
    return !letter;
  }

  bool takeTimeSeparator() {
    if (!text_.empty() && text_.front() == 'T') {
      text_.remove_prefix(1);
      return true;
    }
    bool found = false;
    while (!text_.empty() && text_.front() == ' ') {
      text_.remove_prefix(1);
      found = true;
    }
    return found || takeSeparator();
  }

  static int fullYear(int year, std::size_t digits) {
    if (digits != 2) {
      return year;
    }
    return year < 70 ? 2000 + year : 1900 + year;
  }

  std::optional<Parts> readUndivided(std::size_t digits) {
    if (digits != 6 && digits != 8 && digits != 12 && digits != 14) {
      return std::nullopt;
    }
    Parts parts;
    std::size_t const yearDigits = digits == 8 || digits == 14 ? 4 : 2;
    parts.year = fullYear(take(yearDigits), yearDigits);
    parts.month = take(2);
    parts.day = take(2);
    if (digits >= 12) {
      parts.hour = take(2);
      parts.minute = take(2);
      parts.second = take(2);
    }
    return parts;
  }

  std::optional<Parts> readDivided() {
    Parts parts;
    std::size_t const yearDigits = countDigits();
    if (yearDigits == 0) {
      return std::nullopt;
    }
    parts.year = fullYear(take(yearDigits), yearDigits);
    if (!takeSeparator() || !takePart(parts.month) || !takeSeparator() || !takePart(parts.day)) {
      return std::nullopt;
    }
    if (takeTimeSeparator() && takePart(parts.hour) && takeSeparator() && takePart(parts.minute) &&
        takeSeparator()) {
      takePart(parts.second);
    }
    return parts;
  }

  std::string_view text_;
};

}  // namespace

datetime_t isoDateOrEmpty(std::string_view text) noexcept {
  if (text.size() < 10 || text[4] != '-' || text[7] != '-') {
    return {};
  }
  Parts parts;
  parts.year = two(text.data()) * 100 + two(text.data() + 2);
  parts.month = two(text.data() + 5);
  parts.day = two(text.data() + 8);
  if (text.size() > 10 && !readIsoTime(text, parts)) {
    return {};
  }
  return momentOf(parts);
}

std::optional<datetime_t> parseIsoDate(std::string_view text) noexcept {
  datetime_t const moment = isoDateOrEmpty(text);
  return moment ? std::optional(moment) : std::nullopt;
}

std::optional<datetime_t> parseDateText(std::string_view text) noexcept {
  if (auto const exact = parseIsoDate(text)) {
    return exact;
  }
  auto const parts = LenientReader(text).read();
  datetime_t const moment = parts ? momentOf(*parts) : datetime_t();
  return moment ? std::optional(moment) : std::nullopt;
}

std::string isoText(date_t const& date) {
  return date ? fmt::format("{:04}-{:02}-{:02}", date.year(), date.month(), date.day())
              : std::string();
}

std::string isoText(datetime_t const& moment) {
  if (!moment) {
    return {};
  }
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", moment.year(), moment.month(),
                     moment.day(), moment.hour(), moment.minute(), moment.second());
}

}  // namespace mox::core
