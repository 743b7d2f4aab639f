#pragma once

#include <stdexcept>
#include <string>

#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

/// A column of texts in place of the values behind them. It is read by its rows, cannot be written
/// to, and belongs to one thread.
class ShownColumn : public moxDataMatrixTextColumn {
 public:
  explicit ShownColumn(std::shared_ptr<moxDataMatrixColumn const> values)
      : values_(std::move(values)) {}

  unsigned int numRows() const override { return values_->numRows(); }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Text; }
  bool isNull(unsigned int row) const override { return values_->isNull(row); }
  std::string getName() const override { return values_->getName(); }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override {
    return values_->getFormatter();
  }

  void reserve(int /*rows*/) override { refuse(); }
  void clear() override { refuse(); }
  std::shared_ptr<moxIterator> begin() override { refuse(); }
  void setName(std::string const& /*name*/) override { refuse(); }
  void appendNull() override { refuse(); }
  void appendValue(std::string const& /*value*/) override { refuse(); }
  void setFormatter(std::shared_ptr<moxGenericFormatter const> /*formatter*/) override { refuse(); }

  moxDataMatrixTypes::Types typeOfValues() const { return values_->getType(); }

 protected:
  moxDataMatrixColumn const& values() const { return *values_; }

 private:
  [[noreturn]] static void refuse() {
    throw std::logic_error("shown texts are only read, by their rows");
  }

  std::shared_ptr<moxDataMatrixColumn const> values_;
};

}  // namespace mox::cli
