#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "zyn/matrix/column_storage.h"
#include "zyn/matrix/key_groups.h"

/// A value of a column, for a kernel to read.
template <class Cell>
class RowCell {
 public:
  explicit RowCell(Cell const& cell) : cell_(cell) {}
  Cell const& get() const { return cell_; }

 private:
  Cell const& cell_;
};

/// What a group has come to, for a kernel to read and write. Value and flag stand side by side, as
/// groups are met in any order and each costs a line of memory.
template <class T>
class GroupCell {
 public:
  using Cell = typename ColumnStorage<T>::Cell;
  static constexpr bool kFromTheLastRow = false;

  bool isNull() const { return !filled_; }
  Cell const& get() const { return cell_; }
  void set(Cell const& cell) {
    cell_ = cell;
    filled_ = true;
  }

  void moveTo(ColumnStorage<T>& column) {
    column.values.array().push_back(std::move(cell_));
    column.nulls.push(!filled_);
  }

 private:
  Cell cell_{};
  bool filled_ = false;
};

/// A text that grows. It is put together here and not in the column, which would keep every stage
/// of it. Prepending goes through the rows from the last one, for then it is appending.
template <bool kPrepends>
class GroupText {
 public:
  static constexpr bool kFromTheLastRow = kPrepends;

  void append(RowCell<TextRef> const& source) requires(!kPrepends) { add(source.get()); }
  void prepend(RowCell<TextRef> const& source) requires kPrepends { add(source.get()); }

  void moveTo(ColumnStorage<std::string>& column) {
    filled_ ? column.push(text_) : column.pushNull();
    std::string().swap(text_);
  }

 private:
  void add(TextRef const& text) {
    text_.append(text.view());
    filled_ = true;
  }

  std::string text_;
  bool filled_ = false;
};

/// Calls `use` with the number of each of the first `rows` rows that is not null, in order.
template <class Use>
void eachValue(NullBits const& nulls, std::uint32_t rows, Use const& use) {
  if (!nulls.any()) {
    for (std::uint32_t row = 0; row < rows; ++row) {
      use(row);
    }
    return;
  }
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (!nulls.test(row)) {
      use(row);
    }
  }
}

/// The same from the last row to the first.
template <class Use>
void eachValueBackwards(NullBits const& nulls, std::uint32_t rows, Use const& use) {
  for (std::uint32_t row = rows; row-- != 0;) {
    if (!nulls.test(row)) {
      use(row);
    }
  }
}

/// Takes each value of a column into its group, in the order of the rows, and replaces `target` by
/// what the groups have come to.
template <class Group, auto kKernel, class T>
void computeByGroups(ColumnStorage<T> const& source, KeyGroups const& groups,
                     ColumnStorage<T>& target) {
  std::vector<Group> cells(groups.firstRow.size());
  auto const* const values = source.values.cells();
  auto const* const groupOfRow = groups.groupOfRow.data();
  auto const rows = static_cast<std::uint32_t>(groups.groupOfRow.size());
  auto const take = [&](std::uint32_t row) {
    kKernel(RowCell<typename ColumnStorage<T>::Cell>(values[row]), cells[groupOfRow[row]]);
  };
  if constexpr (Group::kFromTheLastRow) {
    eachValueBackwards(source.nulls, rows, take);
  } else {
    eachValue(source.nulls, rows, take);
  }
  target.clear();
  target.reserve(cells.size());
  if constexpr (std::is_same_v<Group, GroupCell<std::string>>) {
    target.values.arena().share(source.values.arena());
  }
  for (auto& cell : cells) {
    cell.moveTo(target);
  }
}
