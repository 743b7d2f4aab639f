#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_row.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/aggregation_cells.h"
#include "zyn/operations/common_aggregation_function.h"
#include "zyn/operations/grouped_aggregation.h"
#include "zyn/operations/number_totals.h"

/// A function that computes one column. `F` is the family, `Column` and `kType` tell the column,
/// `kernel` takes a value into a group. `Group` and `kGroupKernel` are the same over plain arrays.
template <class F, class Column, moxDataMatrixTypes::Types kType, auto kKernel, class Group,
          auto kGroupKernel>
class SingleTargetAggregationFunction : public CommonAggregationFunction<F>,
                                        public GroupedAggregation {
 public:
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() override {
    auto column = moxApp->get<Column>(std::string(columnClassOf(kType)));
    column->setName(this->getTargetColumn());
    return {column};
  }

  void setIterators(std::vector<std::shared_ptr<moxIterator>> iterators) override {
    target_ = iterators.empty() ? nullptr : std::dynamic_pointer_cast<Cursor>(iterators.front());
    source_.reset();
  }

  bool compute(std::shared_ptr<moxDataMatrixRow const> row) override {
    if (!source_) {
      source_ = std::dynamic_pointer_cast<Cursor const>(row->findIterator(this->getSourceColumn()));
    }
    if (!source_ || !target_) {
      return false;
    }
    if (!source_->isNull()) {
      take(*source_);
    }
    return true;
  }

  void posProcess(std::shared_ptr<moxDataMatrix> result) override { (void)result; }
  std::vector<std::string> getMetaColumns() const override { return {}; }

  void computeGroups(moxDataMatrixColumn const& source, KeyGroups const& groups) override {
    if (target_ && source.getType() == kType) {
      computeByGroups<Group, kGroupKernel>(storageOf(source), groups,
                                           storageOf(*target_->getParentColumn()));
    }
  }

  std::optional<NumberTotal> totalOf(moxDataMatrixColumn const& source) const override {
    return source.getType() == kType ? total() : std::nullopt;
  }

  void writeTotals(MatrixColumn const& source, NumberTotals const& totals) override {
    if (target_) {
      totals.write(source, *total(), *target_->getParentColumn());
    }
  }

 protected:
  using T = typename moxDataMatrixValue<kType>::Type;
  using Cursor = moxIteratorBase<T>;

  /// Takes a value that is not null into the group on which the cursors stand.
  virtual void take(Cursor const& source) { kKernel(source, *target_); }

  /// Of the numbers of a group; none for a function of other values.
  virtual std::optional<NumberTotal> total() const { return std::nullopt; }

  /// Empty before setIterators.
  std::shared_ptr<Cursor> const& target() const { return target_; }

  static ColumnStorage<T>& storageOf(moxDataMatrixColumn& own) {
    return dynamic_cast<CommonColumn<T>&>(own).storage();
  }
  static ColumnStorage<T> const& storageOf(moxDataMatrixColumn const& own) {
    return dynamic_cast<CommonColumn<T> const&>(own).storage();
  }

 private:
  std::shared_ptr<Cursor const> source_;  // of the run's input; empty until it is found
  std::shared_ptr<Cursor> target_;
};
