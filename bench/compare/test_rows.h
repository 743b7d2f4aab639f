#pragma once

#include <cstdint>
#include <string>

#include "compare/floor_table.h"

namespace bench {

/// A row of the table that all cases use, named "sale": figures, dates and texts as a business has
/// them. Row i is always the same, so that every engine is given the same table.
struct TestRow {
  std::int32_t number;   // 0 to 99,999
  std::int32_t rating;   // 0 to 999
  bool ratingIsNull;     // of every ten rows one
  double amount;         // -500,000.00 to 1,499,999.99
  bool amountIsNull;     // of every twenty rows one
  std::int64_t day;      // seconds since 1970, at midnight, in ten years
  char code[11];         // four letters and six digits; a million distinct ones
  char description[31];  // letters and blanks, then the row number in eight digits
};

constexpr char const* kColumnNames = "number, rating, amount, day, code, description";

TestRow testRow(std::uint64_t row);

/// A number without pattern for each field of each row; there are eight fields.
std::uint64_t noiseOf(std::uint64_t row, std::uint64_t field);

/// "2024-03-05".
std::string dayText(std::int64_t seconds);

/// Rows from `first` on.
FloorTable makeFloorTable(std::size_t rows, std::size_t first = 0);

}  // namespace bench
