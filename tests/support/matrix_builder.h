#pragma once

#include <gmock/gmock.h>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "mox/core/datetime.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_column.h"

class moxReadBlob;

/// Matrices in one line, and comparisons that say what differs:
///
///   auto const m = matrix({{"k", ints(1, null, 2)}, {"t", texts("a", "b", null)}});
///   EXPECT_THAT(m, isMatrix({{"k", ints(1, null, 2)}, {"t", texts("a", "b", null)}}));
///
/// Columns and matrices come from the registry, so a test host must stand behind moxApp.
namespace mox_test {

struct Null {
  bool operator==(Null const&) const = default;
};
inline constexpr Null null;

/// A cell as a test writes it; Null is the null cell.
using Cell = std::variant<Null, int, double, std::string, datetime_t, std::shared_ptr<moxReadBlob>>;

struct Cells {
  moxDataMatrixTypes::Types type;
  std::vector<Cell> values;
};

struct NamedCells {
  std::string name;
  Cells cells;
};

/// "2024-03-05" or "2024-03-05 10:20:30"; std::invalid_argument for anything else.
datetime_t moment(std::string const& text);

/// A blob of those bytes, a new object each time.
std::shared_ptr<moxReadBlob> blob(std::string bytes);

namespace detail {

template <class T, class Arg>
Cell cell(Arg&& arg) {
  if constexpr (std::is_same_v<std::decay_t<Arg>, Null>) {
    return null;
  } else if constexpr (std::is_same_v<T, datetime_t> &&
                       !std::is_same_v<std::decay_t<Arg>, datetime_t>) {
    return moment(std::forward<Arg>(arg));
  } else if constexpr (std::is_same_v<T, std::shared_ptr<moxReadBlob>> &&
                       !std::is_convertible_v<Arg, T>) {
    return blob(std::forward<Arg>(arg));
  } else {
    return T(std::forward<Arg>(arg));
  }
}

template <class T>
std::vector<Cell> cellsOf(std::vector<std::optional<T>> const& values) {
  std::vector<Cell> made;
  for (auto const& value : values) {
    if (value) {
      made.emplace_back(*value);
    } else {
      made.emplace_back(null);
    }
  }
  return made;
}

template <class T, class... Args>
std::vector<Cell> cells(Args&&... args) {
  if constexpr ((sizeof...(Args) == 1) &&
                (std::is_same_v<std::decay_t<Args>, std::vector<std::optional<T>>> && ...)) {
    return cellsOf<T>(args...);
  } else {
    return {cell<T>(std::forward<Args>(args))...};
  }
}

}  // namespace detail

/// Each takes its values one by one, `null` among them, or a vector of optionals. Dates are
/// datetime_t or the text form of moment(); blobs are pointers or the text of their bytes.
template <class... Args>
Cells ints(Args&&... args) {
  return {moxDataMatrixTypes::Int, detail::cells<int>(std::forward<Args>(args)...)};
}
template <class... Args>
Cells doubles(Args&&... args) {
  return {moxDataMatrixTypes::Double, detail::cells<double>(std::forward<Args>(args)...)};
}
template <class... Args>
Cells texts(Args&&... args) {
  return {moxDataMatrixTypes::Text, detail::cells<std::string>(std::forward<Args>(args)...)};
}
template <class... Args>
Cells dates(Args&&... args) {
  return {moxDataMatrixTypes::Date, detail::cells<datetime_t>(std::forward<Args>(args)...)};
}
template <class... Args>
Cells blobs(Args&&... args) {
  return {moxDataMatrixTypes::Blob,
          detail::cells<std::shared_ptr<moxReadBlob>>(std::forward<Args>(args)...)};
}

std::shared_ptr<moxDataMatrixColumn> column(std::string const& name, Cells const& cells);

/// Columns may differ in length, as in a matrix that is being filled.
std::shared_ptr<moxDataMatrix> matrix(std::vector<NamedCells> const& columns);

/// Appends to a column of the cell's kind; std::bad_cast for another.
void append(moxDataMatrixColumn& column, Cell const& value);

/// The cell as the column's reader sees it; Null for a null and past the end.
Cell cellAt(moxDataMatrixColumn const& column, unsigned int row);

/// A table for people: names and kinds, then the rows of the longest column, at most `rowLimit` of
/// them.
std::string asText(moxDataMatrix const& matrix, unsigned int rowLimit = 20);

/// Kind by kind: names, types, lengths and cells; a NaN is the same as a NaN, blobs are compared by
/// their bytes, formatters are not looked at. Says on failure which cells differ, and shows both
/// tables.
testing::AssertionResult sameMatrix(moxDataMatrix const& actual, moxDataMatrix const& expected);

class MatrixMatcher {
 public:
  using is_gtest_matcher = void;

  explicit MatrixMatcher(std::shared_ptr<moxDataMatrix const> expected)
      : expected_(std::move(expected)) {}

  bool MatchAndExplain(std::shared_ptr<moxDataMatrix const> const& actual, std::ostream* why) const;
  void DescribeTo(std::ostream* out) const;
  void DescribeNegationTo(std::ostream* out) const;

 private:
  std::shared_ptr<moxDataMatrix const> expected_;
};

/// For EXPECT_THAT, over a shared pointer to a matrix; an empty pointer does not match.
MatrixMatcher isMatrix(std::vector<NamedCells> const& columns);
MatrixMatcher isMatrix(std::shared_ptr<moxDataMatrix const> expected);

}  // namespace mox_test
