#include "zyn/matrix/sort_records.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

constexpr std::size_t kInsertionLimit = 24;
constexpr unsigned int kDigitBits = 8;
constexpr std::size_t kBuckets = std::size_t{1} << kDigitBits;

void insertionSort(SortRecord* records, std::size_t count) {
  for (std::size_t i = 1; i < count; ++i) {
    SortRecord const moving = records[i];
    std::size_t place = i;
    while (place > 0 && moving < records[place - 1]) {
      records[place] = records[place - 1];
      --place;
    }
    records[place] = moving;
  }
}

/// Reads a digit of a record at a bit position counted from the top of its 128 bits.
class Digit {
 public:
  explicit Digit(unsigned int fromTop) : inHigh_(fromTop < 64) {
    // A digit may begin in the last bits of the high half; it then is narrower, and the next one
    // starts below.
    unsigned int const start = inHigh_ ? fromTop : fromTop - 64;
    unsigned int const width = std::min(kDigitBits, 64 - start);
    shift_ = 64 - start - width;
    mask_ = (std::uint64_t{1} << width) - 1;
  }

  std::size_t operator()(SortRecord const& record) const {
    return ((inHigh_ ? record.high : record.low) >> shift_) & mask_;
  }

 private:
  bool inHigh_;
  unsigned int shift_;
  std::uint64_t mask_;
};

/// The first bit, from the top, in which some records differ; they always do, by their row number.
unsigned int firstDifferingBit(SortRecord const* records, std::size_t count) {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  for (std::size_t i = 1; i < count; ++i) {
    high |= records[i].high ^ records[0].high;
    low |= records[i].low ^ records[0].low;
  }
  return static_cast<unsigned int>(high != 0 ? std::countl_zero(high) : 64 + std::countl_zero(low));
}

using BucketEnds = std::array<std::size_t, kBuckets>;

/// Brings the records into the order of one digit, keeping the order within a digit; gives each
/// bucket's end.
BucketEnds distribute(SortRecord* records, std::size_t count, Digit digit,
                      std::vector<SortRecord>& scratch) {
  BucketEnds ends{};
  for (std::size_t i = 0; i < count; ++i) {
    ++ends[digit(records[i])];
  }
  std::size_t start = 0;
  for (std::size_t& end : ends) {
    std::size_t const size = end;
    end = start;  // where the bucket's next record goes; after the last one, the bucket's end
    start += size;
  }
  if (scratch.size() < count) {
    scratch.resize(count);
  }
  for (std::size_t i = 0; i < count; ++i) {
    scratch[ends[digit(records[i])]++] = records[i];
  }
  std::copy_n(scratch.begin(), count, records);
  return ends;
}

}  // namespace

void sortRecords(SortRecord* records, std::size_t count, std::vector<SortRecord>& scratch) {
  if (count <= kInsertionLimit) {
    insertionSort(records, count);
    return;
  }
  unsigned int const bit = firstDifferingBit(records, count);
  if (bit >= SortRecord::kKeyBits) {
    // Equal keys: records come in ascending order of rows, and distributing keeps that order.
    return;
  }
  BucketEnds const ends = distribute(records, count, Digit(bit), scratch);
  std::size_t start = 0;
  for (std::size_t const end : ends) {
    if (end - start > 1) {
      sortRecords(records + start, end - start, scratch);
    }
    start = end;
  }
}
