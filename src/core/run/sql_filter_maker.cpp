#include "core/run/filter_argument.h"
#include "mox/core/application.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox::core {

namespace {

using Filter = std::shared_ptr<moxDataMatrixSQLFilter>;

/// The filters of one kind of value.
template <class T>
struct FiltersOf;

template <>
struct FiltersOf<int> {
  using One = moxDataMatrixSQLIntegerUniqueFilter;
  using Range = moxDataMatrixSQLIntegerRangeFilter;
  using List = moxDataMatrixSQLIntegerInFilter;
};

template <>
struct FiltersOf<double> {
  using One = moxDataMatrixSQLDoubleUniqueFilter;
  using Range = moxDataMatrixSQLDoubleRangeFilter;
  using List = moxDataMatrixSQLDoubleInFilter;
};

template <>
struct FiltersOf<std::string> {
  using One = moxDataMatrixSQLTextUniqueFilter;
  using Range = moxDataMatrixSQLTextRangeFilter;
  using List = moxDataMatrixSQLTextInFilter;
};

template <>
struct FiltersOf<date_t> {
  using One = moxDataMatrixSQLDateUniqueFilter;
  using Range = moxDataMatrixSQLDateRangeFilter;
};

/// Puts the values into a filter; false when the filter takes no such values.
class FilterFiller {
 public:
  explicit FilterFiller(Filter const& filter) : filter_(filter) {}

  template <class T>
  bool operator()(FilterOne<T> const& one) const {
    return setValue<typename FiltersOf<T>::One>(one.value);
  }

  bool operator()(FilterOne<int> const& one) const {
    return setValue<moxDataMatrixSQLIntegerUniqueFilter>(one.value) ||
           setValue<moxDataMatrixSQLIntegerUniqueSQLFilter>(one.value);
  }

  template <class T>
  bool operator()(FilterRange<T> const& range) const {
    auto const filter = as<typename FiltersOf<T>::Range>();
    if (filter) {
      filter->setMin(range.min.value_or(T()), range.min.has_value());
      filter->setMax(range.max.value_or(T()), range.max.has_value());
    }
    return filter != nullptr;
  }

  /// The empty date is the bound that is not there.
  bool operator()(FilterRange<date_t> const& range) const {
    auto const filter = as<moxDataMatrixSQLDateRangeFilter>();
    if (filter) {
      filter->setMin(range.min.value_or(date_t()));
      filter->setMax(range.max.value_or(date_t()));
    }
    return filter != nullptr;
  }

  template <class T>
  bool operator()(FilterList<T> const& list) const {
    auto const filter = as<typename FiltersOf<T>::List>();
    if (filter) {
      for (auto const& value : list.values) {
        filter->pushVal(value);
      }
    }
    return filter != nullptr;
  }

 private:
  template <class Interface>
  std::shared_ptr<Interface> as() const {
    return std::dynamic_pointer_cast<Interface>(filter_);
  }

  template <class Interface, class Value>
  bool setValue(Value const& value) const {
    auto const filter = as<Interface>();
    if (filter) {
      filter->setValue(value);
    }
    return filter != nullptr;
  }

  Filter const& filter_;
};

Filter unitListOn(VELMORApplication& application, moxDataMatrixSQLFilter const& made) {
  auto list = application.get<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter");
  if (list) {
    list->setColumnName(made.getTableName(), made.getColumnName());
  }
  return list;
}

}  // namespace

std::shared_ptr<moxDataMatrixSQLFilter> makeSqlFilter(VELMORApplication& application,
                                                      FilterArgument const& argument) {
  auto const& specification = *argument.offer.specification;
  Filter filter = specification.createFilter();
  if (filter && argument.keptToUnits) {
    filter = unitListOn(application, *filter);
  }
  if (!filter || !std::visit(FilterFiller(filter), argument.value)) {
    throw moxDefaultErrorImpl<moxError>(
        "the filter on " + quotedForMessage(specification.getColumn()) +
        " cannot be made: the class " + specification.name() + " gives none that takes its value");
  }
  return filter;
}

}  // namespace mox::core
