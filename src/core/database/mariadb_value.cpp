#include "core/database/mariadb_value.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "core/database/text_dates.h"

namespace mox::core {
namespace {

constexpr double kInt64Limit = 9223372036854775808.0;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view withoutLeadingBlanks(std::string_view text) {
  std::size_t const start = text.find_first_not_of(" \t\n\r\f\v");
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// from_chars knows no "+", and reads words like "inf", which are no numbers here.
std::string_view numberStart(std::string_view text) {
  text = withoutLeadingBlanks(text);
  std::string_view digits = text;
  if (!digits.empty() && (digits[0] == '+' || digits[0] == '-')) {
    digits.remove_prefix(1);
  }
  bool const isNumber = !digits.empty() && (isDigit(digits[0]) || digits[0] == '.');
  if (!isNumber) {
    return {};
  }
  return text[0] == '+' ? digits : text;
}

std::int64_t int64From(double value) {
  if (std::isnan(value)) {
    return 0;
  }
  if (value >= kInt64Limit) {
    return std::numeric_limits<std::int64_t>::max();
  }
  return value < -kInt64Limit ? std::numeric_limits<std::int64_t>::min()
                              : static_cast<std::int64_t>(value);
}

std::int64_t int64From(std::string_view text) {
  text = numberStart(text);
  std::int64_t value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    return text[0] == '-' ? std::numeric_limits<std::int64_t>::min()
                          : std::numeric_limits<std::int64_t>::max();
  }
  return value;
}

double doubleFrom(std::string_view text) {
  text = numberStart(text);
  double value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    return std::strtod(std::string(text).c_str(), nullptr);
  }
  return value;
}

std::uint64_t bitsOf(MariadbField const& field) {
  std::uint64_t value = 0;
  for (char const byte : field.view()) {
    value = value << 8 | static_cast<unsigned char>(byte);
  }
  return value;
}

/// A day as the server counts it when a number is wanted: 20240305, or 20240305101500 with a time.
std::int64_t digitsOf(MariadbField const& field) {
  MYSQL_TIME const& time = field.time;
  std::int64_t const day =
      std::int64_t{time.year} * 10000 + std::int64_t{time.month} * 100 + time.day;
  if (field.kind == MariadbKind::kDate) {
    return day;
  }
  return day * 1000000 + std::int64_t{time.hour} * 10000 + std::int64_t{time.minute} * 100 +
         time.second;
}

void appendMoment(std::string& target, MariadbField const& field) {
  MYSQL_TIME const& time = field.time;
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%04u-%02u-%02u", time.year, time.month, time.day);
  target += buffer;
  if (field.kind == MariadbKind::kDate) {
    return;
  }
  std::snprintf(buffer, sizeof buffer, " %02u:%02u:%02u", time.hour, time.minute, time.second);
  target += buffer;
  if (field.decimals > 0) {
    std::snprintf(buffer, sizeof buffer, ".%06lu", time.second_part % 1000000);
    target.append(buffer, field.decimals + std::size_t{1});
  }
}

template <class Number>
void appendNumber(std::string& target, Number value) {
  char buffer[64];
  auto const [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  target.append(buffer, end);
}

}  // namespace

std::int64_t readInt64Slow(MariadbField const& field) {
  switch (field.kind) {
    case MariadbKind::kInt8:
      return storedNumber<std::int8_t>(field);
    case MariadbKind::kUInt8:
      return storedNumber<std::uint8_t>(field);
    case MariadbKind::kInt16:
      return storedNumber<std::int16_t>(field);
    case MariadbKind::kUInt16:
      return storedNumber<std::uint16_t>(field);
    case MariadbKind::kInt32:
      return storedNumber<std::int32_t>(field);
    case MariadbKind::kUInt32:
      return storedNumber<std::uint32_t>(field);
    case MariadbKind::kInt64:
    case MariadbKind::kUInt64:
      return storedNumber<std::int64_t>(field);
    case MariadbKind::kBit:
      return static_cast<std::int64_t>(bitsOf(field));
    case MariadbKind::kFloat:
    case MariadbKind::kDouble:
      return int64From(readDouble(field));
    case MariadbKind::kDate:
    case MariadbKind::kDateTime:
      return digitsOf(field);
    default:
      return int64From(field.view());
  }
}

double readDoubleSlow(MariadbField const& field) {
  switch (field.kind) {
    case MariadbKind::kFloat:
      return storedNumber<float>(field);
    case MariadbKind::kDouble:
      return storedNumber<double>(field);
    case MariadbKind::kUInt64:
      return static_cast<double>(storedNumber<std::uint64_t>(field));
    case MariadbKind::kBit:
      return static_cast<double>(bitsOf(field));
    case MariadbKind::kDecimal:
    case MariadbKind::kText:
    case MariadbKind::kBlob:
      return doubleFrom(field.view());
    default:
      return static_cast<double>(readInt64Slow(field));
  }
}

datetime_t readMomentSlow(MariadbField const& field) {
  if (field.holdsTime()) {
    return momentOf(field.time);
  }
  bool const isText = field.kind == MariadbKind::kText || field.kind == MariadbKind::kBlob;
  return isText ? parseDateText(field.view()).value_or(datetime_t()) : datetime_t();
}

std::string_view readTextSlow(MariadbField const& field, std::string& scratch) {
  scratch.clear();
  switch (field.kind) {
    case MariadbKind::kDecimal:
    case MariadbKind::kText:
    case MariadbKind::kBlob:
      return field.view();
    case MariadbKind::kDate:
    case MariadbKind::kDateTime:
      appendMoment(scratch, field);
      break;
    case MariadbKind::kFloat:
      appendNumber(scratch, storedNumber<float>(field));
      break;
    case MariadbKind::kDouble:
      appendNumber(scratch, storedNumber<double>(field));
      break;
    case MariadbKind::kUInt64:
    case MariadbKind::kBit:
      appendNumber(scratch, static_cast<std::uint64_t>(readInt64Slow(field)));
      break;
    default:
      appendNumber(scratch, readInt64Slow(field));
  }
  return scratch;
}

}  // namespace mox::core
