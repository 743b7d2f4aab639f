#include "zyn/matrix/sort_rows.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "zyn/matrix/sort_records.h"

namespace {

constexpr std::uint32_t kBlockRows = 1024;

__extension__ using Key128 = unsigned __int128;

struct RecordRelease {
  void operator()(SortRecord* records) const {
    LargeAllocator<SortRecord>().deallocate(records, count);
  }
  std::size_t count;
};

/// Not a vector, which would write zeros into records that are all overwritten.
using RecordList = std::unique_ptr<SortRecord[], RecordRelease>;

/// A piece of a column, or its leading bits where the record has no room for all.
struct PackedPiece {
  SortColumn const* column;
  unsigned int piece;
  unsigned int bits;     // taken into the key
  unsigned int dropped;  // left out at the low end
};

/// Which pieces make up the 96 bits of a record's key, and whether these decide alone.
class KeyLayout {
 public:
  explicit KeyLayout(std::vector<std::unique_ptr<SortColumn>> const& columns) {
    for (auto const& column : columns) {
      for (unsigned int piece = 0; piece < column->pieceCount(); ++piece) {
        add(*column, piece);
      }
      exact_ = exact_ && column->isExact();
      if (!exact_) {
        return;  // what follows decides only between rows that are equal in the whole of this
                 // column
      }
    }
  }

  bool isExact() const { return exact_; }
  unsigned int keyBits() const { return SortRecord::kKeyBits - room_; }

  /// The highest `bits` bits of the keys of up to kBlockRows rows; `bits` is at most keyBits().
  void packLeading(std::uint32_t firstRow, std::uint32_t count, unsigned int bits,
                   std::uint64_t* leading) const {
    std::array<std::uint64_t, kBlockRows> codes;
    std::fill_n(leading, count, 0);
    for (PackedPiece const& packed : pieces_) {
      unsigned int const taken = std::min(bits, packed.bits);
      if (taken == 0) {
        return;
      }
      packed.column->encode(packed.piece, firstRow, count, codes.data());
      unsigned int const dropped = packed.dropped + packed.bits - taken;
      for (std::uint32_t i = 0; i < count; ++i) {
        leading[i] = (leading[i] << taken) | (codes[i] >> dropped);
      }
      bits -= taken;
    }
  }

  /// Packs the keys of up to kBlockRows rows, in the highest bits of the records, with their row
  /// numbers.
  void pack(std::uint32_t firstRow, std::uint32_t count, SortRecord* records) const {
    std::array<Key128, kBlockRows> keys{};
    std::array<std::uint64_t, kBlockRows> codes;
    for (PackedPiece const& packed : pieces_) {
      packed.column->encode(packed.piece, firstRow, count, codes.data());
      for (std::uint32_t i = 0; i < count; ++i) {
        keys[i] = (keys[i] << packed.bits) | (codes[i] >> packed.dropped);
      }
    }
    unsigned int const shift = 128 - keyBits();
    for (std::uint32_t i = 0; i < count; ++i) {
      Key128 const key = shift == 128 ? 0 : keys[i] << shift;
      records[i].high = static_cast<std::uint64_t>(key >> 64);
      records[i].low = static_cast<std::uint64_t>(key) | (firstRow + i);
    }
  }

 private:
  void add(SortColumn const& column, unsigned int piece) {
    unsigned int const wanted = column.pieceBits(piece);
    unsigned int const taken = std::min(wanted, room_);
    exact_ = exact_ && taken == wanted;
    if (taken != 0) {
      pieces_.push_back({&column, piece, taken, wanted - taken});
      room_ -= taken;
    }
  }

  std::vector<PackedPiece> pieces_;
  unsigned int room_ = SortRecord::kKeyBits;
  bool exact_ = true;
};

/// Makes all records and sorts them. They are placed by their leading digit right as they are made,
/// after a first round that only counts digits: that costs less than moving every record through
/// memory once more.
class RecordMaker {
 public:
  RecordMaker(KeyLayout const& layout, std::uint32_t rows)
      : layout_(layout), rows_(rows), digitBits_(std::min(kFirstDigitBits, layout.keyBits())) {}

  RecordList makeAndSort() {
    countDigits();
    RecordList records(LargeAllocator<SortRecord>().allocate(rows_), RecordRelease{rows_});
    std::vector<std::size_t> ends = starts_;
    place(records.get(), ends);
    std::vector<SortRecord> scratch;
    for (std::size_t bucket = 0; bucket < ends.size(); ++bucket) {
      sortRecords(records.get() + starts_[bucket], ends[bucket] - starts_[bucket], scratch);
    }
    return records;
  }

 private:
  static constexpr unsigned int kFirstDigitBits = 11;

  template <class Use>
  void forEachBlock(Use use) const {
    for (std::uint32_t row = 0; row < rows_; row += std::min(kBlockRows, rows_ - row)) {
      use(row, std::min(kBlockRows, rows_ - row));
    }
  }

  void countDigits() {
    starts_.assign(std::size_t{1} << digitBits_, 0);
    std::array<std::uint64_t, kBlockRows> digits;
    forEachBlock([&](std::uint32_t row, std::uint32_t count) {
      layout_.packLeading(row, count, digitBits_, digits.data());
      for (std::uint32_t i = 0; i < count; ++i) {
        ++starts_[digits[i]];
      }
    });
    std::exclusive_scan(starts_.begin(), starts_.end(), starts_.begin(), std::size_t{0});
  }

  void place(SortRecord* records, std::vector<std::size_t>& ends) const {
    std::array<SortRecord, kBlockRows> block;
    forEachBlock([&](std::uint32_t row, std::uint32_t count) {
      layout_.pack(row, count, block.data());
      for (std::uint32_t i = 0; i < count; ++i) {
        std::size_t const digit = digitBits_ == 0 ? 0 : block[i].high >> (64 - digitBits_);
        records[ends[digit]++] = block[i];
      }
    });
  }

  KeyLayout const& layout_;
  std::uint32_t rows_;
  unsigned int digitBits_;
  std::vector<std::size_t> starts_;  // of each digit's records
};

/// Settles rows whose keys are equal by comparing the columns themselves.
class TieBreaker {
 public:
  explicit TieBreaker(std::vector<std::unique_ptr<SortColumn>> const& columns)
      : columns_(columns) {}

  void apply(SortRecord* records, std::uint32_t rows) const {
    SortRecord* const last = records + rows;
    for (SortRecord* run = records; run != last;) {
      SortRecord* const end = std::find_if(
          run + 1, last, [&](SortRecord const& record) { return !record.hasKeyOf(*run); });
      if (end - run > 1) {
        std::sort(run, end, [this](SortRecord const& left, SortRecord const& right) {
          return isBefore(left.row(), right.row());
        });
      }
      run = end;
    }
  }

 private:
  bool isBefore(std::uint32_t left, std::uint32_t right) const {
    for (auto const& column : columns_) {
      int const order = column->compare(left, right);
      if (order != 0) {
        return order < 0;
      }
    }
    return left < right;
  }

  std::vector<std::unique_ptr<SortColumn>> const& columns_;
};

}  // namespace

RowOrder sortedRows(std::vector<std::unique_ptr<SortColumn>> const& columns, std::uint32_t rows) {
  KeyLayout const layout(columns);
  RecordList const records = RecordMaker(layout, rows).makeAndSort();
  if (!layout.isExact()) {
    TieBreaker(columns).apply(records.get(), rows);
  }
  RowOrder order(rows);
  std::transform(records.get(), records.get() + rows, order.begin(),
                 [](SortRecord const& record) { return record.row(); });
  return order;
}
