#include "zyn/matrix/key_groups.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include "zyn/matrix/data_matrix_columns.h"

namespace {

constexpr std::uint32_t kNoGroup = std::numeric_limits<std::uint32_t>::max();

/// Drawn once a process, so that nobody can prepare data whose keys all fall on one place. It
/// decides how long a look-up takes and nothing else.
std::uint64_t seed() {
  static std::uint64_t const kDrawn = [] {
    std::random_device source;
    return (std::uint64_t{source()} << 32U) | source();
  }();
  return kDrawn;
}

std::uint64_t mix(std::uint64_t word) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
  __extension__ using Wide = unsigned __int128;
  Wide const product = static_cast<Wide>(word ^ (word >> 32U)) * kOdd;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

std::uint64_t hashText(TextRef const& text) {
  char const* bytes = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = text.size() ^ seed();
  for (; left > sizeof(std::uint64_t); left -= sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    hash = mix(hash ^ word);
    bytes += sizeof word;
  }
  std::uint64_t last = 0;
  std::memcpy(&last, bytes, left);
  return mix(hash ^ mix(last));
}

/// A cell as 64 bits. For all kinds but texts equal words mean equal cells; a text's word is a
/// hash.
std::uint64_t wordOf(int value) {
  return static_cast<std::uint32_t>(value);
}
std::uint64_t wordOf(double value) {
  return std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
}
std::uint64_t wordOf(datetime_t const& value) {
  return static_cast<std::uint64_t>(value.asTime_t());
}
std::uint64_t wordOf(std::shared_ptr<moxReadBlob> const& value) {
  return reinterpret_cast<std::uintptr_t>(value.get());
}
std::uint64_t wordOf(TextRef const& value) {
  return hashText(value);
}

/// Numbers words in the order in which they come. Open addressing, a step of one place; the word
/// stands in the slot, so that most probes touch one line of memory and growing touches no cell.
class WordTable {
 public:
  /// The number of the word's group; `newGroup()` makes one where there is none yet. `same(group)`
  /// decides between words that are equal.
  template <class Same, class NewGroup>
  std::uint32_t find(std::uint64_t word, Same const& same, NewGroup const& newGroup) {
    std::size_t place = mix(word ^ seed_) & mask_;
    while (slots_[place].group != kNoGroup) {
      if (slots_[place].word == word && same(slots_[place].group)) {
        return slots_[place].group;
      }
      place = (place + 1) & mask_;
    }
    slots_[place] = {word, newGroup()};
    return keepRoom(slots_[place].group);
  }

 private:
  struct Slot {
    std::uint64_t word = 0;
    std::uint32_t group = kNoGroup;
  };

  std::uint32_t keepRoom(std::uint32_t group) {
    if (++used_ * 2 > slots_.size()) {
      grow();
    }
    return group;
  }

  void grow() {
    std::vector<Slot> old(slots_.size() * 4);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    for (Slot const& slot : old) {
      if (slot.group != kNoGroup) {
        slots_[freePlace(slot.word)] = slot;
      }
    }
  }

  std::size_t freePlace(std::uint64_t word) const {
    std::size_t place = mix(word ^ seed_) & mask_;
    while (slots_[place].group != kNoGroup) {
      place = (place + 1) & mask_;
    }
    return place;
  }

  std::vector<Slot> slots_ = std::vector<Slot>(1024);
  std::size_t mask_ = slots_.size() - 1;
  std::size_t used_ = 0;
  std::uint64_t const seed_ = seed();
};

bool holdsNaN(ColumnStorage<double> const& column, std::uint32_t rows) {
  double const* const cells = column.values.cells();
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (std::isnan(cells[row]) && !column.nulls.test(row)) {
      return true;
    }
  }
  return false;
}

template <class T>
bool canBeHashed(ColumnStorage<T> const& column, std::uint32_t rows) {
  if constexpr (std::is_same_v<T, double>) {
    return !holdsNaN(column, rows);
  }
  return true;
}

template <class T>
KeyGroups groupColumn(ColumnStorage<T> const& column, std::uint32_t rows) {
  KeyGroups groups;
  groups.groupOfRow.resize(rows);
  auto const* const cells = column.values.cells();
  bool const nullable = column.nulls.any();
  std::uint32_t nullGroup = kNoGroup;
  WordTable table;
  for (std::uint32_t row = 0; row < rows; ++row) {
    auto const newGroup = [&] {
      groups.firstRow.push_back(row);
      return static_cast<std::uint32_t>(groups.firstRow.size() - 1);
    };
    if (nullable && column.nulls.test(row)) {
      nullGroup = nullGroup == kNoGroup ? newGroup() : nullGroup;
      groups.groupOfRow[row] = nullGroup;
      continue;
    }
    auto const same = [&](std::uint32_t group) {
      if constexpr (std::is_same_v<T, std::string>) {
        return cells[groups.firstRow[group]] == cells[row];
      }
      return true;
    };
    groups.groupOfRow[row] = table.find(wordOf(cells[row]), same, newGroup);
  }
  return groups;
}

/// Splits the groups so far by those of a further key.
void refine(KeyGroups& groups, KeyGroups const& further) {
  std::vector<std::uint32_t> firstRow;
  WordTable table;
  for (std::uint32_t row = 0; row < groups.groupOfRow.size(); ++row) {
    std::uint64_t const pair =
        (std::uint64_t{groups.groupOfRow[row]} << 32U) | further.groupOfRow[row];
    groups.groupOfRow[row] = table.find(
        pair, [](std::uint32_t) { return true; },
        [&] {
          firstRow.push_back(row);
          return static_cast<std::uint32_t>(firstRow.size() - 1);
        });
  }
  groups.firstRow = std::move(firstRow);
}

std::optional<KeyGroups> groupByKey(moxDataMatrixColumn const& key, std::uint32_t rows) {
  std::optional<KeyGroups> groups;
  withStorage(key, [&](auto const& column) {
    if (canBeHashed(column, rows)) {
      groups = groupColumn(column, rows);
    }
  });
  return groups;
}

/// Nulls to the front, then the others by value; groups that tie keep the order they had.
template <class T>
void sortByKey(ColumnStorage<T> const& column, KeyGroups const& groups,
               std::vector<std::uint32_t>& order) {
  auto const isNull = [&](std::uint32_t group) {
    return column.nulls.test(groups.firstRow[group]);
  };
  auto const* const cells = column.values.cells();
  auto const values = std::stable_partition(order.begin(), order.end(), isNull);
  std::stable_sort(values, order.end(), [&](std::uint32_t left, std::uint32_t right) {
    return compareCells(cells[groups.firstRow[left]], cells[groups.firstRow[right]]) < 0;
  });
}

}  // namespace

std::optional<KeyGroups> groupByKeys(std::vector<moxDataMatrixColumn const*> const& keys,
                                     std::uint32_t rows) {
  auto groups = groupByKey(*keys.front(), rows);
  for (std::size_t key = 1; groups && key < keys.size(); ++key) {
    auto const further = groupByKey(*keys[key], rows);
    if (!further) {
      return std::nullopt;
    }
    refine(*groups, *further);
  }
  return groups;
}

std::vector<std::uint32_t> groupsInKeyOrder(std::vector<moxDataMatrixColumn const*> const& keys,
                                            KeyGroups const& groups) {
  std::vector<std::uint32_t> order(groups.firstRow.size());
  std::iota(order.begin(), order.end(), 0U);
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
    withStorage(**key, [&](auto const& column) { sortByKey(column, groups, order); });
  }
  return order;
}
