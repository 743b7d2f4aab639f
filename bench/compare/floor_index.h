#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "compare/floor_table.h"

namespace bench {

inline std::uint64_t mixed(std::uint64_t value) {
  value *= 0x9E3779B97F4A7C15U;
  return value ^ (value >> 32);
}

inline std::uint64_t hashOf(std::int32_t key) {
  return mixed(static_cast<std::uint32_t>(key));
}

/// For texts that stand in their references.
inline std::uint64_t hashOf(FloorText const& key) {
  std::uint64_t words[2];
  std::memcpy(words, &key, sizeof words);
  return mixed(words[0] ^ std::rotl(words[1] * 0xD6E8FEB86659FD93U, 32));
}

inline bool isSame(std::int32_t left, std::int32_t right) {
  return left == right;
}
inline bool isSame(FloorText const& left, FloorText const& right) {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

/// From a key to its rows, in ascending order: an open table of groups, and all row numbers in one
/// array, group by group.
template <class Key>
class FloorIndex {
 public:
  FloorIndex(Key const* keys, std::uint32_t rows)
      : keys_(keys), mask_(std::bit_ceil(std::size_t{rows} * 2) - 1), slots_(mask_ + 1, kEmpty) {
    std::vector<std::uint32_t> groupOf(rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
      groupOf[row] = groupFor(row);
      ++starts_[groupOf[row] + 1];
    }
    for (std::size_t i = 1; i < starts_.size(); ++i) {
      starts_[i] += starts_[i - 1];
    }
    std::vector<std::uint32_t> places = starts_;
    rows_.resize(rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
      rows_[places[groupOf[row]]++] = row;
    }
  }

  /// The first row with the key, which must be there.
  std::uint32_t firstRow(Key const& key) const {
    std::size_t slot = hashOf(key) & mask_;
    while (!isSame(keys_[firstRows_[slots_[slot]]], key)) {
      slot = (slot + 1) & mask_;
    }
    return rows_[starts_[slots_[slot]]];
  }

 private:
  static constexpr std::uint32_t kEmpty = ~std::uint32_t{0};

  std::uint32_t groupFor(std::uint32_t row) {
    std::size_t slot = hashOf(keys_[row]) & mask_;
    while (slots_[slot] != kEmpty) {
      if (isSame(keys_[firstRows_[slots_[slot]]], keys_[row])) {
        return slots_[slot];
      }
      slot = (slot + 1) & mask_;
    }
    slots_[slot] = static_cast<std::uint32_t>(firstRows_.size());
    firstRows_.push_back(row);
    starts_.push_back(0);
    return slots_[slot];
  }

  Key const* keys_;
  std::size_t mask_;
  std::vector<std::uint32_t> slots_;         // groups
  std::vector<std::uint32_t> firstRows_;     // of each group
  std::vector<std::uint32_t> starts_ = {0};  // of each group, in rows_; and the end
  std::vector<std::uint32_t> rows_;
};

}  // namespace bench
