#include "compare/sort_floor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench {
namespace {

// A record is one word: what the leading digit leaves of the key, then the row number. Half the
// memory of key and row side by side, and every pass moves all of it.
constexpr unsigned kRowBits = 24;
constexpr unsigned kLeadingBits = 11;
constexpr unsigned kRestBits = 64 - kRowBits;
constexpr std::size_t kLeadingBuckets = std::size_t{1} << kLeadingBits;
constexpr std::uint64_t kRowMask = (std::uint64_t{1} << kRowBits) - 1;

using Records = GrowingArray<std::uint64_t>;
using Order = GrowingArray<std::uint32_t>;

struct PackedKey {
  std::uint32_t leading;  // kLeadingBits
  std::uint64_t rest;     // kRestBits
};

/// Sorts a bucket, which fits into the second cache, from its lowest digit up.
template <unsigned DigitBits>
class BucketSorter {
 public:
  explicit BucketSorter(unsigned keyBits) : digits_((keyBits + DigitBits - 1) / DigitBits) {}

  void sort(std::uint64_t* records, std::size_t count) {
    if (scratch_.size() < count) {
      scratch_.resize(count);
    }
    countDigits(records, count);
    std::uint64_t* from = records;
    std::uint64_t* to = scratch_.data();
    for (unsigned digit = 0; digit < digits_; ++digit) {
      if (pass(from, to, count, digit)) {
        std::swap(from, to);
      }
    }
    if (from != records) {
      std::copy_n(from, count, records);
    }
  }

 private:
  static constexpr std::size_t kBuckets = std::size_t{1} << DigitBits;
  static constexpr unsigned kMostDigits = (kRestBits + DigitBits - 1) / DigitBits;

  static std::size_t digitOf(std::uint64_t record, unsigned digit) {
    return record >> (kRowBits + digit * DigitBits) & (kBuckets - 1);
  }

  void countDigits(std::uint64_t const* records, std::size_t count) {
    for (unsigned digit = 0; digit < digits_; ++digit) {
      counts_[digit].fill(0);
    }
    for (std::size_t i = 0; i < count; ++i) {
      for (unsigned digit = 0; digit < digits_; ++digit) {
        ++counts_[digit][digitOf(records[i], digit)];
      }
    }
  }

  /// False when all records have the same digit.
  bool pass(std::uint64_t const* from, std::uint64_t* to, std::size_t count, unsigned digit) {
    auto& places = counts_[digit];
    if (places[digitOf(from[0], digit)] == count) {
      return false;
    }
    std::uint32_t start = 0;
    for (std::uint32_t& place : places) {
      start += std::exchange(place, start);
    }
    for (std::size_t i = 0; i < count; ++i) {
      to[places[digitOf(from[i], digit)]++] = from[i];
    }
    return true;
  }

  unsigned digits_;
  std::array<std::array<std::uint32_t, kBuckets>, kMostDigits> counts_;
  std::vector<std::uint64_t> scratch_;
};

/// `keyOf(row)` gives the packed key; its rest has `restBits`. `settle(records, count)` puts
/// records of a sorted bucket into order whose keys had no room to tell them apart.
template <class KeyOf, class Settle>
Order sortedOrder(std::size_t rows, unsigned restBits, KeyOf keyOf, Settle settle) {
  std::vector<std::uint32_t> starts(kLeadingBuckets + 1);
  for (std::size_t row = 0; row < rows; ++row) {
    ++starts[keyOf(row).leading + 1];
  }
  for (std::size_t i = 1; i < starts.size(); ++i) {
    starts[i] += starts[i - 1];
  }
  Records records(rows);
  std::vector<std::uint32_t> places = starts;
  for (std::size_t row = 0; row < rows; ++row) {
    PackedKey const key = keyOf(row);
    records[places[key.leading]++] = key.rest << kRowBits | row;
  }
  Order order(rows);
  BucketSorter<10> sorter(restBits);
  for (std::size_t i = 0; i < kLeadingBuckets; ++i) {
    std::size_t const count = starts[i + 1] - starts[i];
    std::uint64_t* const bucket = records.data() + starts[i];
    if (count > 1) {
      sorter.sort(bucket, count);
      settle(bucket, count);
    }
    for (std::size_t k = 0; k < count; ++k) {
      order.push(static_cast<std::uint32_t>(bucket[k] & kRowMask));
    }
  }
  return order;
}

constexpr std::size_t kAhead = 32;

template <class T>
void gather(GrowingArray<T> const& source, Order const& order, GrowingArray<T>& target) {
  std::size_t const rows = order.size();
  for (std::size_t i = 0; i < rows; ++i) {
    if (i + kAhead < rows) {
      __builtin_prefetch(&source[order[i + kAhead]]);
    }
    target[i] = source[order[i]];
  }
  target.setSize(rows);
}

void gather(FloorNulls const& source, Order const& order, FloorNulls& target) {
  std::size_t const rows = order.size();
  for (std::size_t first = 0; first < rows; first += 64) {
    std::uint64_t word = 0;
    std::size_t const count = std::min<std::size_t>(64, rows - first);
    for (std::size_t i = 0; i < count; ++i) {
      word |= std::uint64_t{source.test(order[first + i])} << i;
    }
    target.setWord(first / 64, word);
  }
  target.setSize(rows);
}

FloorTable gathered(FloorTable const& table, Order const& order) {
  FloorTable result(order.size());
  gather(table.number, order, result.number);
  gather(table.rating, order, result.rating);
  gather(table.amount, order, result.amount);
  gather(table.day, order, result.day);
  gather(table.code, order, result.code);
  gather(table.description, order, result.description);
  gather(table.ratingNulls, order, result.ratingNulls);
  gather(table.amountNulls, order, result.amountNulls);
  result.bytes = table.bytes;
  return result;
}

/// Ordered like the amounts; 0 for a null.
std::uint64_t amountKey(FloorTable const& table, std::size_t row) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  auto const bits = std::bit_cast<std::uint64_t>(table.amount[row] + 0.0);
  std::uint64_t const ordered = (bits & kSign) != 0 ? ~bits : bits | kSign;
  return table.amountNulls.test(row) ? 0 : ordered;
}

