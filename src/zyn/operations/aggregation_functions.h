#pragma once

#include <memory>
#include <optional>
#include <string>

#include "zyn/operations/aggregation_kernels.h"
#include "zyn/operations/average_aggregation_function.h"
#include "zyn/operations/single_target_aggregation_function.h"

/// The functions that a definition may name.

template <auto kKernel, auto kGroupKernel, class Group = GroupCell<int>>
using IntegralFunction =
    SingleTargetAggregationFunction<moxIntegralAggregationFunction, moxDataMatrixIntColumn,
                                    moxDataMatrixTypes::Int, kKernel, Group, kGroupKernel>;

template <auto kKernel, auto kGroupKernel, class Group = GroupCell<double>>
using DoubleFunction =
    SingleTargetAggregationFunction<moxDoubleAggregationFunction, moxDataMatrixDoubleColumn,
                                    moxDataMatrixTypes::Double, kKernel, Group, kGroupKernel>;

template <auto kKernel, auto kGroupKernel, class Group = GroupCell<std::string>>
using TextFunction =
    SingleTargetAggregationFunction<moxTextAggregationFunction, moxDataMatrixTextColumn,
                                    moxDataMatrixTypes::Text, kKernel, Group, kGroupKernel>;

template <auto kKernel, auto kGroupKernel, class Group = GroupCell<datetime_t>>
using DateFunction =
    SingleTargetAggregationFunction<moxDateAggregationFunction, moxDataMatrixDateColumn,
                                    moxDataMatrixTypes::Date, kKernel, Group, kGroupKernel>;

template <auto kKernel, auto kGroupKernel, class Group = GroupCell<std::shared_ptr<moxReadBlob>>>
using BlobFunction =
    SingleTargetAggregationFunction<moxBlobAggregationFunction, moxDataMatrixBlobColumn,
                                    moxDataMatrixTypes::Blob, kKernel, Group, kGroupKernel>;

using IntegralCursor = moxIteratorBase<int>;
using IntegralValue = RowCell<int>;
using IntegralGroup = GroupCell<int>;

using DoubleCursor = moxIteratorBase<double>;
using DoubleValue = RowCell<double>;
using DoubleGroup = GroupCell<double>;

using TextCursor = moxIteratorBase<std::string>;
using TextValue = RowCell<TextRef>;
using TextGroup = GroupCell<std::string>;

using DateCursor = moxIteratorBase<datetime_t>;
using DateValue = RowCell<datetime_t>;
using DateGroup = GroupCell<datetime_t>;

using BlobCursor = moxIteratorBase<std::shared_ptr<moxReadBlob>>;
using BlobValue = RowCell<std::shared_ptr<moxReadBlob>>;
using BlobGroup = GroupCell<std::shared_ptr<moxReadBlob>>;

class DoubleSum : public DoubleFunction<doubleSum_func<DoubleCursor, DoubleCursor>,
                                        doubleSum_func<DoubleValue, DoubleGroup>> {
 public:
  std::string name() const override { return "moxDoubleSum"; }

 protected:
  std::optional<NumberTotal> total() const override { return NumberTotal::kSum; }
};

class IntegralSum : public IntegralFunction<integralSum_func<IntegralCursor, IntegralCursor>,
                                            integralSum_func<IntegralValue, IntegralGroup>> {
 public:
  std::string name() const override { return "moxIntegralSum"; }

 protected:
  std::optional<NumberTotal> total() const override { return NumberTotal::kSum; }
};

class DoubleMin final : public DoubleFunction<doubleMin_func<DoubleCursor, DoubleCursor>,
                                              doubleMin_func<DoubleValue, DoubleGroup>> {
 public:
  std::string name() const override { return "moxDoubleMin"; }

 protected:
  std::optional<NumberTotal> total() const override { return NumberTotal::kMin; }
};

class IntegralMin final : public IntegralFunction<integralMin_func<IntegralCursor, IntegralCursor>,
                                                  integralMin_func<IntegralValue, IntegralGroup>> {
 public:
  std::string name() const override { return "moxIntegralMin"; }

 protected:
  std::optional<NumberTotal> total() const override { return NumberTotal::kMin; }
};

class DoubleMax final : public DoubleFunction<doubleMax_func<DoubleCursor, DoubleCursor>,
                                              doubleMax_func<DoubleValue, DoubleGroup>> {
 public:
  std::string name() const override { return "moxDoubleMax"; }

 protected:
  std::optional<NumberTotal> total() const override { return NumberTotal::kMax; }
};

class IntegralMax final : public IntegralFunction<integralMax_func<IntegralCursor, IntegralCursor>,
                                                  integralMax_func<IntegralValue, IntegralGroup>> {
 public:
  std::string name() const override { return "moxIntegralMax"; }

 protected:
  std::optional<NumberTotal> total() const override { return NumberTotal::kMax; }
};

class BlobFirst final : public BlobFunction<blobFirst_func<BlobCursor, BlobCursor>,
                                            blobFirst_func<BlobValue, BlobGroup>> {
 public:
  std::string name() const override { return "moxBlobFirst"; }
};

class BlobLast final : public BlobFunction<blobLast_func<BlobCursor, BlobCursor>,
                                           blobLast_func<BlobValue, BlobGroup>> {
 public:
  std::string name() const override { return "moxBlobLast"; }
};

class TextLast final : public TextFunction<textLast_func<TextCursor, TextCursor>,
                                           textLast_func<TextValue, TextGroup>> {
 public:
  std::string name() const override { return "moxTextLast"; }
};

class TextFirst final : public TextFunction<textFirst_func<TextCursor, TextCursor>,
                                            textFirst_func<TextValue, TextGroup>> {
 public:
  std::string name() const override { return "moxTextFirst"; }
};

class TextMin final : public TextFunction<textMin_func<TextCursor, TextCursor>,
                                          textMin_func<TextValue, TextGroup>> {
 public:
  std::string name() const override { return "moxTextMin"; }
};

class TextMax final : public TextFunction<textMax_func<TextCursor, TextCursor>,
                                          textMax_func<TextValue, TextGroup>> {
 public:
  std::string name() const override { return "moxTextMax"; }
};

class TextAppend final
    : public TextFunction<textAppend_func<TextCursor, TextCursor>,
                          textAppend_func<TextValue, GroupText<false>>, GroupText<false>> {
 public:
  std::string name() const override { return "moxTextAppend"; }
};

class TextPrepend final
    : public TextFunction<textPrepend_func<TextCursor, TextCursor>,
                          textPrepend_func<TextValue, GroupText<true>>, GroupText<true>> {
 public:
  std::string name() const override { return "moxTextPrepend"; }
};

class DateMin final : public DateFunction<dateMin_func<DateCursor, DateCursor>,
                                          dateMin_func<DateValue, DateGroup>> {
 public:
  std::string name() const override { return "moxDateMin"; }
};

class DateMax final : public DateFunction<dateMax_func<DateCursor, DateCursor>,
                                          dateMax_func<DateValue, DateGroup>> {
 public:
  std::string name() const override { return "moxDateMax"; }
};

class DoubleAvg final : public AverageAggregationFunction<DoubleSum> {
 public:
  std::string name() const override { return "moxDoubleAvg"; }
};

class IntegralAvg final : public AverageAggregationFunction<IntegralSum> {
 public:
  std::string name() const override { return "moxIntegralAvg"; }
};
