#include "zyn/matrix/key_groups.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "zyn/matrix/data_matrix_columns.h"

class KeyGrouper::KeyTable {
 public:
  virtual ~KeyTable() = default;

  /// Numbers the rows by this key alone; false when a NaN is in the way.
  virtual bool group(std::uint32_t rows, std::vector<std::uint32_t>& groupOfRow) = 0;

  virtual std::vector<std::uint32_t> const& firstRow() const = 0;

  /// The number of the cursor's cell; kNoGroup, kCannotTell.
  virtual std::uint32_t find(moxIterator const& value) const = 0;
};

namespace {

constexpr std::uint32_t kBlock = 256;      // rows that are prepared together
constexpr std::uint32_t kPairsAhead = 32;  // rows from which a pair's place is asked of memory

std::uint64_t hashText(TextRef const& text) {
  char const* bytes = text.data();
  std::size_t left = text.size();
  std::uint64_t hash = text.size() ^ hashSeed();
  for (; left > sizeof(std::uint64_t); left -= sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    hash = mixWord(hash ^ word);
    bytes += sizeof word;
  }
  std::uint64_t last = 0;
  std::memcpy(&last, bytes, left);
  return mixWord(hash ^ mixWord(last));
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

template <class Cell>
bool isNaN(Cell const& cell) {
  if constexpr (std::is_same_v<Cell, double>) {
    return std::isnan(cell);
  }
  return false;
}

template <class T>
class TypedKeyTable final : public KeyGrouper::KeyTable {
 public:
  explicit TypedKeyTable(ColumnStorage<T> const& column) : column_(column) {}

  bool group(std::uint32_t rows, std::vector<std::uint32_t>& groupOfRow) override {
    groupOfRow.resize(rows);
    Keys keys;
    Words words;
    for (std::uint32_t from = 0; from < rows; from += kBlock) {
      std::uint32_t const end = from + std::min(kBlock, rows - from);
      fetchAhead(from, end, words, keys);
      for (std::uint32_t row = from; row < end; ++row) {
        std::uint32_t const group = groupOf(row, words[row - from], keys);
        if (group == KeyGrouper::kCannotTell) {
          return false;
        }
        groupOfRow[row] = group;
      }
    }
    return true;
  }

  std::vector<std::uint32_t> const& firstRow() const override { return firstRow_; }

  std::uint32_t find(moxIterator const& value) const override {
    if (typeid(value) == typeid(moxTypedIterator<T>)) {
      auto const& own = static_cast<moxTypedIterator<T> const&>(value);
      return own.isNull() ? nullGroup_ : findCell(own.cell());
    }
    auto const* const foreign = dynamic_cast<moxIteratorBase<T> const*>(&value);
    if (foreign == nullptr) {
      return KeyGrouper::kCannotTell;
    }
    return foreign->isNull() ? nullGroup_ : findValue(foreign->get());
  }

 private:
  using Cell = typename ColumnStorage<T>::Cell;
  using Words = std::array<std::uint64_t, kBlock>;

  /// The key of each group while rows are grouped, for texts alone: theirs are compared with each
  /// row, and side by side they are nearer than in the column.
  using Keys = std::vector<TextRef>;

  static constexpr bool kIsText = std::is_same_v<T, std::string>;

  /// The words of a block of rows; what they will be looked for at is asked of memory beforehand,
  /// for all rows at once.
  void fetchAhead(std::uint32_t from, std::uint32_t end, Words& words, Keys const& keys) const {
    auto const* const cells = column_.values.cells();
    for (std::uint32_t row = from; row < end; ++row) {
      words[row - from] = wordOf(cells[row]);
      table_.prefetch(words[row - from]);
    }
    for (std::uint32_t row = from; kIsText && row < end; ++row) {
      std::uint32_t const group = table_.guess(words[row - from]);
      if (group < keys.size()) {
        __builtin_prefetch(&keys[group]);
      }
    }
  }

  /// kCannotTell for a NaN.
  std::uint32_t groupOf(std::uint32_t row, std::uint64_t word, Keys& keys) {
    auto const& cell = column_.values.cells()[row];
    if (column_.nulls.test(row)) {
      std::uint32_t const group = groupOfNulls(row);
      rememberKey(keys, cell);
      return group;
    }
    if (isNaN(cell)) {
      return KeyGrouper::kCannotTell;
    }
    auto const same = [&](std::uint32_t group) {
      if constexpr (kIsText) {
        return keys[group] == cell;
      }
      return true;
    };
    std::uint32_t const group = table_.findOrAdd(word, same, [&] { return newGroup(row); });
    rememberKey(keys, cell);
    return group;
  }

  /// Of a group that was just made.
  void rememberKey(Keys& keys, Cell const& cell) const {
    if constexpr (kIsText) {
      if (keys.size() < firstRow_.size()) {
        keys.push_back(cell);
      }
    }
  }

  std::uint32_t newGroup(std::uint32_t row) {
    firstRow_.push_back(row);
    return static_cast<std::uint32_t>(firstRow_.size() - 1);
  }

  std::uint32_t groupOfNulls(std::uint32_t row) {
    nullGroup_ = nullGroup_ == KeyGrouper::kNoGroup ? newGroup(row) : nullGroup_;
    return nullGroup_;
  }

  std::uint32_t findCell(Cell const& cell) const {
    return isNaN(cell) ? KeyGrouper::kCannotTell : table_.find(wordOf(cell), sameAs(cell));
  }

  std::uint32_t findValue(T const& value) const {
    if constexpr (std::is_same_v<T, std::string>) {
      bool const tooLong = value.size() > std::numeric_limits<std::uint32_t>::max();
      return tooLong ? KeyGrouper::kNoGroup
                     : findCell({value.data(), static_cast<std::uint32_t>(value.size())});
    } else {
      return findCell(value);
    }
  }

  /// Whether a group's key is the cell, when their words are equal. The column may have been
  /// cleared since it was grouped.
  auto sameAs(Cell const& cell) const {
    return [this, &cell](std::uint32_t group) {
      if constexpr (std::is_same_v<T, std::string>) {
        std::uint32_t const row = firstRow_[group];
        return row < column_.size() && column_.values.cells()[row] == cell;
      }
      return true;
    };
  }

  ColumnStorage<T> const& column_;
  std::vector<std::uint32_t> firstRow_;  // of each group
  WordTable table_;
  std::uint32_t nullGroup_ = KeyGrouper::kNoGroup;
};

std::unique_ptr<KeyGrouper::KeyTable> tableOver(moxDataMatrixColumn const& key) {
  std::unique_ptr<KeyGrouper::KeyTable> table;
  withStorage(key, [&]<class T>(ColumnStorage<T> const& column) {
    table = std::make_unique<TypedKeyTable<T>>(column);
  });
  return table;
}

std::uint64_t pairOf(std::uint32_t group, std::uint32_t further) {
  return (std::uint64_t{group} << 32U) | further;
}

bool always(std::uint32_t) {
  return true;
}

}  // namespace

KeyGrouper::KeyGrouper() = default;
KeyGrouper::~KeyGrouper() = default;

bool KeyGrouper::group(Columns const& keys, std::uint32_t rows) {
  for (auto const* const key : keys) {
    tables_.push_back(tableOver(*key));
    if (!tables_.back() || !groupBy(*tables_.back(), rows)) {
      return false;
    }
  }
  return true;
}

bool KeyGrouper::groupBy(KeyTable& table, std::uint32_t rows) {
  if (tables_.size() == 1) {
    bool const grouped = table.group(rows, groups_.groupOfRow);
    groups_.firstRow = table.firstRow();
    return grouped;
  }
  std::vector<std::uint32_t> groupOfRow;
  if (!table.group(rows, groupOfRow)) {
    return false;
  }
  refine(groupOfRow);
  return true;
}

void KeyGrouper::refine(std::vector<std::uint32_t> const& further) {
  WordTable& pairs = pairs_.emplace_back();
  groups_.firstRow.clear();
  auto const rows = static_cast<std::uint32_t>(groups_.groupOfRow.size());
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (std::uint32_t const ahead = row + kPairsAhead; ahead < rows) {
      pairs.prefetch(pairOf(groups_.groupOfRow[ahead], further[ahead]));
    }
    std::uint64_t const pair = pairOf(groups_.groupOfRow[row], further[row]);
    groups_.groupOfRow[row] = pairs.findOrAdd(pair, always, [&] {
      groups_.firstRow.push_back(row);
      return static_cast<std::uint32_t>(groups_.firstRow.size() - 1);
    });
  }
}

std::uint32_t KeyGrouper::find(Values const& values) const {
  if (values.size() < tables_.size()) {
    return kCannotTell;
  }
  std::uint32_t group = tables_.front()->find(*values.front());
  for (std::size_t key = 1; key < tables_.size() && group < kCannotTell; ++key) {
    std::uint32_t const further = tables_[key]->find(*values[key]);
    group = further >= kCannotTell ? further : pairs_[key - 1].find(pairOf(group, further), always);
  }
  return group;
}
