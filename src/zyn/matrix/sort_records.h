#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// A row as the sort moves it: 96 bits of key, the row number in the lowest 32. Ordered as one
/// number, so that rows with equal keys keep their order.
struct SortRecord {
  std::uint64_t high;
  std::uint64_t low;

  static constexpr unsigned int kKeyBits = 96;

  std::uint32_t row() const { return static_cast<std::uint32_t>(low); }

  bool hasKeyOf(SortRecord const& other) const {
    return high == other.high && (low >> 32) == (other.low >> 32);
  }

  friend bool operator<(SortRecord const& left, SortRecord const& right) {
    return left.high < right.high || (left.high == right.high && left.low < right.low);
  }
};

/// Sorts records by their leading bits, bucket by bucket, then the small buckets by insertion.
/// `scratch` is grown as needed and may be shared by many calls.
void sortRecords(SortRecord* records, std::size_t count, std::vector<SortRecord>& scratch);
