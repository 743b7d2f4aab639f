#include "zyn/operations/row_grouping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "zyn/matrix/data_matrix_columns.h"

namespace {

/// Whether cells of one key agree.
class KeyCells {
 public:
  virtual ~KeyCells() = default;
  virtual bool agree(std::uint32_t row, std::uint32_t other) const = 0;
};

template <class T>
class TypedKeyCells final : public KeyCells {
 public:
  explicit TypedKeyCells(ColumnStorage<T> const& column) : column_(column) {}

  bool agree(std::uint32_t row, std::uint32_t other) const override {
    bool const null = column_.nulls.test(row);
    bool const otherNull = column_.nulls.test(other);
    auto const* const cells = column_.values.cells();
    return null || otherNull ? null == otherNull : compareCells(cells[row], cells[other]) == 0;
  }

 private:
  ColumnStorage<T> const& column_;
};

class Keys {
 public:
  explicit Keys(std::vector<MatrixColumn> const& columns) {
    for (auto const& column : columns) {
      withStorage(*column, [&]<class T>(ColumnStorage<T>& storage) {
        keys_.push_back(std::make_unique<TypedKeyCells<T>>(storage));
      });
    }
  }

  bool agree(std::uint32_t row, std::uint32_t other) const {
    return std::all_of(keys_.begin(), keys_.end(),
                       [&](auto const& key) { return key->agree(row, other); });
  }

 private:
  std::vector<std::unique_ptr<KeyCells>> keys_;
};

KeyGrouper::Columns pointersTo(std::vector<MatrixColumn> const& columns) {
  KeyGrouper::Columns pointers;
  pointers.reserve(columns.size());
  for (auto const& column : columns) {
    pointers.push_back(column.get());
  }
  return pointers;
}

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// Keys that are told apart down to the NaN: a number column is split into its numbers and whether
/// they are any, so that hashing takes it.
class SplitKeys {
 public:
  SplitKeys(std::vector<MatrixColumn> const& keys, std::uint32_t rows) : isNaN_(rows) {
    for (auto const& key : keys) {
      if (key->getType() == moxDataMatrixTypes::Double) {
        split(*key, rows);
      } else {
        columns_.push_back(key);
      }
    }
    KeyGrouper grouper;
    grouper.group(pointersTo(columns_), rows);
    classes_ = grouper.takeGroups();
  }

  /// Rows with the same key, a NaN being the same as a NaN.
  std::vector<std::uint32_t> const& classOfRow() const { return classes_.groupOfRow; }
  std::size_t classCount() const { return classes_.firstRow.size(); }

  /// Whether one of the row's keys is a NaN.
  bool hasNaN(std::uint32_t row) const { return isNaN_[row]; }

 private:
  void split(moxDataMatrixColumn const& key, std::uint32_t rows) {
    auto const& storage = dynamic_cast<CommonColumn<double> const&>(key).storage();
    MatrixColumn const numbers = makeColumn(moxDataMatrixTypes::Double);
    MatrixColumn const kinds = makeColumn(moxDataMatrixTypes::Int);
    auto& toNumbers = dynamic_cast<CommonColumn<double>&>(*numbers).storage();
    auto& toKinds = dynamic_cast<CommonColumn<int>&>(*kinds).storage();
    toNumbers.reserve(rows);
    toKinds.reserve(rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
      double const value = storage.values.cells()[row];
      bool const null = storage.nulls.test(row);
      bool const isNaN = !null && std::isnan(value);
      toNumbers.push(null || isNaN ? 0.0 : value);
      toKinds.push(null ? 2 : static_cast<int>(isNaN));
      isNaN_[row] = isNaN_[row] || isNaN;
    }
    columns_.push_back(numbers);
    columns_.push_back(kinds);
  }

