#include "zyn/operations/pivot_combinations.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "zyn/format/cell_text.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/operation_errors.h"
#include "zyn/operations/row_grouping.h"

namespace {

/// Which values of a column a row agrees with: its own, and for a NaN all that are not null.
class RowValues {
 public:
  RowValues(moxDataMatrixColumn const& column, std::uint32_t rows, KeyGroups const& values)
      : values_(values) {
    withStorage(column, [&]<class T>(ColumnStorage<T> const& storage) {
      if constexpr (std::is_same_v<T, double>) {
        noteNaNs(storage, rows);
      }
    });
  }

  template <class Use>
  void each(std::uint32_t row, Use const& use) const {
    if (numbers_.empty() || !isNaN_[row]) {
      use(values_.groupOfRow[row]);
      return;
    }
    std::for_each(numbers_.begin(), numbers_.end(), use);
  }

 private:
  void noteNaNs(ColumnStorage<double> const& storage, std::uint32_t rows) {
    isNaN_.resize(rows);
    bool any = false;
    for (std::uint32_t row = 0; row < rows; ++row) {
      isNaN_[row] = !storage.nulls.test(row) && std::isnan(storage.values.cells()[row]);
      any = any || isNaN_[row];
    }
    for (std::uint32_t value = 0; any && value < values_.firstRow.size(); ++value) {
      if (!storage.nulls.test(values_.firstRow[value])) {
        numbers_.push_back(value);
      }
    }
  }

  KeyGroups const& values_;
  std::vector<bool> isNaN_;
  std::vector<std::uint32_t> numbers_;  // the values that are not null; empty without a NaN
};

std::vector<std::string> textsOf(MatrixColumn const& column,
                                 std::shared_ptr<moxGenericFormatter const> formatter,
                                 std::vector<std::uint32_t> const& rows) {
  CellText const text(column, std::move(formatter));
  std::vector<std::string> texts;
  texts.reserve(rows.size());
  for (std::uint32_t const row : rows) {
    texts.push_back(text.at(row));
  }
  return texts;
}

// Both replace each code by its number among the codes that occur, and give these in ascending
// order.

/// For codes below a number that is not large beside theirs.
std::vector<std::uint64_t> numbersByPlace(std::vector<std::uint64_t>& codes, std::size_t below) {
  std::vector<std::uint32_t> numberOf(below);
  for (std::uint64_t const code : codes) {
    numberOf[code] = 1;
  }
  std::vector<std::uint64_t> used;
  for (std::size_t code = 0; code < below; ++code) {
    if (numberOf[code] != 0) {
      numberOf[code] = static_cast<std::uint32_t>(used.size());
      used.push_back(code);
    }
  }
  for (std::uint64_t& code : codes) {
    code = numberOf[code];
  }
  return used;
}

std::vector<std::uint64_t> numbersByOrder(std::vector<std::uint64_t>& codes) {
  std::vector<std::uint64_t> used = codes;
  std::sort(used.begin(), used.end());
  used.erase(std::unique(used.begin(), used.end()), used.end());
  for (std::uint64_t& code : codes) {
    auto const place = std::lower_bound(used.begin(), used.end(), code);
    code = static_cast<std::uint64_t>(place - used.begin());
  }
  return used;
}

}  // namespace

void PivotCombinations::add(MatrixColumn const& column,
                            std::shared_ptr<moxGenericFormatter const> formatter) {
  KeyGroups const values = groupRows({column}, rows_);
  refuseTooManyColumns(values.firstRow.size() * width_);
  if (isFirst_) {
    labels_.assign(1, "");
    for (std::uint32_t row = 0; row < rows_; ++row) {
      entries_.push_back({row, 0});
    }
  }
  RowValues const rowValues(*column, rows_, values);
  std::vector<Entry> refined;
  std::vector<std::uint64_t> codes;
  for (Entry const& entry : entries_) {
    rowValues.each(entry.row, [&](std::uint32_t value) {
      refined.push_back({entry.row, 0});
      codes.push_back(std::uint64_t{entry.combination} * values.firstRow.size() + value);
    });
  }
  entries_ = std::move(refined);
  number(codes, textsOf(column, std::move(formatter), values.firstRow));
  isFirst_ = false;
}

/// Gives the combinations that occur their numbers, in the order of their codes.
void PivotCombinations::number(std::vector<std::uint64_t>& codes,
                               std::vector<std::string> const& values) {
  std::size_t const possible = labels_.size() * values.size();
  std::vector<std::uint64_t> const used =
      possible <= codes.size() ? numbersByPlace(codes, possible) : numbersByOrder(codes);
  refuseTooManyColumns(used.size() * width_);
  std::vector<std::size_t> next(used.size() + 1);  // where each combination's next entry goes
  for (std::uint64_t const combination : codes) {
    ++next[combination + 1];
  }
  std::partial_sum(next.begin(), next.end(), next.begin());
  std::vector<Entry> ordered(entries_.size());
  for (std::size_t i = 0; i < codes.size(); ++i) {
    ordered[next[codes[i]]++] = {entries_[i].row, static_cast<std::uint32_t>(codes[i])};
  }
  entries_ = std::move(ordered);
  std::vector<std::string> labels;
  labels.reserve(used.size());
  for (std::uint64_t const code : used) {
    std::string const& value = values[code % values.size()];
    labels.push_back(isFirst_ ? value : labels_[code / values.size()] + " " + value);
  }
  labels_ = std::move(labels);
}
