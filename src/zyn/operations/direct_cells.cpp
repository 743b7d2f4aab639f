#include "zyn/operations/direct_cells.h"

#include <algorithm>
#include <string>
#include <typeinfo>
#include <utility>

#include "mox/zyn/matrix/aggregation_function.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/aggregation_functions.h"

namespace {

constexpr std::uint32_t kBits = NullBits::kBitsPerWord;

/// A function that takes one value after the other into a cell. Nulls go to a cell of their own,
/// which nobody reads: to leave them out would have the processor guess at each row.
template <moxDataMatrixTypes::Types kType, auto kKernel>
class TakenCells : public DirectCells {
 public:
  using T = typename moxDataMatrixValue<kType>::Type;

  TakenCells(std::string name, moxDataMatrixColumn const& source, std::size_t width)
      : name_(std::move(name)),
        source_(dynamic_cast<CommonColumn<T> const&>(source).storage()),
        hasNulls_(source_.nulls.any()),
        cells_(width + 1) {}

  void take(std::uint32_t first, std::uint32_t count, std::uint32_t const* places) override {
    auto const* const values = source_.values.cells() + first;
    if (!hasNulls_) {
      for (std::uint32_t row = 0; row < count; ++row) {
        kKernel(Value(values[row]), cells_[places[row]]);
      }
      return;
    }
    auto const aside = static_cast<std::uint32_t>(cells_.size() - 1);
    for (std::uint32_t from = 0; from < count; from += kBits) {
      std::uint64_t nulls = source_.nulls.words()[(first + from) / kBits];
      std::uint32_t const end = std::min(from + kBits, count);
      for (std::uint32_t row = from; row < end; ++row, nulls >>= 1U) {
        kKernel(Value(values[row]), cells_[(nulls & 1U) != 0 ? aside : places[row]]);
      }
    }
  }

  std::vector<MatrixColumn> columns(std::vector<std::uint32_t> const& places) override {
    MatrixColumn made = makeColumn(kType);
    made->setName(name_);
    auto& to = dynamic_cast<CommonColumn<T>&>(*made).storage();
    to.reserve(places.size());
    if constexpr (std::is_same_v<T, std::string>) {
      to.values.arena().share(source_.values.arena());
    }
    for (std::uint32_t const place : places) {
      cells_[place].moveTo(to);
    }
    return {made};
  }

 protected:
  ColumnStorage<T> const& source() const { return source_; }

 private:
  using Value = RowCell<typename ColumnStorage<T>::Cell>;

  std::string name_;
  ColumnStorage<T> const& source_;
  bool hasNulls_;
  std::vector<GroupCell<T>> cells_;
};

/// A sum, and the number of its values, by which it is divided at the end.
template <moxDataMatrixTypes::Types kType, auto kKernel>
class AverageCells final : public TakenCells<kType, kKernel> {
 public:
  AverageCells(std::string const& name, moxDataMatrixColumn const& source, std::size_t width)
      : TakenCells<kType, kKernel>(name, source, width), counts_(width) {}

  void take(std::uint32_t first, std::uint32_t count, std::uint32_t const* places) override {
    TakenCells<kType, kKernel>::take(first, count, places);
    NullBits const& nulls = this->source().nulls;
    for (std::uint32_t row = 0; row < count; ++row) {
      counts_[places[row]] += nulls.test(first + row) ? 0 : 1;
    }
  }

  std::vector<MatrixColumn> columns(std::vector<std::uint32_t> const& places) override {
    MatrixColumn const sums = TakenCells<kType, kKernel>::columns(places).front();
    using Sum = typename moxDataMatrixValue<kType>::Type;
    auto& averages = dynamic_cast<CommonColumn<Sum>&>(*sums).storage();
    MatrixColumn const counters = makeColumn(moxDataMatrixTypes::Int);
    counters->setName(sums->getName() + kCounterSuffix);
    auto& counts = dynamic_cast<CommonColumn<int>&>(*counters).storage();
    for (std::size_t i = 0; i < places.size(); ++i) {
      int const count = counts_[places[i]];
      if (count == 0) {
        counts.pushNull();
      } else {
        counts.push(count);
        averages.values.array()[i] = meanOf(averages.values.array()[i], count);
      }
    }
    return {sums, counters};
  }

 private:
  std::vector<int> counts_;
};

using Made = std::unique_ptr<DirectCells>;
using Source = moxDataMatrixColumn const&;

template <template <moxDataMatrixTypes::Types, auto> class Cells, moxDataMatrixTypes::Types kType,
          auto kKernel>
Made make(std::string const& name, Source source, std::size_t width) {
  return source.getType() == kType ? std::make_unique<Cells<kType, kKernel>>(name, source, width)
                                   : nullptr;
}

struct Known {
  std::type_info const& function;
  Made (*make)(std::string const& name, Source source, std::size_t width);
};

constexpr auto kInt = moxDataMatrixTypes::Int;
constexpr auto kDouble = moxDataMatrixTypes::Double;
constexpr auto kText = moxDataMatrixTypes::Text;
constexpr auto kDate = moxDataMatrixTypes::Date;
constexpr auto kBlob = moxDataMatrixTypes::Blob;

Known const kKnown[] = {
    {typeid(DoubleSum), &make<TakenCells, kDouble, doubleSum_func<DoubleValue, DoubleGroup>>},
    {typeid(DoubleMin), &make<TakenCells, kDouble, doubleMin_func<DoubleValue, DoubleGroup>>},
    {typeid(DoubleMax), &make<TakenCells, kDouble, doubleMax_func<DoubleValue, DoubleGroup>>},
    {typeid(DoubleAvg), &make<AverageCells, kDouble, doubleSum_func<DoubleValue, DoubleGroup>>},
    {typeid(IntegralSum), &make<TakenCells, kInt, integralSum_func<IntegralValue, IntegralGroup>>},
    {typeid(IntegralMin), &make<TakenCells, kInt, integralMin_func<IntegralValue, IntegralGroup>>},
    {typeid(IntegralMax), &make<TakenCells, kInt, integralMax_func<IntegralValue, IntegralGroup>>},
    {typeid(IntegralAvg),
     &make<AverageCells, kInt, integralSum_func<IntegralValue, IntegralGroup>>},
    {typeid(TextFirst), &make<TakenCells, kText, textFirst_func<TextValue, TextGroup>>},
    {typeid(TextLast), &make<TakenCells, kText, textLast_func<TextValue, TextGroup>>},
    {typeid(TextMin), &make<TakenCells, kText, textMin_func<TextValue, TextGroup>>},
    {typeid(TextMax), &make<TakenCells, kText, textMax_func<TextValue, TextGroup>>},
    {typeid(DateMin), &make<TakenCells, kDate, dateMin_func<DateValue, DateGroup>>},
    {typeid(DateMax), &make<TakenCells, kDate, dateMax_func<DateValue, DateGroup>>},
    {typeid(BlobFirst), &make<TakenCells, kBlob, blobFirst_func<BlobValue, BlobGroup>>},
    {typeid(BlobLast), &make<TakenCells, kBlob, blobLast_func<BlobValue, BlobGroup>>},
};

}  // namespace

std::unique_ptr<DirectCells> directCells(moxCommonAggregationFunction const& function,
                                         moxDataMatrixColumn const& source, std::size_t width) {
  for (Known const& known : kKnown) {
    if (typeid(function) == known.function) {
      return known.make(function.getTargetColumn(), source, width);
    }
  }
  return nullptr;
}
