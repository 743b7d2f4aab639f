#include "zyn/matrix/sort_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

#include "zyn/matrix/sort_records.h"

namespace {

constexpr std::uint32_t kBlockRows = 1024;

template <class Record>
struct RecordRelease {
  void operator()(Record* records) const { LargeAllocator<Record>().deallocate(records, count); }
  std::size_t count;
};

/// Not a vector, which would write zeros into records that are all overwritten.
template <class Record>
using RecordList = std::unique_ptr<Record[], RecordRelease<Record>>;

/// A piece of a column, or its leading bits where the record has no room for all.
struct PackedPiece {
  SortColumn const* column;
  unsigned int piece;
  unsigned int bits;     // taken into the key
  unsigned int dropped;  // left out at the low end
};

/// Which pieces make up the key of a record, and whether these decide alone.
class KeyLayout {
 public:
  /// `room` is the most bits that the key may have.
  KeyLayout(std::vector<std::unique_ptr<SortColumn>> const& columns, unsigned int room)
      : room_(room) {
    for (auto const& column : columns) {
      for (unsigned int piece = 0; piece < column->pieceCount(); ++piece) {
        add(*column, piece);
      }
      exact_ = exact_ && column->isExact();
      if (!exact_) {
        return;  // what follows decides only between rows that are equal in the whole of this
                 // column
      }
      ++wholeColumns_;
    }
  }

  bool isExact() const { return exact_; }
  unsigned int keyBits() const { return keyBits_; }

  /// How many columns, from the first on, are equal wherever keys are.
  std::size_t wholeColumns() const { return wholeColumns_; }

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

  /// The keys, keyBits() wide, of up to kBlockRows rows.
  template <class Key>
  void pack(std::uint32_t firstRow, std::uint32_t count, Key* keys) const {
    std::array<std::uint64_t, kBlockRows> codes;
    std::fill_n(keys, count, 0);
    bool first = true;
    for (PackedPiece const& packed : pieces_) {
      packed.column->encode(packed.piece, firstRow, count, codes.data());
      unsigned int const shift = first ? 0 : packed.bits;  // a piece may be as wide as the key
      for (std::uint32_t i = 0; i < count; ++i) {
        keys[i] = (keys[i] << shift) | (codes[i] >> packed.dropped);
      }
      first = false;
    }
  }

 private:
  void add(SortColumn const& column, unsigned int piece) {
    unsigned int const wanted = column.pieceBits(piece);
    unsigned int const taken = std::min(wanted, room_ - keyBits_);
    exact_ = exact_ && taken == wanted;
    if (taken != 0) {
      pieces_.push_back({&column, piece, taken, wanted - taken});
      keyBits_ += taken;
    }
  }

  std::vector<PackedPiece> pieces_;
  unsigned int room_;
  unsigned int keyBits_ = 0;
  std::size_t wholeColumns_ = 0;
  bool exact_ = true;
};

/// Orders rows whose keys are equal by the columns themselves, those that the key does not tell.
class TieBreaker {
 public:
  TieBreaker(std::vector<std::unique_ptr<SortColumn>> const& columns, std::size_t firstColumn)
      : columns_(columns), firstColumn_(firstColumn) {}

  bool isBefore(std::uint32_t left, std::uint32_t right) const {
    for (std::size_t i = firstColumn_; i < columns_.size(); ++i) {
      int const order = columns_[i]->compare(left, right);
      if (order != 0) {
        return order < 0;
      }
    }
    return left < right;
  }

 private:
  std::vector<std::unique_ptr<SortColumn>> const& columns_;
  std::size_t firstColumn_;
};

constexpr unsigned int kFirstDigitBits = 11;

/// How a kind of record holds a key: how many leading bits of a record are the key's, for how long
/// a key there is room, and whether a record keeps the first digit. A narrow one does not: its
/// bucket tells it.
template <class Record>
class RecordShape;

template <>
class RecordShape<WideSortRecord> {
 public:
  explicit RecordShape(std::uint32_t /*rows*/) {}

  static unsigned int keyBits() { return WideSortRecord::kKeyBits; }
  static unsigned int room() { return WideSortRecord::kKeyBits; }
  static bool keepsFirstDigit() { return true; }
};

template <>
class RecordShape<NarrowSortRecord> {
 public:
  explicit RecordShape(std::uint32_t rows)
      : keyBits_(64 - static_cast<unsigned int>(std::bit_width(rows | 1U))) {}

