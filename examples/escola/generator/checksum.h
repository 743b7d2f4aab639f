#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "escola/generator/row_sink.h"

namespace escola {

/// Sum over rows of one table: two tables have equal sums when they hold equal rows in an equal
/// order, however their databases store them. Not made against people who want two tables to look
/// equal.
class RowChecksum {
 public:
  void add(std::span<Cell const> cells);

  /// Adds another sum as if it were a row.
  void add(RowChecksum const& sum);

  std::uint64_t value() const { return hash_; }
  std::int64_t rows() const { return rows_; }

 private:
  void addByte(unsigned char byte) { hash_ = (hash_ ^ byte) * 0x100000001B3U; }
  void addBytes(std::string_view bytes);
  void addNumber(std::int64_t number);

  std::uint64_t hash_ = 0xCBF29CE484222325U;
  std::int64_t rows_ = 0;
};

/// A sink that keeps nothing but the sum of each table.
class ChecksumSink : public RowSink {
 public:
  using RowSink::row;
  void row(TableId table, std::span<Cell const> cells) override;

  RowChecksum const& of(TableId table) const { return sums_[static_cast<std::size_t>(table)]; }

 private:
  std::array<RowChecksum, static_cast<std::size_t>(TableId::kPayments) + 1> sums_;
};

/// A line for each table with its rows and sum, then one for all: what `escola-generate --checksum`
/// prints.
std::string checksumReport(ChecksumSink const& sums);

}  // namespace escola
