#pragma once

#include <memory>
#include <string>
#include <typeinfo>

#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/matrix/iterator.h"
#include "zyn/matrix/common_column.h"

/// The cursor over the module's own columns. It holds a row number and not a place in memory,
/// because engines append to a result whose cursors they still use.
template <class T>
class moxTypedIterator final : public moxIteratorBase<T> {
 public:
  moxTypedIterator(CommonColumn<T>& column, unsigned int row) : column_(&column), row_(row) {}

  using moxIteratorBase<T>::set;

  std::string name() const override { return "moxDataMatrixTypedColumnIterator"; }

  bool next() override {
    if (atEnd()) {
      return false;
    }
    ++row_;
    return !atEnd();
  }

  bool previous() override {
    if (row_ == 0) {
      return false;
    }
    --row_;
    return true;
  }

  bool goTo(unsigned int row) override {
    if (row >= size()) {
      return false;
    }
    row_ = row;
    return true;
  }

  bool goToEnd() override {
    if (size() == 0) {
      return false;
    }
    row_ = size() - 1;
    return true;
  }

  bool isNull() const override { return column_->isNull(row_); }
  moxDataMatrixTypes::Types getType() const override { return column_->getType(); }
  std::shared_ptr<moxDataMatrixColumn> getParentColumn() const override {
    return column_->shared_from_this();
  }
  std::shared_ptr<moxIterator> clone() const override {
    return std::make_shared<moxTypedIterator>(*this);
  }
  bool equals(std::shared_ptr<moxIterator const> const& other) const override {
    return compare(other) == 0;
  }

  void set(std::shared_ptr<moxIterator const> const& other) override {
    auto const* const source = dynamic_cast<moxIteratorBase<T> const*>(other.get());
    if (source == nullptr || atEnd()) {
      return;
    }
    if (source->isNull()) {
      set(T{});
      setNull();
      return;
    }
    set(source->get());
  }

  void set(T const& value) override {
    if (!atEnd()) {
      column_->storage().values.assign(row_, value);
      column_->storage().nulls.reset(row_);
    }
  }

  T get() const override { return column_->getValue(row_); }
  bool atEnd() const override { return row_ >= size(); }

  int compare(std::shared_ptr<moxIterator const> const& other) const override {
    if (auto const* const own = dynamic_cast<moxTypedIterator const*>(other.get())) {
      return compareOwn(*own);
    }
    if (!other) {
      throw std::bad_cast();
    }
    return compareForeign(dynamic_cast<moxIteratorBase<T> const&>(*other));
  }

  unsigned int pos() const override { return row_; }
  unsigned int count() const override { return atEnd() ? 0 : size() - row_; }

  void setNull() override {
    if (!atEnd()) {
      column_->storage().nulls.set(row_);
    }
  }

 private:
  unsigned int size() const { return column_->numRows(); }

  static int compareNulls(bool left, bool right) {
    return static_cast<int>(right) - static_cast<int>(left);
  }

  int compareOwn(moxTypedIterator const& other) const {
    bool const null = isNull();
    bool const otherNull = other.isNull();
    if (null || otherNull) {
      return compareNulls(null, otherNull);
    }
    return compareCells(cell(), other.cell());
  }

  int compareForeign(moxIteratorBase<T> const& other) const {
    bool const null = isNull();
    bool const otherNull = other.isNull();
    if (null || otherNull) {
      return compareNulls(null, otherNull);
    }
    return compareCells(get(), other.get());
  }

  typename ColumnStorage<T>::Cell const& cell() const {
    return column_->storage().values.cells()[row_];
  }

  CommonColumn<T>* column_;
  unsigned int row_;
};
