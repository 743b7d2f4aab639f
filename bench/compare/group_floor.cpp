#include "compare/group_floor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#include "compare/floor_index.h"
#include "compare/test_rows.h"

namespace bench {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint32_t kNumbersPerColumn = 1000;  // of two key columns

/// Anywhere among 32 bits, and no two the same.
std::int32_t spread(std::uint32_t value) {
  value = (value ^ (value >> 16U)) * 0x85EBCA6BU;
  value = (value ^ (value >> 13U)) * 0xC2B2AE35U;
  return static_cast<std::int32_t>(value ^ (value >> 16U));
}

FloorText codeOf(std::uint32_t group) {
  FloorText text;
  text.length = 10;
  auto noise = static_cast<std::uint32_t>(spread(group));
  for (int i = 0; i < 4; ++i, noise /= 26) {
    text.content[i] = static_cast<char>('a' + noise % 26);
  }
  for (int i = 9; i >= 4; --i, group /= 10) {
    text.content[i] = static_cast<char>('0' + group % 10);
  }
  return text;
}

/// A key as the floors compare it.
struct TextWords {
  std::uint64_t head;
  std::uint64_t tail;
  bool operator==(TextWords const&) const = default;
};

std::uint64_t hashed(std::uint32_t key) {
  return key * 0x9E3779B97F4A7C15U;
}
std::uint64_t hashed(std::uint64_t key) {
  return (key ^ (key >> 32U)) * 0x9E3779B97F4A7C15U;
}
std::uint64_t hashed(TextWords const& key) {
  std::uint64_t const mixed = (key.head ^ std::rotl(key.tail, 21)) * 0xD6E8FEB86659FD93U;
  return (mixed ^ (mixed >> 32U)) * 0x9E3779B97F4A7C15U;
}

std::uint32_t numberAt(GroupTable const& table, std::size_t row) {
  return static_cast<std::uint32_t>(table.number[row]);
}
std::uint64_t pairAt(GroupTable const& table, std::size_t row) {
  return std::uint64_t{numberAt(table, row)} << 32U | static_cast<std::uint32_t>(table.second[row]);
}
TextWords textAt(GroupTable const& table, std::size_t row) {
  TextWords words;
  std::memcpy(&words, &table.text[row], sizeof words);
  return words;
}

void pushKey(std::uint32_t key, GroupedTable& groups) {
  groups.number.push(static_cast<std::int32_t>(key));
}
void pushKey(std::uint64_t key, GroupedTable& groups) {
  groups.number.push(static_cast<std::int32_t>(key >> 32U));
  groups.second.push(static_cast<std::int32_t>(key));
}
void pushKey(TextWords const& key, GroupedTable& groups) {
  FloorText text;
  text.length = static_cast<std::uint32_t>(key.head);
  std::memcpy(text.content, reinterpret_cast<char const*>(&key) + sizeof text.length,
              sizeof text.content);
  groups.text.push(text);
}

/// An open table with the groups in its places, for as many as the nearer caches hold.
template <class Key>
class Groups {
 public:
  explicit Groups(std::size_t places) { clear(places); }

  void clear(std::size_t places) {
    used_ = 0;
    shift_ = 64 - static_cast<unsigned>(std::bit_width(places - 1));
    places_.assign(places, Place{});
  }

  bool isFull() const { return used_ * 2 > places_.size(); }

  /// `hash` is used from its highest bit down.
  void take(Key const& key, std::uint64_t hash, bool isNull, double amount) {
    std::size_t at = hash >> shift_;
    while (places_[at].rows != 0 && !(places_[at].key == key)) {
      at = (at + 1) & (places_.size() - 1);
    }
    Place& place = places_[at];
    if (place.rows == 0) {
      ++used_;
      place = {key, 0, 0, kInfinity};
    }
    ++place.rows;
    if (!isNull) {
      place.sum += amount;
      place.low = amount < place.low ? amount : place.low;
    }
  }

  void moveTo(GroupedTable& groups) const {
    for (Place const& place : places_) {
      if (place.rows != 0) {
        pushKey(place.key, groups);
        groups.sum.push(place.sum);
        groups.low.push(place.low);
        groups.rows.push(place.rows);
        groups.isNull.push(place.low == kInfinity);
      }
    }
  }

 private:
  struct Place {
    Key key{};
    std::uint32_t rows = 0;
    double sum = 0;
    double low = kInfinity;  // no amount is
  };

