#include "escola/generator/checksum.h"

#include <fmt/format.h>

namespace escola {

void RowChecksum::addBytes(std::string_view bytes) {
  addNumber(static_cast<std::int64_t>(bytes.size()));
  for (char const byte : bytes) {
    addByte(static_cast<unsigned char>(byte));
  }
}

void RowChecksum::addNumber(std::int64_t number) {
  auto const bits = static_cast<std::uint64_t>(number);
  for (unsigned shift = 0; shift < 64; shift += 16) {
    hash_ = (hash_ ^ (bits >> shift & 0xFFFFU)) * 0x100000001B3U;
  }
}

void RowChecksum::add(std::span<Cell const> cells) {
  for (Cell const& cell : cells) {
    addByte(static_cast<unsigned char>(cell.kind()));
    if (cell.kind() == Cell::Kind::kText || cell.kind() == Cell::Kind::kBytes) {
      addBytes(cell.text());
    } else if (cell.kind() != Cell::Kind::kNull) {
      addNumber(cell.number());
    }
  }
  ++rows_;
}

void RowChecksum::add(RowChecksum const& sum) {
  addNumber(static_cast<std::int64_t>(sum.hash_));
  addNumber(sum.rows_);
  ++rows_;
}

void ChecksumSink::row(TableId table, std::span<Cell const> cells) {
  sums_[static_cast<std::size_t>(table)].add(cells);
}

std::string checksumReport(ChecksumSink const& sums) {
  std::string report;
  RowChecksum total;
  std::int64_t rows = 0;
  for (Table const& table : allTables()) {
    RowChecksum const& sum = sums.of(table.id);
    report += fmt::format("{:<36} {:>10}  {:016x}\n", table.name, sum.rows(), sum.value());
    total.add(sum);
    rows += sum.rows();
  }
  report += fmt::format("{:<36} {:>10}  {:016x}\n", "total", rows, total.value());
  return report;
}

}  // namespace escola
