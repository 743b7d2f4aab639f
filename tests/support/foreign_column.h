#pragma once

#include <memory>
#include <optional>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/matrix/iterator.h"

namespace mox_test {

/// A column that another module might bring: it keeps the contract and shares no code with the
/// module's own, so that engines must read it through cursors. Its cells are plain optionals.
template <moxDataMatrixTypes::Types kType>
class ForeignColumn final
    : public moxDataMatrixTypedColumn<typename moxDataMatrixValue<kType>::Type>,
      public std::enable_shared_from_this<ForeignColumn<kType>> {
 public:
  using T = typename moxDataMatrixValue<kType>::Type;

  ForeignColumn(std::string columnName, std::vector<std::optional<T>> cells)
      : columnName_(std::move(columnName)), cells_(std::move(cells)) {}

  std::string name() const override { return "testForeignColumn"; }
  void reserve(int rows) override { cells_.reserve(static_cast<std::size_t>(rows)); }
  void clear() override { cells_.clear(); }
  unsigned int numRows() const override { return static_cast<unsigned int>(cells_.size()); }
  moxDataMatrixTypes::Types getType() const override { return kType; }
  bool isNull(unsigned int row) const override { return row >= cells_.size() || !cells_[row]; }
  std::shared_ptr<moxIterator> begin() override { return std::make_shared<Cursor>(*this); }
  std::string getName() const override { return columnName_; }
  void setName(std::string const& columnName) override { columnName_ = columnName; }
  void appendNull() override { cells_.emplace_back(); }
  void setFormatter(std::shared_ptr<moxGenericFormatter const> formatter) override {
    formatter_ = formatter;
  }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }
  void appendValue(T const& value) override { cells_.emplace_back(value); }
  T getValue(unsigned int row) const override { return isNull(row) ? T{} : *cells_[row]; }

 private:
  class Cursor;

  std::string columnName_;
  std::vector<std::optional<T>> cells_;
  std::shared_ptr<moxGenericFormatter const> formatter_;
};

template <moxDataMatrixTypes::Types kType>
class ForeignColumn<kType>::Cursor final : public moxIteratorBase<T> {
 public:
  explicit Cursor(ForeignColumn& column) : column_(column) {}

  std::string name() const override { return "testForeignCursor"; }
  bool next() override {
    row_ += atEnd() ? 0 : 1;
    return !atEnd();
  }
  bool previous() override { return row_ != 0 && (--row_, true); }
  bool goTo(unsigned int row) override { return row < column_.numRows() && (row_ = row, true); }
  bool goToEnd() override { return column_.numRows() != 0 && goTo(column_.numRows() - 1); }
  bool isNull() const override { return column_.isNull(row_); }
  moxDataMatrixTypes::Types getType() const override { return kType; }
  std::shared_ptr<moxDataMatrixColumn> getParentColumn() const override {
    return column_.shared_from_this();
  }
  std::shared_ptr<moxIterator> clone() const override { return std::make_shared<Cursor>(*this); }
  bool equals(std::shared_ptr<moxIterator const> const& other) const override {
    return compare(other) == 0;
  }
  void set(std::shared_ptr<moxIterator const> const& other) override {
    auto const source = std::dynamic_pointer_cast<moxIteratorBase<T> const>(other);
    if (source && !atEnd()) {
      column_.cells_[row_] = source->isNull() ? std::optional<T>() : source->get();
    }
  }
  void set(T const& value) override {
    if (!atEnd()) {
      column_.cells_[row_] = value;
    }
  }
  bool atEnd() const override { return row_ >= column_.numRows(); }
  int compare(std::shared_ptr<moxIterator const> const& other) const override {
    auto const typed = std::dynamic_pointer_cast<moxIteratorBase<T> const>(other);
    if (!typed) {
      throw std::bad_cast();
    }
    if (isNull() || typed->isNull()) {
      return static_cast<int>(typed->isNull()) - static_cast<int>(isNull());
    }
    T const left = get();
    T const right = typed->get();
    return left < right ? -1 : static_cast<int>(right < left);
  }
  unsigned int pos() const override { return row_; }
  unsigned int count() const override { return column_.numRows() - row_; }
  void setNull() override {
    if (!atEnd()) {
      column_.cells_[row_].reset();
    }
  }
  T get() const override { return column_.getValue(row_); }

 private:
  ForeignColumn& column_;
  unsigned int row_ = 0;
};

using ForeignIntColumn = ForeignColumn<moxDataMatrixTypes::Int>;
using ForeignDoubleColumn = ForeignColumn<moxDataMatrixTypes::Double>;
using ForeignTextColumn = ForeignColumn<moxDataMatrixTypes::Text>;
using ForeignDateColumn = ForeignColumn<moxDataMatrixTypes::Date>;
using ForeignBlobColumn = ForeignColumn<moxDataMatrixTypes::Blob>;

}  // namespace mox_test
