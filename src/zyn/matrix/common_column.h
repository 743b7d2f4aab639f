#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "mox/zyn/matrix/data_matrix_column.h"
#include "zyn/matrix/column_storage.h"

/// The implementation of the module's own columns, over a storage that its engines may use
/// directly.
template <class T>
class CommonColumn : public virtual moxDataMatrixTypedColumn<T>,
                     public std::enable_shared_from_this<moxDataMatrixColumn> {
 public:
  void reserve(int rows) override {
    if (rows < 0) {
      throw std::length_error("a column cannot have a negative number of rows");
    }
    storage_.reserve(static_cast<std::size_t>(rows));
  }

  void clear() override { storage_.clear(); }
  unsigned int numRows() const override { return static_cast<unsigned int>(storage_.size()); }

  bool isNull(unsigned int row) const override {
    return row >= storage_.size() || storage_.nulls.test(row);
  }

  std::shared_ptr<moxIterator> begin() override;

  std::string getName() const override { return name_; }
  void setName(std::string const& name) override { name_ = name; }
  void appendNull() override { storage_.pushNull(); }

  void setFormatter(std::shared_ptr<moxGenericFormatter const> formatter) override {
    formatter_ = std::move(formatter);
  }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }

  void appendValue(T const& value) override { storage_.push(value); }
  T getValue(unsigned int row) const override {
    return isNull(row) ? T{} : storage_.values.read(row);
  }

  ColumnStorage<T>& storage() { return storage_; }
  ColumnStorage<T> const& storage() const { return storage_; }

 private:
  ColumnStorage<T> storage_;
  std::string name_;
  std::shared_ptr<moxGenericFormatter const> formatter_;
};
