#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// A row as the sort moves it: a key in the leading bits, the row number in the lowest. Ordered as
// one number, so that rows with equal keys keep their order. `keyBits` is how many leading bits are
// the key's.

/// 96 bits of key and 32 of row number: room for most keys.
struct WideSortRecord {
  static constexpr unsigned int kKeyBits = 96;

  __extension__ using Key = unsigned __int128;

  /// `key` has `width` bits, at most kKeyBits.
  static WideSortRecord make(Key key, unsigned int width, std::uint32_t row) {
    Key const placed = width == 0 ? 0 : key << (128 - width);
    return {static_cast<std::uint64_t>(placed >> 64), static_cast<std::uint64_t>(placed) | row};
  }

  std::uint32_t row(unsigned int /*keyBits*/) const { return static_cast<std::uint32_t>(low); }

  bool hasKeyOf(WideSortRecord const& other, unsigned int /*keyBits*/) const {
    return high == other.high && (low >> 32) == (other.low >> 32);
  }

  friend bool operator<(WideSortRecord const& left, WideSortRecord const& right) {
    return left.high < right.high || (left.high == right.high && left.low < right.low);
  }

  std::uint64_t high;
  std::uint64_t low;
};

/// Half as large, and so half as much to move through memory; the row number takes what `keyBits`
/// leaves, which is between 32 and 63.
struct NarrowSortRecord {
  using Key = std::uint64_t;

  /// Only the lowest `width` bits of `key` are taken, at most keyBits.
  static NarrowSortRecord make(Key key, unsigned int width, std::uint32_t row) {
    return {(width == 0 ? 0 : key << (64 - width)) | row};
  }

  std::uint32_t row(unsigned int keyBits) const {
    return static_cast<std::uint32_t>(high & (~std::uint64_t{0} >> keyBits));
  }

  bool hasKeyOf(NarrowSortRecord const& other, unsigned int keyBits) const {
    return ((high ^ other.high) >> (64 - keyBits)) == 0;
  }

  friend bool operator<(NarrowSortRecord const& left, NarrowSortRecord const& right) {
    return left.high < right.high;
  }

  std::uint64_t high;
};

/// Sorts records by their leading bits, bucket by bucket, then the small buckets by insertion.
/// Records with equal keys must come in the order of their rows. `scratch` is grown as needed and
/// may be shared by many calls.
void sortRecords(WideSortRecord* records, std::size_t count, unsigned int keyBits,
                 std::vector<WideSortRecord>& scratch);
void sortRecords(NarrowSortRecord* records, std::size_t count, unsigned int keyBits,
                 std::vector<NarrowSortRecord>& scratch);