  std::vector<Place> places_;
  std::size_t used_ = 0;
  unsigned shift_ = 0;
};

constexpr std::size_t kNearPlaces = std::size_t{1} << 15;

/// Row by row. False when the groups leave the caches, which the first rows tell.
template <class Key, class KeyAt>
bool groupNear(GroupTable const& table, KeyAt const& keyAt, GroupedTable& groups) {
  constexpr std::size_t kRowsOfWord = 64;
  Groups<Key> near(256);
  std::size_t places = 256;
  for (std::size_t from = 0; from < table.rows; from += kRowsOfWord) {
    if (near.isFull()) {
      if (places == kNearPlaces) {
        return false;
      }
      near.clear(places = kNearPlaces);
      from = 0;
    }
    std::uint64_t nulls = table.amount.nulls[from / kRowsOfWord];
    std::size_t const end = std::min(from + kRowsOfWord, table.rows);
    for (std::size_t row = from; row < end; ++row, nulls >>= 1U) {
      Key const key = keyAt(table, row);
      near.take(key, hashed(key), (nulls & 1U) != 0, table.amount.cells[row]);
    }
  }
  near.moveTo(groups);
  return true;
}

template <class Key>
struct __attribute__((packed)) Moved {
  Key key;
  double amount;  // kInfinity for a null
};

/// Rows are first brought together by the upper bits of their hashes, and then grouped part by
/// part, so that the groups of a part stay in the cache.
template <class Key, class KeyAt>
void groupByParts(GroupTable const& table, KeyAt const& keyAt, GroupedTable& groups) {
  constexpr unsigned kPartBits = 8;
  constexpr std::size_t kParts = std::size_t{1} << kPartBits;
  std::array<std::uint32_t, kParts + 1> starts{};
  auto const partOf = [](Key const& key) { return hashed(key) >> (64 - kPartBits); };
  for (std::size_t row = 0; row < table.rows; ++row) {
    ++starts[partOf(keyAt(table, row)) + 1];
  }
  for (std::size_t part = 0; part < kParts; ++part) {
    starts[part + 1] += starts[part];
  }
  GrowingArray<Moved<Key>> moved(table.rows);
  auto places = starts;
  for (std::size_t row = 0; row < table.rows; ++row) {
    Key const key = keyAt(table, row);
    moved[places[partOf(key)]++] = {key,
                                    table.amount.isNull(row) ? kInfinity : table.amount.cells[row]};
  }
  Groups<Key> part(2);
  for (std::size_t i = 0; i < kParts; ++i) {
    std::size_t const count = starts[i + 1] - starts[i];
    std::size_t size = std::bit_ceil(std::max<std::size_t>(count / 4, 16));
    part.clear(size);
    for (std::uint32_t at = starts[i]; at < starts[i + 1]; ++at) {
      if (part.isFull()) {
        part.clear(size *= 4);
        at = starts[i];
      }
      Moved<Key> const row = moved[at];
      part.take(row.key, hashed(row.key) << kPartBits, row.amount == kInfinity, row.amount);
    }
    part.moveTo(groups);
  }
}

template <class Key, class KeyAt>
GroupedTable grouped(GroupTable const& table, KeyAt const& keyAt) {
  GroupedTable groups(table.rows);
  if (!groupNear<Key>(table, keyAt, groups)) {
    groupByParts<Key>(table, keyAt, groups);
  }
  return groups;
}

}  // namespace

GroupTable::GroupTable(GroupKey keyKind, std::size_t rowCount, std::size_t groupCount)
    : key(keyKind), rows(rowCount), number(rows), second(rows), text(rows), amount(rows) {
  for (std::size_t row = 0; row < rows; ++row) {
    auto const group = static_cast<std::uint32_t>(noiseOf(row, 0) % groupCount);
    switch (key) {
      case GroupKey::kNumber:
        number.push(spread(group));
        break;
      case GroupKey::kText:
        text.push(codeOf(group));
        break;
      case GroupKey::kTwoNumbers:
        number.push(spread(group / kNumbersPerColumn));
        second.push(spread(group % kNumbersPerColumn));
        break;
    }
    bool const isNull = noiseOf(row, 3) % 20 == 0;
    auto const cents = static_cast<std::int64_t>(noiseOf(row, 4) % 200'000'000) - 50'000'000;
    amount.cells.push(isNull ? 0 : static_cast<double>(cents) / 100);
    amount.nulls[row / 64] |= std::uint64_t{isNull} << (row % 64);
  }
}

GroupedTable groupByHand(GroupTable const& table) {
  switch (table.key) {
    case GroupKey::kNumber:
      return grouped<std::uint32_t>(table, numberAt);
    case GroupKey::kText:
      return grouped<TextWords>(table, textAt);
    case GroupKey::kTwoNumbers:
      return grouped<std::uint64_t>(table, pairAt);
  }
  return GroupedTable(0);
}

}  // namespace bench
