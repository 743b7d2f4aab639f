#include "compare/check_sums.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::int64_t kModulus = 16381;
constexpr std::int64_t kCentsOffset = 50'000'000;  // makes all amounts positive
constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t numberIn(std::string_view digits) {
  std::int64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

std::int64_t numberInCode(FloorTable const& table, std::size_t row) {
  return numberIn(table.code[row].view().substr(4));
}

std::int64_t numberInDescription(FloorTable const& table, std::size_t row) {
  return numberIn(table.description[row].view().substr(22));
}

std::int64_t centsAt(FloorTable const& table, std::size_t row) {
  return std::llround(table.amount[row] * 100) + kCentsOffset;
}

std::int64_t product(std::int64_t left, std::int64_t right) {
  return (left % kModulus) * (right % kModulus);
}

std::int64_t weightOf(std::size_t row) {
  return static_cast<std::int64_t>(row) % kModulus + 1;
}

struct Content {
  std::int64_t number = 0;
  std::int64_t rating = 0;
  std::int64_t ratingNulls = 0;
  std::int64_t cents = 0;
  std::int64_t amountNulls = 0;
  std::int64_t days = 0;
  std::int64_t code = 0;
  std::int64_t description = 0;
  std::int64_t whole = 0;

  void add(FloorTable const& table, std::size_t row) {
    std::int64_t const rowDescription = numberInDescription(table, row);
    std::int64_t const rowCode = numberInCode(table, row);
    std::int64_t const rowRating = table.ratingNulls.test(row) ? 0 : table.rating[row];
    number += table.number[row];
    rating += rowRating;
    ratingNulls += table.ratingNulls.test(row) ? 1 : 0;
    cents += table.amountNulls.test(row) ? 0 : centsAt(table, row);
    amountNulls += table.amountNulls.test(row) ? 1 : 0;
    days += table.day[row] / kSecondsPerDay;
    code += rowCode;
    description += rowDescription;
    whole += product(rowDescription, table.number[row] + rowCode + rowRating);
  }
};

}  // namespace

CheckSums contentSums(FloorTable const& table) {
  Content content;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    content.add(table, row);
  }
  return {{"rows", static_cast<std::int64_t>(table.rows())},
          {"number", content.number},
          {"rating", content.rating},
          {"rating_nulls", content.ratingNulls},
          {"cents", content.cents},
          {"amount_nulls", content.amountNulls},
          {"days", content.days},
          {"code", content.code},
          {"description", content.description},
          {"whole", content.whole}};
}

CheckSums sumsSortedByNumbers(FloorTable const& table) {
  std::int64_t numbers = 0;
  std::int64_t amounts = 0;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    std::int64_t const cents = table.amountNulls.test(row) ? 0 : centsAt(table, row);
    numbers += weightOf(row) * (table.number[row] % kModulus);
    amounts += weightOf(row) * (cents % kModulus);
  }
  CheckSums sums = contentSums(table);
  sums["order"] = numbers;
  sums["order2"] = amounts;
  return sums;
}

CheckSums sumsSortedByCode(FloorTable const& table) {
  std::int64_t codes = 0;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    codes += weightOf(row) * (numberInCode(table, row) % kModulus);
  }
  CheckSums sums = contentSums(table);
  sums["order"] = codes;
  return sums;
}

void requireEqual(CheckSums const& expected, CheckSums const& found) {
  for (auto const& [name, sum] : expected) {
    auto const other = found.find(name);
    if (other == found.end() || other->second != sum) {
      throw std::runtime_error("wrong result: the sum '" + name + "' is not " +
                               std::to_string(sum));
    }
  }
}

}  // namespace bench
