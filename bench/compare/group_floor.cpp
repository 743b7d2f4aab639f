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
  void take(Key const& key, std::uint64_t hash, std::uint32_t row, bool isNull, double amount) {
    std::size_t at = hash >> shift_;
    while (places_[at].group.rows != 0 && !(places_[at].key == key)) {
      at = (at + 1) & (places_.size() - 1);
    }
    Place& place = places_[at];
    if (place.group.rows == 0) {
      ++used_;
      place = {key, {row, 0, 0, kInfinity, 0}};
    }
    ++place.group.rows;
    if (!isNull) {
      place.group.sum += amount;
      place.group.low = amount < place.group.low ? amount : place.group.low;
      ++place.group.amounts;
    }
  }

  void moveTo(GrowingArray<GroupOfRows>& groups) const {
    for (Place const& place : places_) {
      if (place.group.rows != 0) {
        groups.push(place.group);
      }
    }
  }

 private:
  struct Place {
    Key key;
    GroupOfRows group;
  };

  std::vector<Place> places_;
  std::size_t used_ = 0;
  unsigned shift_ = 0;
};

constexpr std::size_t kNearPlaces = std::size_t{1} << 15;

/// Row by row. False when the groups leave the caches, which the first rows tell.
template <class Key, class KeyAt>
bool groupNear(GroupTable const& table, KeyAt const& keyAt, GrowingArray<GroupOfRows>& groups) {
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
      near.take(key, hashed(key), static_cast<std::uint32_t>(row), (nulls & 1U) != 0,
                table.amount.cells[row]);
    }
  }
  near.moveTo(groups);
  return true;
}

template <class Key>
struct Moved {
  Key key;
  std::uint32_t rowAndNull;  // the row's number, twice, and whether its amount is null
  double amount;
};

/// Rows are first brought together by the upper bits of their hashes, and then grouped part by
/// part, so that the groups of a part stay in the cache.
template <class Key, class KeyAt>
void groupByParts(GroupTable const& table, KeyAt const& keyAt, GrowingArray<GroupOfRows>& groups) {
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
    auto const isNull = static_cast<std::uint32_t>(table.amount.isNull(row));
    moved[places[partOf(key)]++] = {key, static_cast<std::uint32_t>(row) * 2 + isNull,
                                    table.amount.cells[row]};
  }
  Groups<Key> part(2);
  for (std::size_t i = 0; i < kParts; ++i) {
    std::size_t const count = starts[i + 1] - starts[i];
    std::size_t places = std::bit_ceil(std::max<std::size_t>(count / 4, 16));
    part.clear(places);
    for (std::uint32_t at = starts[i]; at < starts[i + 1]; ++at) {
      if (part.isFull()) {
        part.clear(places *= 4);
        at = starts[i];
      }
      Moved<Key> const& row = moved[at];
      part.take(row.key, hashed(row.key) << kPartBits, row.rowAndNull >> 1U,
                (row.rowAndNull & 1U) != 0, row.amount);
    }
    part.moveTo(groups);
  }
}

template <class Key, class KeyAt>
GrowingArray<GroupOfRows> grouped(GroupTable const& table, KeyAt const& keyAt) {
  GrowingArray<GroupOfRows> groups(table.rows);
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

GrowingArray<GroupOfRows> groupByHand(GroupTable const& table) {
  switch (table.key) {
    case GroupKey::kNumber:
      return grouped<std::uint32_t>(table, numberAt);
    case GroupKey::kText:
      return grouped<TextWords>(table, textAt);
    case GroupKey::kTwoNumbers:
      return grouped<std::uint64_t>(table, pairAt);
  }
  return GrowingArray<GroupOfRows>(0);
}

}  // namespace bench
