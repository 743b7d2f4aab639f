#pragma once

#include <algorithm>
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
    unsigned int const here = pos();
    if (here == 0) {
      return false;
    }
    row_ = here - 1;
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

  bool isNull() const override { return atEnd() || storage().nulls.test(row_); }
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
      storage().values.assign(row_, value);
      storage().nulls.reset(row_);
    }
  }

  T get() const override { return isNull() ? T{} : storage().values.read(row_); }
  bool atEnd() const override { return row_ >= size(); }

  int compare(std::shared_ptr<moxIterator const> const& other) const override {
    if (!other) {
      throw std::bad_cast();
    }
    // The very class is asked for first: a comparison of types costs far less than a cast that
    // searches the class tree, and an index compares once a level for each look-up.
    moxIterator const& cursor = *other;
    if (typeid(cursor) == typeid(moxTypedIterator)) {
      return compareOwn(static_cast<moxTypedIterator const&>(cursor));
    }
    return compareForeign(dynamic_cast<moxIteratorBase<T> const&>(cursor));
  }

  unsigned int pos() const override { return std::min(row_, size()); }
  unsigned int count() const override { return atEnd() ? 0 : size() - row_; }

  /// The column, for engines that go on with its storage.
  CommonColumn<T>& column() const { return *column_; }

  /// The cell as it is stored; not to be asked for at the end.
  typename ColumnStorage<T>::Cell const& cell() const { return storage().values.cells()[row_]; }

  void setNull() override {
    if (!atEnd()) {
      storage().nulls.set(row_);
    }
  }

 private:
  ColumnStorage<T>& storage() const { return column_->storage(); }
  unsigned int size() const { return static_cast<unsigned int>(storage().size()); }

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

  CommonColumn<T>* column_;
  unsigned int row_;  // past the last row of a column that was cleared meanwhile
};
