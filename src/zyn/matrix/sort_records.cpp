#include "zyn/matrix/sort_records.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace {

constexpr std::size_t kInsertionLimit = 24;
constexpr unsigned int kMostDigitBits = 8;

template <class Record>
void insertionSort(Record* records, std::size_t count) {
  for (std::size_t i = 1; i < count; ++i) {
    Record const moving = records[i];
    std::size_t place = i;
    while (place > 0 && moving < records[place - 1]) {
      records[place] = records[place - 1];
      --place;
    }
    records[place] = moving;
  }
}

/// A width that makes about a bucket for each record: more would cost more to count than they save.
unsigned int digitBitsFor(std::size_t count) {
  return std::min(static_cast<unsigned int>(std::bit_width(count / 2)), kMostDigitBits);
}

/// Reads a digit of a record at a bit position counted from the top.
class Digit {
 public:
  Digit(unsigned int fromTop, unsigned int wantedBits) : inHigh_(fromTop < 64) {
    // A digit may begin in the last bits of the high half; it then is narrower, and the next one
    // starts below.
    unsigned int const start = inHigh_ ? fromTop : fromTop - 64;
    unsigned int const width = std::min(wantedBits, 64 - start);
    shift_ = 64 - start - width;
    mask_ = (std::uint64_t{1} << width) - 1;
  }

  std::size_t operator()(WideSortRecord const& record) const {
    return ((inHigh_ ? record.high : record.low) >> shift_) & mask_;
  }
  std::size_t buckets() const { return static_cast<std::size_t>(mask_) + 1; }

  std::size_t operator()(NarrowSortRecord const& record) const {
    return (record.high >> shift_) & mask_;
  }

 private:
  bool inHigh_;
  unsigned int shift_;
  std::uint64_t mask_;
};

/// The first bit, from the top, in which some records differ; they always do, by their row number.
unsigned int firstDifferingBit(NarrowSortRecord const* records, std::size_t count) {
  std::uint64_t any = 0;
  for (std::size_t i = 1; i < count; ++i) {
    any |= records[i].high ^ records[0].high;
  }
  return static_cast<unsigned int>(std::countl_zero(any));
}

unsigned int firstDifferingBit(WideSortRecord const* records, std::size_t count) {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  for (std::size_t i = 1; i < count; ++i) {
    high |= records[i].high ^ records[0].high;
    low |= records[i].low ^ records[0].low;
  }
  return static_cast<unsigned int>(high != 0 ? std::countl_zero(high) : 64 + std::countl_zero(low));
}

using BucketEnds = std::array<std::uint32_t, std::size_t{1} << kMostDigitBits>;

/// Brings the records into the order of one digit, keeping the order within a digit; gives each
/// bucket's end. Rows are counted in 32 bits, and so are records.
template <class Record>
BucketEnds distribute(Record* records, std::size_t count, Digit digit,
                      std::vector<Record>& scratch) {
  BucketEnds ends;
  std::fill_n(ends.begin(), digit.buckets(), 0);
  for (std::size_t i = 0; i < count; ++i) {
    ++ends[digit(records[i])];
  }
  std::uint32_t start = 0;
  for (std::size_t i = 0; i < digit.buckets(); ++i) {
    // Where the bucket's next record goes; after the last one, the bucket's end.
    start += std::exchange(ends[i], start);
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

template <class Record>
void sortBuckets(Record* records, std::size_t count, unsigned int keyBits,
                 std::vector<Record>& scratch) {
  if (count <= kInsertionLimit) {
    insertionSort(records, count);
    return;
  }
  unsigned int const bit = firstDifferingBit(records, count);
  if (bit >= keyBits) {
    // Equal keys: records come in ascending order of rows, and distributing keeps that order.
    return;
  }
  Digit const digit(bit, digitBitsFor(count));
  BucketEnds const ends = distribute(records, count, digit, scratch);
  std::size_t start = 0;
  for (std::size_t i = 0; i < digit.buckets(); ++i) {
    if (ends[i] - start > 1) {
      sortBuckets(records + start, ends[i] - start, keyBits, scratch);
    }
    start = ends[i];
  }
}

}  // namespace

void sortRecords(WideSortRecord* records, std::size_t count, unsigned int keyBits,
                 std::vector<WideSortRecord>& scratch) {
  sortBuckets(records, count, keyBits, scratch);
}

void sortRecords(NarrowSortRecord* records, std::size_t count, unsigned int keyBits,
                 std::vector<NarrowSortRecord>& scratch) {
  sortBuckets(records, count, keyBits, scratch);
}
