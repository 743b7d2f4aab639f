#pragma once

#include <cstdint>
#include <string>

#include "compare/floor_table.h"

namespace bench {

/// Rows of sales, and the table of their customers, a tenth as many. Keys are spread over all ints,
/// codes over all texts of four letters and six digits. Of every five sales one has a customer that
/// the table lacks.
struct JoinTables {
  explicit JoinTables(std::size_t rows);

  std::size_t saleRows;
  std::size_t customerRows;

  GrowingArray<std::int32_t> saleKey;
  GrowingArray<FloorText> saleCode;
  GrowingArray<double> value;
  FloorNulls valueNulls;  // of every twenty rows one

  GrowingArray<std::int32_t> customerKey;
  GrowingArray<FloorText> customerCode;
  GrowingArray<std::int32_t> rating;
  FloorNulls ratingNulls;  // of every ten rows one
  GrowingArray<double> credit;
  FloorNulls creditNulls;         // of every twenty rows one
  GrowingArray<FloorText> label;  // ten bytes
  GrowingArray<std::int64_t> since;
};

/// What a join gives; columns that were not asked for are empty.
struct JoinResult {
  explicit JoinResult(std::size_t rows);

  std::size_t rows = 0;
  GrowingArray<std::int32_t> key;
  GrowingArray<FloorText> code;
  GrowingArray<double> value;
  FloorNulls valueNulls;
  GrowingArray<std::int32_t> rating;
  FloorNulls ratingNulls;
  GrowingArray<double> credit;
  FloorNulls creditNulls;
  GrowingArray<FloorText> label;
  GrowingArray<std::int64_t> since;
};

/// The customer of a sale, a row of the table or one that it lacks.
std::uint32_t customerOf(JoinTables const& tables, std::size_t sale);

/// Writes both tables for peers to read. Throws std::runtime_error.
void writeCsv(JoinTables const& tables, std::string const& salesPath,
              std::string const& customersPath);

}  // namespace bench