  unsigned int keyBits() const { return keyBits_; }
  unsigned int room() const { return std::min(64U, keyBits_ + kFirstDigitBits); }
  static bool keepsFirstDigit() { return false; }

 private:
  unsigned int keyBits_;
};

/// Makes the records of all rows and sorts them. They are placed by their leading digit right as
/// they are made, after a first round that only counts digits: that costs less than moving every
/// record through memory once more. Each bucket is then finished while it is in the cache.
template <class Record>
class RecordSorter {
 public:
  RecordSorter(std::vector<std::unique_ptr<SortColumn>> const& columns, std::uint32_t rows)
      : shape_(rows),
        layout_(columns, shape_.room()),
        ties_(columns, layout_.wholeColumns()),
        rows_(rows),
        digitBits_(std::min(kFirstDigitBits, layout_.keyBits())) {}

  bool isExact() const { return layout_.isExact(); }

  /// The rows in order. Gives up, with false, once more than one row in `rowsForATie` had to be
  /// told apart by comparing; 0 never gives up.
  bool sort(RowOrder& order, std::size_t rowsForATie) {
    countDigits();
    RecordList<Record> const records(LargeAllocator<Record>().allocate(rows_),
                                     RecordRelease<Record>{rows_});
    std::vector<std::size_t> ends = starts_;
    place(records.get(), ends);
    order.reserve(rows_);
    std::vector<Record> scratch;
    std::size_t tied = 0;
    for (std::size_t bucket = 0; bucket < ends.size(); ++bucket) {
      Record* const first = records.get() + starts_[bucket];
      Record* const last = records.get() + ends[bucket];
      sortRecords(first, ends[bucket] - starts_[bucket], shape_.keyBits(), scratch);
      tied += isExact() ? 0 : settle(first, last);
      if (tied * rowsForATie > std::max(ends[bucket], kRowsBeforeGivingUp)) {
        return false;
      }
      for (Record const* record = first; record != last; ++record) {
        order.push_back(record->row(shape_.keyBits()));
      }
    }
    return true;
  }

 private:
  static constexpr std::size_t kRowsBeforeGivingUp = std::size_t{1} << 16;

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

  void place(Record* records, std::vector<std::size_t>& ends) const {
    using Key = typename Record::Key;
    std::array<Key, kBlockRows> keys;
    unsigned int const restBits = layout_.keyBits() - digitBits_;
    unsigned int const width = shape_.keepsFirstDigit() ? layout_.keyBits() : restBits;
    forEachBlock([&](std::uint32_t row, std::uint32_t count) {
      layout_.pack(row, count, keys.data());
      for (std::uint32_t i = 0; i < count; ++i) {
        auto const digit = static_cast<std::size_t>(keys[i] >> restBits);
        records[ends[digit]++] = Record::make(keys[i], width, row + i);
      }
    });
  }

  /// Puts rows with equal keys into order; gives how many there were.
  std::size_t settle(Record* run, Record* last) const {
    std::size_t tied = 0;
    while (run != last) {
      Record* const end = std::find_if(run + 1, last, [&](Record const& record) {
        return !record.hasKeyOf(*run, shape_.keyBits());
      });
      if (end - run > 1) {
        tied += static_cast<std::size_t>(end - run);
        std::sort(run, end, [this](Record const& left, Record const& right) {
          return ties_.isBefore(left.row(shape_.keyBits()), right.row(shape_.keyBits()));
        });
      }
      run = end;
    }
    return tied;
  }

  RecordShape<Record> const shape_;
  KeyLayout const layout_;
  TieBreaker const ties_;
  std::uint32_t const rows_;
  unsigned int const digitBits_;
  std::vector<std::size_t> starts_;  // of each digit's records
};

// Comparing rows costs many times what moving a record does, but wide records cost all rows.
constexpr std::size_t kRowsForATie = 8;

}  // namespace

RowOrder sortedRows(std::vector<std::unique_ptr<SortColumn>> const& columns, std::uint32_t rows) {
  RowOrder order;
  if (!RecordSorter<NarrowSortRecord>(columns, rows).sort(order, kRowsForATie)) {
    order.clear();
    RecordSorter<WideSortRecord>(columns, rows).sort(order, 0);
  }
  return order;
}
