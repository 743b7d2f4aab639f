#include "compare/csv_floor.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace bench {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;
constexpr std::size_t kLongestLine = 256;  // of this table
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::size_t kDayBytes = 10;

/// "000" to "999", behind each the number of its digits as a byte.
std::vector<char> threeDigits() {
  std::vector<char> digits;
  for (int number = 0; number < 1000; ++number) {
    digits.push_back(static_cast<char>('0' + number / 100));
    digits.push_back(static_cast<char>('0' + number / 10 % 10));
    digits.push_back(static_cast<char>('0' + number % 10));
    digits.push_back(static_cast<char>(number < 10 ? 1 : number < 100 ? 2 : 3));
  }
  return digits;
}

std::vector<char> const kThreeDigits = threeDigits();

/// The last `count` digits of a number below 1000; four bytes are written.
char* putLast(char* place, std::uint32_t number, unsigned int count) {
  std::memcpy(place, &kThreeDigits[number * 4 + (3 - count)], 4);
  return place + count;
}

char* putFirst(char* place, std::uint32_t number) {
  return putLast(place, number, static_cast<unsigned char>(kThreeDigits[number * 4 + 3]));
}

/// Not negative.
char* putNumber(char* place, std::uint32_t number) {
  if (number < 1000) {
    return putFirst(place, number);
  }
  place = putNumber(place, number / 1000);
  return putLast(place, number % 1000, 3);
}

/// Below a thousand million.
char* putAmount(char* place, double amount) {
  *place = '-';
  place += amount < 0 ? 1 : 0;
  auto const cents = static_cast<std::uint64_t>(std::fabs(amount) * 100 + 0.5);
  auto const whole = static_cast<std::uint32_t>(cents / 100);
  std::uint32_t const thousands = whole / 1000;
  if (thousands == 0) {
    place = putFirst(place, whole);
  } else {
    std::uint32_t const millions = thousands / 1000;
    if (millions == 0) {
      place = putFirst(place, thousands);
    } else {
      place = putFirst(place, millions);
      *place++ = '.';
      place = putLast(place, thousands % 1000, 3);
    }
    *place++ = '.';
    place = putLast(place, whole % 1000, 3);
  }
  *place++ = ',';
  return putLast(place, static_cast<std::uint32_t>(cents % 100), 2);
}

/// A text of sixteen bytes for each day from the first to the last: there are far fewer days than
/// rows.
class DayTexts {
 public:
  explicit DayTexts(GrowingArray<std::int64_t> const& days) {
    if (days.size() == 0) {
      return;
    }
    auto const [first, last] = std::minmax_element(days.data(), days.data() + days.size());
    first_ = *first / kSecondsPerDay;
    texts_.resize(static_cast<std::size_t>(*last / kSecondsPerDay - first_) + 1);
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      write(first_ + static_cast<std::int64_t>(i), texts_[i].data());
    }
  }

  char* put(char* place, std::int64_t seconds) const {
    auto const number = static_cast<std::uint32_t>(seconds) / kSecondsPerDay - first_;
    std::memcpy(place, texts_[static_cast<std::size_t>(number)].data(), 16);
    return place + kDayBytes;
  }

 private:
  static void write(std::int64_t day, char* place) {
    auto const days = static_cast<std::uint32_t>(day + 719'468);
    std::uint32_t const century = (4 * days + 3) / 146'097;
    std::uint32_t const dayOfCentury = days - century * 146'097 / 4;
    std::uint32_t const yearOfCentury = (4 * dayOfCentury + 3) / 1461;
    std::uint32_t const dayOfYear = dayOfCentury - 1461 * yearOfCentury / 4;
    std::uint32_t const fromMarch = (5 * dayOfYear + 2) / 153;
    std::uint32_t const month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
    place = putLast(place, dayOfYear - (153 * fromMarch + 2) / 5 + 1, 2);
    *place++ = '/';
    place = putLast(place, month, 2);
    *place++ = '/';
    std::uint32_t const year = 100 * century + yearOfCentury + (month <= 2 ? 1 : 0);
    putLast(putLast(place, year / 1000, 1), year % 1000, 3);
  }

  std::int64_t first_ = 0;
  std::vector<std::array<char, 16>> texts_;
};

/// Texts of up to 32 bytes by two moves of fixed size, longer ones by a call.
char* putText(char* place, FloorText const& text) {
  if (text.length <= FloorText::kInPlace) {
    std::memcpy(place, text.content, FloorText::kInPlace);
    return place + text.length;
  }
  std::string_view const bytes = text.view();
  if (bytes.size() >= 16 && bytes.size() <= 32) {
    std::memcpy(place, bytes.data(), 16);
    std::memcpy(place + bytes.size() - 16, bytes.data() + bytes.size() - 16, 16);
  } else {
    std::memcpy(place, bytes.data(), bytes.size());
  }
  return place + bytes.size();
}

class OutputFile {
 public:
  explicit OutputFile(std::string const& name)
      : descriptor_(open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {
    if (descriptor_ < 0) {
      throw std::runtime_error("cannot write " + name);
    }
  }
  ~OutputFile() { close(descriptor_); }
  OutputFile(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile const&) = delete;

  void write(char const* bytes, std::size_t count) const {
    while (count != 0) {
      ssize_t const written = ::write(descriptor_, bytes, count);
      if (written <= 0) {
        throw std::runtime_error("cannot write");
      }
      bytes += written;
      count -= static_cast<std::size_t>(written);
    }
  }

 private:
  int descriptor_;
};

char* putLine(char* place, FloorTable const& table, std::size_t row, DayTexts const& days) {
  place = putNumber(place, static_cast<std::uint32_t>(table.number[row]));
  *place++ = ';';
  if (!table.amountNulls.test(row)) {
    place = putAmount(place, table.amount[row]);
  }
  *place++ = ';';
  place = days.put(place, table.day[row]);
  *place++ = ';';
  place = putText(place, table.code[row]);
  *place++ = ';';
  place = putText(place, table.description[row]);
  *place++ = ';';
  if (!table.ratingNulls.test(row)) {
    place = putNumber(place, static_cast<std::uint32_t>(table.rating[row]));
  }
  *place++ = '\n';
  return place;
}

}  // namespace

void writeCsv(FloorTable const& table, std::string const& fileName) {
  OutputFile const file(fileName);
  DayTexts const days(table.day);
  auto const buffer = std::make_unique<char[]>(kPiece + kLongestLine);
  char* place = buffer.get();
  for (std::size_t row = 0; row < table.rows(); ++row) {
    place = putLine(place, table, row, days);
    if (place >= buffer.get() + kPiece) {
      file.write(buffer.get(), static_cast<std::size_t>(place - buffer.get()));
      place = buffer.get();
    }
  }
  file.write(buffer.get(), static_cast<std::size_t>(place - buffer.get()));
}

}  // namespace bench
