#pragma once

#include <memory>
#include <string>
#include <typeinfo>

#include "mox/core/filter_controls.h"
#include "zyn/filters/filter_specification.h"

/// In what the twelve filter specifications differ beyond the kind of value.
struct FilterForm {
  char const* registeredName;
  char const* sqlFilter;  // registered name of the filter that it makes
  int bindCount;          // 0 for a list, whose length is not known ahead
};

/// `Control` is the interface of the controls with which a user can enter the value.
template <class Commons, class Control, FilterForm const& form>
class FilterSpec : public Commons {
 public:
  std::string name() const override { return form.registeredName; }
  std::shared_ptr<moxDataMatrixSQLFilter> createFilter() const override {
    return this->newFilter(form.sqlFilter);
  }
  std::type_info const& getAcceptedVisualRepresentationType() const override {
    return typeid(Control);
  }
  int bindCount() const override { return form.bindCount; }
};

inline constexpr FilterForm kIntegralUnique = {"moxIntegralUniqueFilter",
                                               "moxDataMatrixSQLIntegerUniqueFilter", 1};
inline constexpr FilterForm kIntegralUniqueSQL = {"moxIntegralUniqueSQLFilter",
                                                  "moxDataMatrixSQLIntegerUniqueSQLFilter", 1};
inline constexpr FilterForm kIntegralRange = {"moxIntegralRangeFilter",
                                              "moxDataMatrixSQLIntegerRangeFilter", 2};
inline constexpr FilterForm kIntegralIn = {"moxIntegralInFilter", "moxDataMatrixSQLIntegerInFilter",
                                           0};
inline constexpr FilterForm kTextUnique = {"moxTextUniqueFilter",
                                           "moxDataMatrixSQLTextUniqueFilter", 1};
inline constexpr FilterForm kTextRange = {"moxTextRangeFilter", "moxDataMatrixSQLTextRangeFilter",
                                          2};
inline constexpr FilterForm kTextIn = {"moxTextInFilter", "moxDataMatrixSQLTextInFilter", 0};
inline constexpr FilterForm kDoubleUnique = {"moxDoubleUniqueFilter",
                                             "moxDataMatrixSQLDoubleUniqueFilter", 1};
inline constexpr FilterForm kDoubleRange = {"moxDoubleRangeFilter",
                                            "moxDataMatrixSQLDoubleRangeFilter", 2};
inline constexpr FilterForm kDoubleIn = {"moxDoubleInFilter", "moxDataMatrixSQLDoubleInFilter", 0};
inline constexpr FilterForm kDateUnique = {"moxDateUniqueFilter",
                                           "moxDataMatrixSQLDateUniqueFilter", 1};
inline constexpr FilterForm kDateRange = {"moxDateRangeFilter", "moxDataMatrixSQLDateRangeFilter",
                                          2};

class IntegralUniqueFilter final
    : public FilterSpec<IntegralFilterSpecCommons, moxIntegralUniqueFilterControl,
                        kIntegralUnique> {};

/// The column is the text of a sub-query that holds the value's mark.
class IntegralUniqueSQLFilter final
    : public FilterSpec<IntegralFilterSpecCommons, moxIntegralUniqueFilterControl,
                        kIntegralUniqueSQL> {};

class IntegralRangeFilter final
    : public FilterSpec<IntegralFilterSpecCommons, moxIntegralRangeFilterControl, kIntegralRange> {
};

class IntegralInFilter final
    : public FilterSpec<IntegralFilterSpecCommons, moxIntegralInFilterControl, kIntegralIn> {};

class TextUniqueFilter final
    : public FilterSpec<TextFilterSpecCommons, moxTextUniqueFilterControl, kTextUnique> {};

class TextRangeFilter final
    : public FilterSpec<TextFilterSpecCommons, moxTextRangeFilterControl, kTextRange> {};

class TextInFilter final
    : public FilterSpec<TextFilterSpecCommons, moxTextInFilterControl, kTextIn> {};

class DoubleUniqueFilter final
    : public FilterSpec<DoubleFilterSpecCommons, moxDoubleUniqueFilterControl, kDoubleUnique> {};

class DoubleRangeFilter final
    : public FilterSpec<DoubleFilterSpecCommons, moxDoubleRangeFilterControl, kDoubleRange> {};

class DoubleInFilter final
    : public FilterSpec<DoubleFilterSpecCommons, moxDoubleInFilterControl, kDoubleIn> {};

class DateUniqueFilter final
    : public FilterSpec<DateFilterSpecCommons, moxDateUniqueFilterControl, kDateUnique> {};

class DateRangeFilter final
    : public FilterSpec<DateFilterSpecCommons, moxDateRangeFilterControl, kDateRange> {};
