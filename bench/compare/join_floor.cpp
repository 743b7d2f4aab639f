#include "compare/join_floor.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace bench {
namespace {

constexpr std::size_t kBlock = 512;  // sales that are joined together, all in the cache
constexpr std::uint32_t kEmpty = ~std::uint32_t{0};

std::uint64_t mixed(std::uint64_t word) {
  word *= 0x9E3779B97F4A7C15U;
  return word ^ (word >> 32);
}

/// Sales of a block that have a customer, and which.
struct Matches {
  std::size_t count = 0;
  std::uint32_t sale[kBlock];
  std::uint32_t customer[kBlock];
};

/// An open table with the key in the slot: a probe touches one line of memory.
class KeyIndex {
 public:
  explicit KeyIndex(JoinTables const& tables)
      : sales_(tables.saleKey.data()),
        mask_(std::bit_ceil(tables.customerRows * 2) - 1),
        slots_(mask_ + 1) {
    std::memset(slots_.data(), 0xFF, (mask_ + 1) * sizeof(Slot));
    std::size_t const rows = tables.customerRows;
    for (std::size_t row = 0; row < rows; ++row) {
      if (row + kAhead < rows) {
        __builtin_prefetch(&slots_[homeOf(tables.customerKey[row + kAhead])], 1);
      }
      std::size_t place = homeOf(tables.customerKey[row]);
      while (slots_[place].row != kEmpty) {
        place = (place + 1) & mask_;
      }
      slots_[place] = {tables.customerKey[row], static_cast<std::uint32_t>(row)};
    }
  }

  void find(std::size_t from, std::size_t rows, Matches& matches) const {
    std::size_t homes[kBlock];
    for (std::size_t i = 0; i < rows; ++i) {
      homes[i] = homeOf(sales_[from + i]);
      __builtin_prefetch(&slots_[homes[i]]);
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < rows; ++i) {
      std::int32_t const key = sales_[from + i];
      std::size_t place = homes[i];
      while (slots_[place].row != kEmpty && slots_[place].key != key) {
        place = (place + 1) & mask_;
      }
      matches.sale[count] = static_cast<std::uint32_t>(from + i);
      matches.customer[count] = slots_[place].row;
      count += static_cast<std::size_t>(slots_[place].row != kEmpty);
    }
    matches.count = count;
  }

 private:
  struct Slot {
    std::int32_t key;
    std::uint32_t row;
  };

  static constexpr std::size_t kAhead = 32;

  std::size_t homeOf(std::int32_t key) const {
    return mixed(static_cast<std::uint32_t>(key)) & mask_;
  }

  std::int32_t const* sales_;
  std::size_t mask_;
  GrowingArray<Slot> slots_;
};

/// The same with a tag of 32 bits in the slot: a text is only looked at where the tag is the same.
class CodeIndex {
 public:
  explicit CodeIndex(JoinTables const& tables)
      : sales_(tables.saleCode.data()),
        customers_(tables.customerCode.data()),
        mask_(std::bit_ceil(tables.customerRows * 2) - 1),
        slots_(mask_ + 1) {
    std::memset(slots_.data(), 0xFF, (mask_ + 1) * sizeof(Slot));
    std::size_t const rows = tables.customerRows;
    for (std::size_t row = 0; row < rows; ++row) {
      if (row + kAhead < rows) {
        __builtin_prefetch(&slots_[hashOf(customers_[row + kAhead]) & mask_], 1);
      }
      std::uint64_t const hash = hashOf(customers_[row]);
      std::size_t place = hash & mask_;
      while (slots_[place].row != kEmpty) {
        place = (place + 1) & mask_;
      }
      slots_[place] = {static_cast<std::uint32_t>(hash >> 32), static_cast<std::uint32_t>(row)};
    }
  }

  void find(std::size_t from, std::size_t rows, Matches& matches) const {
    std::uint64_t hashes[kBlock];
    for (std::size_t i = 0; i < rows; ++i) {
      hashes[i] = hashOf(sales_[from + i]);
      __builtin_prefetch(&slots_[hashes[i] & mask_]);
    }
    for (std::size_t i = 0; i < rows; ++i) {
      std::uint32_t const row = slots_[hashes[i] & mask_].row;
      __builtin_prefetch(&customers_[row == kEmpty ? 0 : row]);
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < rows; ++i) {
      auto const tag = static_cast<std::uint32_t>(hashes[i] >> 32);
      std::size_t place = hashes[i] & mask_;
      while (
          slots_[place].row != kEmpty &&
          !(slots_[place].tag == tag && isSame(customers_[slots_[place].row], sales_[from + i]))) {
        place = (place + 1) & mask_;
      }
      matches.sale[count] = static_cast<std::uint32_t>(from + i);
      matches.customer[count] = slots_[place].row;
      count += static_cast<std::size_t>(slots_[place].row != kEmpty);
    }
    matches.count = count;
  }

 private:
  struct Slot {
    std::uint32_t tag;
    std::uint32_t row;
  };

  static constexpr std::size_t kAhead = 32;

  static std::uint64_t hashOf(FloorText const& text) {
    std::uint64_t words[2];
    std::memcpy(words, &text, sizeof words);
    return mixed(mixed(words[0]) ^ std::rotl(words[1], 29));
  }
  static bool isSame(FloorText const& left, FloorText const& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
  }

