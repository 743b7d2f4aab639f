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

void addRow(CheckSums& sums, FloorTable const& table, std::size_t row) {
  std::int64_t const description = numberInDescription(table, row);
  std::int64_t const code = numberInCode(table, row);
  std::int64_t const rating = table.ratingNulls.test(row) ? 0 : table.rating[row];
  sums["number"] += table.number[row];
  sums["rating"] += rating;
  sums["rating_nulls"] += table.ratingNulls.test(row) ? 1 : 0;
  sums["cents"] += table.amountNulls.test(row) ? 0 : centsAt(table, row);
  sums["amount_nulls"] += table.amountNulls.test(row) ? 1 : 0;
  sums["days"] += table.day[row] / kSecondsPerDay;
  sums["code"] += code;
  sums["description"] += description;
  sums["whole"] += product(description, table.number[row] + code + rating);
}

}  // namespace

CheckSums contentSums(FloorTable const& table) {
  CheckSums sums;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    addRow(sums, table, row);
  }
  sums["rows"] = static_cast<std::int64_t>(table.rows());
  return sums;
}

CheckSums sumsSortedByNumbers(FloorTable const& table) {
  CheckSums sums = contentSums(table);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    std::int64_t const cents = table.amountNulls.test(row) ? 0 : centsAt(table, row);
    sums["order"] += weightOf(row) * (table.number[row] % kModulus);
    sums["order2"] += weightOf(row) * (cents % kModulus);
  }
  return sums;
}

CheckSums sumsSortedByCode(FloorTable const& table) {
  CheckSums sums = contentSums(table);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    sums["order"] += weightOf(row) * (numberInCode(table, row) % kModulus);
  }
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
