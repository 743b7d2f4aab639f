#include "zyn/operations/number_totals.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>

#include "zyn/matrix/data_matrix_columns.h"

namespace {

constexpr unsigned int kSum = static_cast<unsigned int>(NumberTotal::kSum);
constexpr unsigned int kMin = static_cast<unsigned int>(NumberTotal::kMin);
constexpr unsigned int kMax = static_cast<unsigned int>(NumberTotal::kMax);
constexpr unsigned int kAllTotals = kSum | kMin | kMax;
constexpr std::uint32_t kFirstCapacity = 256;  // groups

/// The head of what a record has of a column; its totals follow, eight bytes each.
struct Head {
  std::uint32_t values;
  std::uint32_t rows;  // in the first column's alone
};

/// Whole numbers are added in 64 bits, of which the lower ones are what a sum that wraps leaves.
template <class T>
using Total = std::conditional_t<std::is_same_v<T, int>, std::int64_t, double>;

/// Where the totals stand behind the head.
constexpr std::size_t placeOf(unsigned int totals, unsigned int total) {
  return sizeof(Head) + 8 * static_cast<std::size_t>(std::popcount(totals & (total - 1)));
}

template <class T>
T& at(char* record, std::size_t place) {
  return *reinterpret_cast<T*>(record + place);
}
template <class T>
T const& at(char const* record, std::size_t place) {
  return *reinterpret_cast<T const*>(record + place);
}

template <class T>
bool isNaN(T value) {
  if constexpr (std::is_same_v<T, double>) {
    return std::isnan(value);
  }
  return false;
}

/// No value is above the lowest one's beginning; infinite where there is infinity.
template <class T>
constexpr Total<T> kHighest = std::is_same_v<T, int>
                                  ? static_cast<Total<T>>(std::numeric_limits<int>::max())
                                  : static_cast<Total<T>>(std::numeric_limits<double>::infinity());
template <class T>
constexpr Total<T> kLowest = std::is_same_v<T, int>
                                 ? static_cast<Total<T>>(std::numeric_limits<int>::min())
                                 : static_cast<Total<T>>(-std::numeric_limits<double>::infinity());

/// A NaN is neither below nor above: it stays where it comes first, and changes nothing later.
template <class T, unsigned int kTotals>
void takeValue(char* part, T read) {
  auto const value = static_cast<Total<T>>(read);
  auto& values = at<Head>(part, 0).values;
  if constexpr ((kTotals & kSum) != 0) {
    auto& sum = at<Total<T>>(part, placeOf(kTotals, kSum));
    sum = value + sum;
  }
  if constexpr ((kTotals & kMin) != 0) {
    auto& low = at<Total<T>>(part, placeOf(kTotals, kMin));
    low = value < low ? value : low;
  }
  if constexpr ((kTotals & kMax) != 0) {
    auto& high = at<Total<T>>(part, placeOf(kTotals, kMax));
    high = high < value ? value : high;
  }
  if constexpr ((kTotals & (kMin | kMax)) != 0) {
    if (isNaN(value) && values == 0) [[unlikely]] {
      if constexpr ((kTotals & kMin) != 0) {
        at<Total<T>>(part, placeOf(kTotals, kMin)) = value;
      }
      if constexpr ((kTotals & kMax) != 0) {
        at<Total<T>>(part, placeOf(kTotals, kMax)) = value;
      }
    }
  }
  ++values;
}

template <class T>
void blankPart(unsigned int totals, char* part) {
  at<Head>(part, 0) = {0, 0};
  if ((totals & kSum) != 0) {
    at<Total<T>>(part, placeOf(totals, kSum)) = 0;
  }
  if ((totals & kMin) != 0) {
    at<Total<T>>(part, placeOf(totals, kMin)) = kHighest<T>;
  }
  if ((totals & kMax) != 0) {
    at<Total<T>>(part, placeOf(totals, kMax)) = kLowest<T>;
  }
}

bool isInt(moxDataMatrixColumn const& column) {
  return column.getType() == moxDataMatrixTypes::Int;
}

/// `valueOf(group)` and `isNull(group)` in the order of the groups.
template <class T, class ValueOf, class IsNull>
void fill(moxDataMatrixColumn& target, std::uint32_t groups, ValueOf const& valueOf,
          IsNull const& isNull) {
  auto& storage = dynamic_cast<CommonColumn<T>&>(target).storage();
  auto& cells = storage.values.array();
  cells.clear();
  cells.reserve(groups);
  for (std::uint32_t group = 0; group < groups; ++group) {
    cells.push_back(valueOf(group));
  }
  storage.nulls.assign(groups, isNull);
}

}  // namespace

void NumberTotals::ask(MatrixColumn const& source, NumberTotal total) {
  auto const known = std::find_if(sources_.begin(), sources_.end(),
                                  [&](Source const& each) { return each.column == source; });
  Source& asked = known == sources_.end() ? sources_.emplace_back() : *known;
  asked.column = source;
  asked.totals |= static_cast<unsigned int>(total);
}

template <class T, unsigned int kTotals, bool kCountsRows>
void NumberTotals::takeRows(NumberTotals& all, Source const& source, std::uint32_t from,
                            std::uint32_t count, std::uint32_t const* groups) {
  auto const& storage = dynamic_cast<CommonColumn<T> const&>(*source.column).storage();
  auto const* const values = storage.values.cells() + from;
  auto const* const nulls = storage.nulls.words();
  char* const parts = all.records_.data() + source.place;
  std::size_t const stride = all.stride_;
  for (std::uint32_t i = 0; i < count; ++i) {
    char* const part = parts + groups[i] * stride;
    std::size_t const row = std::size_t{from} + i;
    if constexpr (kCountsRows) {
      ++at<Head>(part, 0).rows;
    }
    if ((nulls[row / NullBits::kBitsPerWord] >> (row % NullBits::kBitsPerWord) & 1U) == 0) {
      takeValue<T, kTotals>(part, values[i]);
    }
  }
}

