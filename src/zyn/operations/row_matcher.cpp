#include "zyn/operations/row_matcher.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/operation_errors.h"

namespace {

using Keys = RowMatcher::Keys;

ColumnStorage<double> const* numbersOf(moxDataMatrixColumn const& column) {
  auto const* const own = dynamic_cast<CommonColumn<double> const*>(&column);
  return own != nullptr ? &own->storage() : nullptr;
}

bool isNaN(ColumnStorage<double> const& numbers, std::uint32_t row) {
  return std::isnan(numbers.values.cells()[row]) && !numbers.nulls.test(row);
}

/// The rows that have a NaN in one of the keys, ascending.
RowOrder rowsWithNaN(Keys const& keys, std::uint32_t rows) {
  RowOrder found;
  for (auto const& key : keys) {
    auto const* const numbers = numbersOf(*key);
    for (std::uint32_t row = 0; numbers != nullptr && row < rows; ++row) {
      if (isNaN(*numbers, row)) {
        found.push_back(row);
      }
    }
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

/// The rows that are not among some, ascending.
RowOrder otherRows(RowOrder const& some, std::uint32_t rows) {
  RowOrder others;
  others.reserve(rows - some.size());
  auto next = some.begin();
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (next != some.end() && *next == row) {
      ++next;
    } else {
      others.push_back(row);
    }
  }
  return others;
}

Keys gatheredKeys(Keys const& keys, RowOrder const& rows) {
  Keys gatheredOnes;
  gatheredOnes.reserve(keys.size());
  for (auto const& key : keys) {
    gatheredOnes.push_back(gathered(key, rows));
  }
  return gatheredOnes;
}

/// Compares cells of two columns of one kind.
class CellPair {
 public:
  virtual ~CellPair() = default;
  virtual bool agree(std::uint32_t row, std::uint32_t other) const = 0;
};

template <class T>
class TypedCellPair final : public CellPair {
 public:
  TypedCellPair(ColumnStorage<T> const& column, ColumnStorage<T> const& other)
      : column_(column), other_(other) {}

  bool agree(std::uint32_t row, std::uint32_t other) const override {
    bool const null = column_.nulls.test(row);
    bool const otherNull = other_.nulls.test(other);
    return null || otherNull
               ? null == otherNull
               : compareCells(column_.values.cells()[row], other_.values.cells()[other]) == 0;
  }

 private:
  ColumnStorage<T> const& column_;
  ColumnStorage<T> const& other_;
};

class RowPairs {
 public:
  RowPairs(Keys const& keys, Keys const& others) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      withStorage(std::as_const(*keys[i]), [&]<class T>(ColumnStorage<T> const& storage) {
        auto const& other = dynamic_cast<CommonColumn<T> const&>(*others[i]).storage();
        pairs_.push_back(std::make_unique<TypedCellPair<T>>(storage, other));
      });
    }
  }

  bool agree(std::uint32_t row, std::uint32_t other) const {
    return std::all_of(pairs_.begin(), pairs_.end(),
                       [&](auto const& pair) { return pair->agree(row, other); });
  }

 private:
  std::vector<std::unique_ptr<CellPair>> pairs_;
};

/// The matches of each row, one row after the other.
class MatchList {
 public:
  explicit MatchList(std::uint32_t rows) : listOf_(rows, JoinIndex::kNone) {
    lists_->starts.reserve(std::size_t{rows} + 1);
  }

  void add(std::uint32_t match) { lists_->rows.push_back(match); }

  void addIf(bool matches, std::uint32_t match) {
    if (matches) {
      add(match);
    }
  }

  /// Ends the matches of a row, which may have come in any order.
  void endRow() {
    std::sort(lists_->rows.begin() + lists_->starts.back(), lists_->rows.end());
    std::size_t const row = lists_->starts.size() - 1;
    if (lists_->rows.size() > lists_->starts.back()) {
      listOf_[row] = static_cast<std::uint32_t>(row);
    }
    lists_->starts.push_back(static_cast<std::uint32_t>(lists_->rows.size()));
    if (lists_->rows.size() >= nextCheck_) {
      refuseTooManyRows(lists_->rows.size());
      nextCheck_ = lists_->rows.size() + kCheckEvery;
    }
  }

  RowMatches take() { return {std::move(listOf_), std::move(lists_)}; }

 private:
  static constexpr std::size_t kCheckEvery = 100'000;

  RowOrder listOf_;
  std::shared_ptr<RowLists> lists_ = std::make_shared<RowLists>(RowLists{{0}, {}});
  std::size_t nextCheck_ = 0;
};

}  // namespace

RowMatcher::RowMatcher(Keys keys, std::uint32_t rows)
    : keys_(std::move(keys)), rows_(rows), unordinary_(rowsWithNaN(keys_, rows)) {
  if (unordinary_.empty()) {
    index_ = std::make_unique<JoinIndex>(keys_, rows);
    return;
  }
  ordinary_ = otherRows(unordinary_, rows);
  ordinaryKeys_ = gatheredKeys(keys_, ordinary_);
  auto const count = static_cast<std::uint32_t>(ordinary_.size());
  index_ = std::make_unique<JoinIndex>(ordinaryKeys_, count);
}

RowMatches RowMatcher::match(Keys const& keys, std::uint32_t rows) const {
  if (unordinary_.empty() && rowsWithNaN(keys, rows).empty()) {
    return {index_->find(keys, rows), index_->lists()};
  }
  return matchAround(keys, rows);
}

std::uint32_t RowMatcher::sourceRowOf(std::uint32_t ordinaryRow) const {
  return unordinary_.empty() ? ordinaryRow : ordinary_[ordinaryRow];
}

/// A row with a NaN is compared with all of the source's, any other only with those that have one.
RowMatches RowMatcher::matchAround(Keys const& keys, std::uint32_t rows) const {
  RowOrder const withNaN = rowsWithNaN(keys, rows);
  RowOrder const found = index_->find(keys, rows);
  auto const lists = index_->lists();
  RowPairs const pairs(keys, keys_);
  MatchList matches(rows);
  auto next = withNaN.begin();
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (next != withNaN.end() && *next == row) {
      ++next;
      for (std::uint32_t other = 0; other < rows_; ++other) {
        matches.addIf(pairs.agree(row, other), other);
      }
    } else {
      lists->each(found[row], [&](std::uint32_t other) { matches.add(sourceRowOf(other)); });
      for (std::uint32_t const other : unordinary_) {
        matches.addIf(pairs.agree(row, other), other);
      }
    }
    matches.endRow();
  }
  return matches.take();
}