  FloorText const* sales_;
  FloorText const* customers_;
  std::size_t mask_;
  GrowingArray<Slot> slots_;
};

/// Cells behind those that are there.
template <class T>
void gather(GrowingArray<T> const& from, std::uint32_t const* rows, std::size_t count,
            GrowingArray<T>& to) {
  constexpr std::size_t kAhead = 32;
  T* const place = to.data() + to.size();
  for (std::size_t i = 0; i < count; ++i) {
    __builtin_prefetch(&from[rows[i + kAhead < count ? i + kAhead : i]]);
    place[i] = from[rows[i]];
  }
  to.setSize(to.size() + count);
}

void append(std::uint32_t const* rows, std::size_t count, GrowingArray<std::uint32_t>& to) {
  std::memcpy(to.data() + to.size(), rows, count * sizeof *rows);
  to.setSize(to.size() + count);
}

/// Null bits, a word at a time: setting each in memory would have the next one wait.
class NullWriter {
 public:
  explicit NullWriter(FloorNulls& nulls) : nulls_(nulls) {}
  ~NullWriter() {
    nulls_.setWord(rows_ / 64, word_);
    nulls_.setSize(rows_);
  }
  NullWriter(NullWriter const&) = delete;
  NullWriter& operator=(NullWriter const&) = delete;

  void gather(FloorNulls const& from, std::uint32_t const* rows, std::size_t count) {
    std::size_t done = rows_;
    std::uint64_t word = word_;
    for (std::size_t i = 0; i < count; ++i) {
      word |= std::uint64_t{from.test(rows[i])} << (done % 64);
      if (++done % 64 == 0) {
        nulls_.setWord(done / 64 - 1, word);
        word = 0;
      }
    }
    rows_ = done;
    word_ = word;
  }

 private:
  FloorNulls& nulls_;
  std::size_t rows_ = 0;
  std::uint64_t word_ = 0;  // of the rows that do not fill one yet
};

/// What the null bits keep between blocks.
struct NullWriters {
  explicit NullWriters(JoinResult& result) : value(result.valueNulls), rating(result.ratingNulls) {}

  NullWriter value;
  NullWriter rating;
};

/// Joins block by block, so that the row numbers of a block stay in the cache until all its columns
/// are made.
template <class Index, class Gather>
JoinResult join(JoinTables const& tables, Gather const& gatherBlock) {
  Index const index(tables);
  JoinResult result(tables.saleRows);
  Matches matches;
  {
    NullWriters nulls(result);
    for (std::size_t from = 0; from < tables.saleRows; from += kBlock) {
      index.find(from, std::min(kBlock, tables.saleRows - from), matches);
      gatherBlock(matches, result, nulls);
      result.rows += matches.count;
    }
  }
  return result;
}

void gatherValues(JoinTables const& tables, Matches const& matches, JoinResult& result,
                  NullWriters& nulls) {
  gather(tables.value, matches.sale, matches.count, result.value);
  nulls.value.gather(tables.valueNulls, matches.sale, matches.count);
  gather(tables.rating, matches.customer, matches.count, result.rating);
  nulls.rating.gather(tables.ratingNulls, matches.customer, matches.count);
}

}  // namespace

JoinResult joinByKey(JoinTables const& tables) {
  return join<KeyIndex>(tables,
                        [&](Matches const& matches, JoinResult& result, NullWriters& nulls) {
                          gather(tables.saleKey, matches.sale, matches.count, result.key);
                          gatherValues(tables, matches, result, nulls);
                        });
}

JoinResult joinByCode(JoinTables const& tables) {
  return join<CodeIndex>(tables,
                         [&](Matches const& matches, JoinResult& result, NullWriters& nulls) {
                           gather(tables.saleCode, matches.sale, matches.count, result.code);
                           gatherValues(tables, matches, result, nulls);
                         });
}

/// Column by column: one after the other they stay in the cache, all together they do not.
JoinResult joinWide(JoinTables const& tables) {
  KeyIndex const index(tables);
  GrowingArray<std::uint32_t> sales(tables.saleRows);
  GrowingArray<std::uint32_t> customers(tables.saleRows);
  Matches matches;
  for (std::size_t from = 0; from < tables.saleRows; from += kBlock) {
    index.find(from, std::min(kBlock, tables.saleRows - from), matches);
    append(matches.sale, matches.count, sales);
    append(matches.customer, matches.count, customers);
  }
  JoinResult result(tables.saleRows);
  result.rows = sales.size();
  gather(tables.saleKey, sales.data(), result.rows, result.key);
  gather(tables.value, sales.data(), result.rows, result.value);
  NullWriter(result.valueNulls).gather(tables.valueNulls, sales.data(), result.rows);
  gather(tables.rating, customers.data(), result.rows, result.rating);
  NullWriter(result.ratingNulls).gather(tables.ratingNulls, customers.data(), result.rows);
  gather(tables.credit, customers.data(), result.rows, result.credit);
  NullWriter(result.creditNulls).gather(tables.creditNulls, customers.data(), result.rows);
  gather(tables.label, customers.data(), result.rows, result.label);
  gather(tables.since, customers.data(), result.rows, result.since);
  return result;
}

}  // namespace bench
