#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mox/core/date.h"
#include "mox/core/error.h"
#include "mox/zyn/matrix/data_matrix_types.h"

namespace mox::core {

/// A filter that a user wrote wrongly: he can be shown how it is written.
class FilterArgumentError : public moxDefaultErrorImpl<moxError> {
 public:
  using moxDefaultErrorImpl<moxError>::moxDefaultErrorImpl;
};

/// How many values a filter takes.
enum class FilterForm { kOne, kRange, kList };

template <class T>
struct FilterOne {
  T value{};
  bool operator==(FilterOne const&) const = default;
};

/// Both bounds belong to the range; at least one is there.
template <class T>
struct FilterRange {
  std::optional<T> min;
  std::optional<T> max;
  bool operator==(FilterRange const&) const = default;
};

/// Empty only after it was kept to what a user may see: then it lets nothing through.
template <class T>
struct FilterList {
  std::vector<T> values;
  bool operator==(FilterList const&) const = default;
};

/// What a user asks of a column. There are no lists of dates.
using FilterValue = std::variant<FilterOne<int>, FilterRange<int>, FilterList<int>,
                                 FilterOne<double>, FilterRange<double>, FilterList<double>,
                                 FilterOne<std::string>, FilterRange<std::string>,
                                 FilterList<std::string>, FilterOne<date_t>, FilterRange<date_t>>;

/// How a value is to be read.
struct FilterValueKind {
  moxDataMatrixTypes::Types type = moxDataMatrixTypes::Int;
  FilterForm form = FilterForm::kOne;
  bool removePunctuation = false;  // of texts: ASCII marks go, but for the "%" of a search
};

/// Reads "VALUE", "MIN..MAX" with either end open, or "A,B,C", as the form wants; a single value is
/// a range and a list too. Whole numbers have 32 bits; numbers take "." or ","; days are yyyy-mm-dd
/// or dd/mm/yyyy, of the calendar. One text is taken as it stands; in ranges and lists a value in
/// double quotes may hold commas and points, an inner quote being doubled. Throws
/// FilterArgumentError with what is wrong with which value.
FilterValue readFilterValue(std::string_view text, FilterValueKind const& kind);

/// What a text looks like where several forms are offered: a range when it has ".." outside quotes,
/// a list when it has a comma, else one value.
FilterForm looksLike(std::string_view text);

/// A user's text in single quotes, in one line, cut when it is long: for messages.
std::string quotedForMessage(std::string_view text);

}  // namespace mox::core