template <class T, bool kCountsRows>
void NumberTotals::choose(Source& source) {
  static constexpr std::array kTake =
      []<unsigned int... kTotals>(std::integer_sequence<unsigned int, kTotals...>) {
    return std::array{&NumberTotals::takeRows<T, kTotals + 1, kCountsRows>...};
  }
  (std::make_integer_sequence<unsigned int, kAllTotals>());
  source.take = kTake[source.totals - 1];
}

/// Done once, when all has been asked for.
void NumberTotals::layOut() {
  for (Source& source : sources_) {
    source.place = stride_;
    stride_ += placeOf(source.totals, kAllTotals + 1);
    bool const countsRows = countsRows_ && source.place == 0;
    if (isInt(*source.column)) {
      countsRows ? choose<int, true>(source) : choose<int, false>(source);
    } else {
      countsRows ? choose<double, true>(source) : choose<double, false>(source);
    }
  }
  stride_ = std::max(stride_, sizeof(Head));
  blank_.resize(stride_);
  for (Source const& source : sources_) {
    char* const part = blank_.data() + source.place;
    isInt(*source.column) ? blankPart<int>(source.totals, part)
                          : blankPart<double>(source.totals, part);
  }
}

void NumberTotals::addGroups(std::uint32_t groupCount) {
  if (groupCount * stride_ > records_.capacity()) {
    std::size_t const groups = std::max<std::size_t>(kFirstCapacity, std::bit_ceil(groupCount));
    records_.reserve(groups * stride_);
  }
  records_.resize(groupCount * stride_);
  for (; groupCount_ < groupCount; ++groupCount_) {
    std::copy(blank_.begin(), blank_.end(), records_.data() + groupCount_ * stride_);
  }
}

void NumberTotals::take(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups,
                        std::uint32_t groupCount) {
  if (isEmpty()) {
    return;
  }
  if (stride_ == 0) {
    layOut();
  }
  addGroups(groupCount);
  constexpr std::size_t kNear = std::size_t{1} << 19;  // bytes that the nearer caches hold
  if (groupCount * stride_ > kNear) {
    takeFar(from, count, groups);
  } else {
    takeNear(from, count, groups);
  }
}

/// A few rows at a time, while memory brings the records of the next ones.
void NumberTotals::takeFar(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups) {
  constexpr std::uint32_t kRows = 32;
  for (std::uint32_t first = 0; first < count; first += kRows) {
    std::uint32_t const rows = std::min(kRows, count - first);
    std::uint32_t const next = first + rows;
    for (std::uint32_t i = next; i < std::min(next + kRows, count); ++i) {
      __builtin_prefetch(records_.data() + groups[i] * stride_, 1);
    }
    takeNear(from + first, rows, groups + first);
  }
}

void NumberTotals::takeNear(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups) {
  if (sources_.empty()) {
    countRows(count, groups);
  }
  for (Source const& source : sources_) {
    source.take(*this, source, from, count, groups);
  }
}

void NumberTotals::countRows(std::uint32_t count, std::uint32_t const* groups) {
  for (std::uint32_t i = 0; i < count; ++i) {
    ++at<Head>(records_.data() + groups[i] * stride_, 0).rows;
  }
}

NumberTotals::Source const& NumberTotals::sourceOf(MatrixColumn const& column) const {
  auto const found = std::find_if(sources_.begin(), sources_.end(),
                                  [&](Source const& each) { return each.column == column; });
  if (found == sources_.end()) {
    throw std::logic_error("nobody asked for a total of this column");
  }
  return *found;
}

void NumberTotals::write(MatrixColumn const& source, NumberTotal total,
                         moxDataMatrixColumn& target) const {
  Source const& taken = sourceOf(source);
  char const* const parts = records_.data() + taken.place;
  std::size_t const place = placeOf(taken.totals, static_cast<unsigned int>(total));
  auto const isNull = [&](std::size_t group) {
    return at<Head>(parts + group * stride_, 0).values == 0;
  };
  auto const filled = [&]<class T>(std::type_identity<T>) {
    fill<T>(
        target, groupCount_,
        [&](std::uint32_t group) {
          auto const value = at<Total<T>>(parts + group * stride_, place);
          return isNull(group) ? T{} : static_cast<T>(value);
        },
        isNull);
  };
  isInt(*taken.column) ? filled(std::type_identity<int>{}) : filled(std::type_identity<double>{});
}

void NumberTotals::writeCounts(MatrixColumn const& source, moxDataMatrixColumn& target) const {
  char const* const parts = records_.data() + sourceOf(source).place;
  auto const values = [&](std::size_t group) {
    return static_cast<int>(at<Head>(parts + group * stride_, 0).values);
  };
  fill<int>(target, groupCount_, values, [&](std::size_t group) { return values(group) == 0; });
}

void NumberTotals::writeRows(moxDataMatrixColumn& target) const {
  fill<int>(
      target, groupCount_,
      [&](std::uint32_t group) {
        return static_cast<int>(at<Head>(records_.data() + group * stride_, 0).rows);
      },
      [](std::size_t) { return false; });
}
