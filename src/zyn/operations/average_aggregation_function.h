#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "zyn/operations/single_target_aggregation_function.h"

/// Behind the target's name, that of the column in which values are counted.
inline constexpr char const* kCounterSuffix = "$Counter";

/// That of whole numbers is a whole number; its fraction is dropped.
inline double meanOf(double sum, int count) {
  return sum / count;
}
inline int meanOf(int sum, int count) {
  return static_cast<int>(std::int64_t{sum} / std::int64_t{count});
}

/// A mean: adds values and counts them in a column of its own, and divides at the end. `Sum` is the
/// function that adds.
template <class Sum>
class AverageAggregationFunction : public Sum {
 public:
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() override {
    auto made = Sum::columns();
    made.push_back(makeColumn(moxDataMatrixTypes::Int));
    made.back()->setName(counterName());
    return made;
  }

  void setIterators(std::vector<std::shared_ptr<moxIterator>> iterators) override {
    counter_ = iterators.size() < 2 ? nullptr : std::dynamic_pointer_cast<Counter>(iterators[1]);
    Sum::setIterators(std::move(iterators));
  }

  bool compute(std::shared_ptr<moxDataMatrixRow const> row) override {
    return counter_ && Sum::compute(std::move(row));
  }

  /// Groups without a value have no counter, and stay null.
  void posProcess(std::shared_ptr<moxDataMatrix> result) override {
    if (!this->target() || !counter_ || !result) {
      return;
    }
    unsigned int const rows = result->rowCount();
    for (unsigned int row = 0; row < rows; ++row) {
      if (this->target()->goTo(row) && counter_->goTo(row) && counter_->get() != 0) {
        this->target()->set(meanOf(this->target()->get(), counter_->get()));
      }
    }
  }

  std::vector<std::string> getMetaColumns() const override { return {counterName()}; }

  void computeGroups(moxDataMatrixColumn const& source, KeyGroups const& groups) override {
    Sum::computeGroups(source, groups);
    if (this->target() && counter_ && source.getType() == this->target()->getType()) {
      countByGroups(Sum::storageOf(source).nulls, groups);
    }
  }

  void writeTotals(MatrixColumn const& source, NumberTotals const& totals) override {
    Sum::writeTotals(source, totals);
    if (counter_) {
      totals.writeCounts(source, *counter_->getParentColumn());
    }
  }

 protected:
  using typename Sum::Cursor;
  using Counter = moxIteratorBase<int>;

  void take(Cursor const& source) override {
    Sum::take(source);
    counter_->set(counter_->get() + 1);
  }

 private:
  std::string counterName() const { return this->getTargetColumn() + kCounterSuffix; }

  void countByGroups(NullBits const& nulls, KeyGroups const& groups) {
    std::vector<int> counts(groups.firstRow.size());
    auto const rows = static_cast<std::uint32_t>(groups.groupOfRow.size());
    eachValue(nulls, rows, [&](std::uint32_t row) { ++counts[groups.groupOfRow[row]]; });
    auto& counters = dynamic_cast<CommonColumn<int>&>(*counter_->getParentColumn()).storage();
    counters.clear();
    for (int const count : counts) {
      count != 0 ? counters.push(count) : counters.pushNull();
    }
  }

  std::shared_ptr<Counter> counter_;
};
