#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mox/core/datetime.h"
#include "zyn/matrix/large_allocator.h"
#include "zyn/matrix/null_bits.h"
#include "zyn/matrix/text_arena.h"
#include "zyn/matrix/text_ref.h"

class moxReadBlob;

/// The values of a column whose kind has a natural width: a plain array. `Cell` is what an engine's
/// loop sees.
template <class T>
class PlainValues {
 public:
  using Cell = T;
  using Array = std::vector<T, LargeAllocator<T>>;

  void reserve(std::size_t rows) { cells_.reserve(rows); }
  void clear() { cells_.clear(); }
  std::size_t size() const { return cells_.size(); }

  void push(T const& value) { cells_.push_back(value); }
  void pushDefault() { cells_.emplace_back(); }
  void assign(std::size_t row, T const& value) { cells_[row] = value; }
  T read(std::size_t row) const { return cells_[row]; }

  Cell const* cells() const { return cells_.data(); }

  /// For engines that fill or rearrange the array as a whole; nulls must be kept in step.
  Array& array() { return cells_; }

 private:
  Array cells_;
};

/// The texts of a column: references of 16 bytes, and an arena for what does not fit in them. A
/// text that is overwritten leaves its bytes in the arena until the column is cleared, as somebody
/// may share them.
class TextValues {
 public:
  using Cell = TextRef;
  using Array = std::vector<TextRef, LargeAllocator<TextRef>>;

  void reserve(std::size_t rows) { cells_.reserve(rows); }

  void clear() {
    cells_.clear();
    arena_.clear();
  }

  std::size_t size() const { return cells_.size(); }

  /// Throws std::length_error for a text of 4 GiB or more.
  void push(std::string_view value) { cells_.push_back(intern(value)); }
  void pushDefault() { cells_.emplace_back(); }
  void assign(std::size_t row, std::string_view value) { cells_[row] = intern(value); }
  std::string read(std::size_t row) const { return std::string(cells_[row].view()); }

  Cell const* cells() const { return cells_.data(); }
  Array& array() { return cells_; }

  TextArena& arena() { return arena_; }
  TextArena const& arena() const { return arena_; }

  /// A reference whose bytes live as long as this column's values.
  TextRef intern(std::string_view value) {
    if (value.size() <= TextRef::kInlineBytes) {
      return {value.data(), static_cast<std::uint32_t>(value.size())};
    }
    if (value.size() > std::numeric_limits<std::uint32_t>::max()) {
      throw std::length_error("a text cell holds less than 4 GiB");
    }
    return {arena_.store(value), static_cast<std::uint32_t>(value.size())};
  }

 private:
  Array cells_;
  TextArena arena_;
};

template <class T>
struct ColumnValues {
  using Type = PlainValues<T>;
};

template <>
struct ColumnValues<std::string> {
  using Type = TextValues;
};

/// All that a column stores: values, and a bit a row for the nulls, always of the same length.
/// Under a null stands the type's default, or what was there before setNull. This is what the
/// module's engines loop over.
template <class T>
struct ColumnStorage {
  using Value = T;
  using Values = typename ColumnValues<T>::Type;
  using Cell = typename Values::Cell;

  void reserve(std::size_t rows) {
    values.reserve(rows);
    nulls.reserve(rows);
  }

  void clear() {
    values.clear();
    nulls.clear();
  }

  std::size_t size() const { return values.size(); }

  template <class V>
  void push(V const& value) {
    values.push(value);
    nulls.push(false);
  }

  void pushNull() {
    values.pushDefault();
    nulls.push(true);
  }

  Values values;
  NullBits nulls;
};

/// Order of two values that are not null: -1, 0 or 1.
inline int compareCells(int left, int right) {
  return left < right ? -1 : static_cast<int>(left > right);
}
inline int compareCells(double left, double right) {
  return left < right ? -1 : static_cast<int>(left > right);
}
inline int compareCells(datetime_t const& left, datetime_t const& right) {
  return left.asTime_t() < right.asTime_t() ? -1
                                            : static_cast<int>(left.asTime_t() > right.asTime_t());
}
inline int compareCells(TextRef const& left, TextRef const& right) {
  int const order = TextRef::compare(left, right);
  return order < 0 ? -1 : static_cast<int>(order > 0);
}
inline int compareCells(std::string const& left, std::string const& right) {
  int const order = left.compare(right);
  return order < 0 ? -1 : static_cast<int>(order > 0);
}
inline int compareCells(std::shared_ptr<moxReadBlob> const& left,
                        std::shared_ptr<moxReadBlob> const& right) {
  return std::less<>{}(left.get(), right.get()) ? -1 : static_cast<int>(left.get() != right.get());
}