/// Amounts differ in the bits that the record has room for, but for a few.
void settleAmounts(FloorTable const& table, std::uint64_t* records, std::size_t count) {
  for (std::size_t i = 1; i < count; ++i) {
    if ((records[i] ^ records[i - 1]) > kRowMask) {
      continue;
    }
    std::size_t end = i + 1;
    while (end < count && (records[end] ^ records[i]) <= kRowMask) {
      ++end;
    }
    std::stable_sort(records + i - 1, records + end, [&](std::uint64_t left, std::uint64_t right) {
      return amountKey(table, left & kRowMask) < amountKey(table, right & kRowMask);
    });
    i = end;
  }
}

struct CodeWords {
  std::uint64_t first;   // eight bytes
  std::uint64_t second;  // two bytes
};

CodeWords codeWords(FloorText const& text) {
  std::uint64_t first = 0;
  std::uint16_t second = 0;
  std::memcpy(&first, text.content, sizeof first);
  std::memcpy(&second, text.content + sizeof first, sizeof second);
  return {__builtin_bswap64(first), __builtin_bswap16(second)};
}

/// The bits in which the codes differ at all.
CodeWords varyingBits(FloorTable const& table) {
  CodeWords any{0, 0};
  CodeWords const sample = codeWords(table.code[0]);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    CodeWords const words = codeWords(table.code[row]);
    any.first |= words.first ^ sample.first;
    any.second |= words.second ^ sample.second;
  }
  return any;
}

__attribute__((target("bmi2"))) Order orderByCode(FloorTable const& table) {
  CodeWords const masks = varyingBits(table);
  auto const firstBits = static_cast<unsigned>(std::popcount(masks.first));
  auto const secondBits = static_cast<unsigned>(std::popcount(masks.second));
  unsigned const bits = firstBits + secondBits;
  unsigned const restBits = bits > kLeadingBits ? bits - kLeadingBits : 0;
  if (restBits > kRestBits) {
    throw std::runtime_error("the codes differ in more bits than this floor was written for");
  }
  std::uint64_t const restMask = (std::uint64_t{1} << restBits) - 1;
  auto const keyOf = [&](std::size_t row) __attribute__((target("bmi2"))) {
    CodeWords const words = codeWords(table.code[row]);
    std::uint64_t const key = __builtin_ia32_pext_di(words.first, masks.first) << secondBits |
                              __builtin_ia32_pext_di(words.second, masks.second);
    return PackedKey{static_cast<std::uint32_t>(key >> restBits), key & restMask};
  };
  return sortedOrder(table.rows(), restBits, keyOf, [](std::uint64_t*, std::size_t) {});
}

}  // namespace

FloorTable sortByNumbers(FloorTable const& table) {
  constexpr unsigned kNumberBits = 17;
  constexpr unsigned kNumberRest = kNumberBits - kLeadingBits;
  constexpr unsigned kAmountBits = kRestBits - kNumberRest;
  auto const keyOf = [&](std::size_t row) {
    auto const number = static_cast<std::uint32_t>(table.number[row]);
    std::uint64_t const numberRest = number & ((1U << kNumberRest) - 1);
    return PackedKey{number >> kNumberRest,
                     numberRest << kAmountBits | amountKey(table, row) >> (64 - kAmountBits)};
  };
  Order const order = sortedOrder(
      table.rows(), kRestBits, keyOf,
      [&](std::uint64_t* records, std::size_t count) { settleAmounts(table, records, count); });
  return gathered(table, order);
}

FloorTable sortByCode(FloorTable const& table) {
  return gathered(table, orderByCode(table));
}

}  // namespace bench