  std::vector<MatrixColumn> columns_;
  std::vector<bool> isNaN_;
  KeyGroups classes_;
};

/// Groups of keys among which there is a NaN. Groups are never taken away, so the first one that a
/// key finds is the first for good, and is looked for once. A key without a NaN only agrees with
/// its like and with groups that have one.
class NaNGroups {
 public:
  NaNGroups(std::vector<MatrixColumn> const& keys, std::uint32_t rows)
      : keys_(keys), split_(keys, rows), home_(split_.classCount(), kNone) {
    groups_.groupOfRow.reserve(rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
      if (groups_.firstRow.empty() || !keys_.agree(row, groups_.firstRow[current_])) {
        current_ = homeOf(row);
      }
      groups_.groupOfRow.push_back(current_);
    }
  }

  KeyGroups take() { return std::move(groups_); }

 private:
  std::uint32_t homeOf(std::uint32_t row) {
    std::uint32_t& home = home_[split_.classOfRow()[row]];
    if (home == kNone) {
      home = split_.hasNaN(row) ? firstAgreeing(row, all_) : firstAgreeing(row, withNaN_);
    }
    return home == kNone ? home = newGroup(row) : home;
  }

  std::uint32_t firstAgreeing(std::uint32_t row, std::vector<std::uint32_t> const& groups) const {
    auto const found = std::find_if(groups.begin(), groups.end(), [&](std::uint32_t group) {
      return keys_.agree(row, groups_.firstRow[group]);
    });
    return found == groups.end() ? kNone : *found;
  }

  std::uint32_t newGroup(std::uint32_t row) {
    auto const group = static_cast<std::uint32_t>(groups_.firstRow.size());
    groups_.firstRow.push_back(row);
    all_.push_back(group);
    if (split_.hasNaN(row)) {
      withNaN_.push_back(group);
    }
    return group;
  }

  Keys keys_;
  SplitKeys split_;
  std::vector<std::uint32_t> home_;  // of each key
  std::vector<std::uint32_t> all_;
  std::vector<std::uint32_t> withNaN_;
  std::uint32_t current_ = 0;
  KeyGroups groups_;
};

class NobodyTakes final : public GroupTaker {
 public:
  void take(std::uint32_t, std::uint32_t, std::uint32_t const*, std::uint32_t) override {}
  void restart() override {}
};

KeyGroups hashedGroups(std::vector<MatrixColumn> const& keys, std::uint32_t rows) {
  KeyGrouper grouper;
  return grouper.group(pointersTo(keys), rows) ? grouper.takeGroups()
                                               : NaNGroups(keys, rows).take();
}

constexpr std::uint32_t kBlock = 512;

/// Without keys all rows are one group.
std::vector<std::uint32_t> handOnOneGroup(std::uint32_t rows, GroupTaker& taker) {
  std::array<std::uint32_t, kBlock> const groups{};
  for (std::uint32_t from = 0; from < rows; from += kBlock) {
    taker.take(from, std::min(kBlock, rows - from), groups.data(), 1);
  }
  return std::vector<std::uint32_t>(rows == 0 ? 0 : 1);
}

void handOn(KeyGroups const& groups, GroupTaker& taker) {
  auto const groupCount = static_cast<std::uint32_t>(groups.firstRow.size());
  auto const rows = static_cast<std::uint32_t>(groups.groupOfRow.size());
  for (std::uint32_t from = 0; from < rows; from += kBlock) {
    taker.take(from, std::min(kBlock, rows - from), groups.groupOfRow.data() + from, groupCount);
  }
}

}  // namespace

KeyGroups groupRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows) {
  NobodyTakes nobody;
  GroupKeeper keeper(nobody);
  auto firstRow = groupRows(keys, rows, keeper);
  return {keeper.takeRows(), std::move(firstRow)};
}

std::vector<std::uint32_t> groupRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows,
                                     GroupTaker& taker) {
  if (keys.empty()) {
    return handOnOneGroup(rows, taker);
  }
  std::vector<std::uint32_t> firstRow;
  if (!groupPackedRows(keys, rows, taker, firstRow)) {
    KeyGroups groups = hashedGroups(keys, rows);
    handOn(groups, taker);
    firstRow = std::move(groups.firstRow);
  }
  return firstRow;
}
