#include "zyn/format/date_mask.h"

#include <array>
#include <cstdint>
#include <string_view>

// Parts of a moment in the years 1 to 9999, from its seconds alone: asking the date class part by
// part would count the calendar anew for each.
struct DateMask::Civil {
  explicit Civil(std::time_t secondsSinceEpoch);

  unsigned int year, month, day, hour, minute, second;
};

namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kDaysFromMarchOfYear0 = 719'468;  // to 1970-01-01
constexpr unsigned int kFirstFourDigitYear = 1000;

char* putTwo(char* end, unsigned int value) {
  end[0] = static_cast<char>('0' + value / 10);
  end[1] = static_cast<char>('0' + value % 10);
  return end + 2;
}

template <class DateOrMoment>
std::tm partsOf(DateOrMoment const& value) {
  std::tm parts{};
  parts.tm_mday = value.day();
  parts.tm_mon = value.month() - 1;
  parts.tm_year = value.year() - 1900;
  parts.tm_wday = value.dow();
  return parts;
}

std::tm brokenDown(datetime_t const& moment) {
  if (auto const parts = moment.asTM()) {
    return *parts;
  }
  std::tm parts = partsOf(moment);
  parts.tm_hour = moment.hour();
  parts.tm_min = moment.minute();
  parts.tm_sec = moment.second();
  return normalizedMoment(parts);
}

std::tm brokenDown(date_t const& day) {
  auto const parts = day.asTM();
  return parts ? *parts : normalizedDay(partsOf(day));
}

}  // namespace

// Years are counted from March, so that the leap day is the last of a year and month lengths follow
// one line: the n-th month begins after (153 n + 2) / 5 days.
DateMask::Civil::Civil(std::time_t secondsSinceEpoch) {
  // No date is earlier than March of the year 0, so that all that follows is unsigned.
  auto const seconds =
      static_cast<std::uint64_t>(secondsSinceEpoch + kDaysFromMarchOfYear0 * kSecondsPerDay);
  auto const days = static_cast<std::uint32_t>(seconds / kSecondsPerDay);
  auto const ofDay = static_cast<std::uint32_t>(seconds % kSecondsPerDay);
  std::uint32_t const century = (4 * days + 3) / 146'097;
  std::uint32_t const dayOfCentury = days - century * 146'097 / 4;
  std::uint32_t const yearOfCentury = (4 * dayOfCentury + 3) / 1461;
  std::uint32_t const dayOfYear = dayOfCentury - 1461 * yearOfCentury / 4;
  std::uint32_t const monthFromMarch = (5 * dayOfYear + 2) / 153;
  day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
  month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  year = 100 * century + yearOfCentury + (month <= 2 ? 1 : 0);
  hour = ofDay / 3600;
  minute = ofDay / 60 % 60;
  second = ofDay % 60;
}

DateMask::DateMask(std::string const& mask) : mask_(mask, 0, mask.find('\0')) {
  for (std::size_t i = 0; i < mask_.size() && !needsLibrary_; ++i) {
    if (mask_[i] != '%') {
      addByte(mask_[i]);
    } else {
      ++i;
      needsLibrary_ = i == mask_.size() || !takeConversion(mask_[i]);
    }
  }
  for (Piece const piece : pieces_) {
    length_ += piece.part == Part::kByte ? 1 : piece.part == Part::kYear ? 4 : 2;
  }
}

bool DateMask::takeConversion(char conversion) {
  auto const add = [this](Part part) { pieces_.push_back({part, '\0'}); };
  switch (conversion) {
    case 'd':
      add(Part::kDay);
      return true;
    case 'm':
      add(Part::kMonth);
      return true;
    case 'Y':
      add(Part::kYear);
      return true;
    case 'y':
      add(Part::kShortYear);
      return true;
    case 'H':
      add(Part::kHour);
      return true;
    case 'M':
      add(Part::kMinute);
      return true;
    case 'S':
      add(Part::kSecond);
      return true;
    case 'F':
      addDate(Part::kYear, '-', Part::kMonth, Part::kDay);
      return true;
    case 'T':
      addDate(Part::kHour, ':', Part::kMinute, Part::kSecond);
      return true;
    case 'D':
      addDate(Part::kMonth, '/', Part::kDay, Part::kShortYear);
      return true;
    case '%':
      addByte('%');
      return true;
    default:
      return false;
  }
}

void DateMask::addDate(Part first, char separator, Part second, Part third) {
  pieces_.insert(pieces_.end(), {{first, '\0'},
                                 {Part::kByte, separator},
                                 {second, '\0'},
                                 {Part::kByte, separator},
                                 {third, '\0'}});
}

char* DateMask::putPiece(char* end, Piece piece, Civil const& civil) {
  switch (piece.part) {
    case Part::kByte:
      *end = piece.byte;
      return end + 1;
    case Part::kDay:
      return putTwo(end, civil.day);
    case Part::kMonth:
      return putTwo(end, civil.month);
    case Part::kYear:
      return putTwo(putTwo(end, civil.year / 100), civil.year % 100);
    case Part::kShortYear:
      return putTwo(end, civil.year % 100);
    case Part::kHour:
      return putTwo(end, civil.hour);
    case Part::kMinute:
      return putTwo(end, civil.minute);
    case Part::kSecond:
      return putTwo(end, civil.second);
  }
  return end;
}

// A year of fewer digits is written as the C library does it, which differs between systems.
bool DateMask::isByHand(Civil const& civil) const {
  return !needsLibrary_ && civil.year >= kFirstFourDigitYear;
}

void DateMask::appendByHand(std::string& out, Civil const& civil) const {
  if (length_ >= kTextLimit) {
    return;
  }
  std::array<char, kTextLimit> text;
  putAll(text.data(), civil);
  out.append(text.data(), length_);
}

char* DateMask::putAll(char* place, Civil const& civil) const {
  for (Piece const piece : pieces_) {
    place = putPiece(place, piece, civil);
  }
  return place;
}

char* DateMask::put(char* place, datetime_t const& moment) const {
  Civil const civil(moment.asTime_t());
  return isByHand(civil) ? putAll(place, civil) : nullptr;
}

void DateMask::appendByLibrary(std::string& out, std::tm const& parts) const {
  std::array<char, kTextLimit> text{};
  out.append(text.data(), std::strftime(text.data(), text.size(), mask_.c_str(), &parts));
}

void DateMask::appendTo(std::string& out, datetime_t const& moment) const {
  Civil const civil(moment.asTime_t());
  isByHand(civil) ? appendByHand(out, civil) : appendByLibrary(out, brokenDown(moment));
}

void DateMask::appendTo(std::string& out, date_t const& day) const {
  Civil const civil(day.asTime_t());
  isByHand(civil) ? appendByHand(out, civil) : appendByLibrary(out, brokenDown(day));
}

std::tm normalizedMoment(std::tm parts) {
  constexpr std::time_t kSummerHour = 3600;
  std::time_t const seconds = std::mktime(&parts);
  if (parts.tm_isdst != 0) {
    std::time_t const shifted = seconds - kSummerHour;
    localtime_r(&shifted, &parts);
  }
  return parts;
}

std::tm normalizedDay(std::tm parts) {
  std::mktime(&parts);
  return parts;
}
