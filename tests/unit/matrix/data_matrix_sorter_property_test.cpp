#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <random>

#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

// The sorter against the plainest version of it: row numbers, std::stable_sort, and a comparison of
// cells that follows the words of the contract.
namespace {

constexpr int kTables = 4000;

struct Key {
  std::size_t column;
  bool descending;
};

class RandomTable {
 public:
  explicit RandomTable(std::mt19937_64& random)
      : random_(random), rows_(pick(8) == 0 ? 0 : pick(200)) {
    std::size_t const columns = 1 + pick(4);
    for (std::size_t i = 0; i < columns; ++i) {
      columns_.push_back({"c" + std::to_string(i), cells()});
    }
    columns_.push_back({"row", rowNumbers()});
    for (std::size_t i = 0, count = 1 + pick(3); i < count; ++i) {
      keys_.push_back({pick(columns), pick(2) == 0});
    }
  }

  std::vector<NamedCells> const& columns() const { return columns_; }
  std::vector<Key> const& keys() const { return keys_; }
  std::size_t rows() const { return rows_; }

 private:
  std::size_t pick(std::size_t below) { return random_() % below; }

  Cells cells() {
    auto const type =
        static_cast<moxDataMatrixTypes::Types>(pick(4));  // blobs have no order to foresee
    std::size_t const spread = std::size_t{1} << pick(12);
    bool const nulls = pick(2) == 0;
    Cells made{type, {}};
    for (std::size_t row = 0; row < rows_; ++row) {
      made.values.push_back(nulls && pick(5) == 0 ? Cell(null) : value(type, spread));
    }
    return made;
  }

  Cells rowNumbers() const {
    Cells made{moxDataMatrixTypes::Int, {}};
    for (std::size_t row = 0; row < rows_; ++row) {
      made.values.emplace_back(static_cast<int>(row));
    }
    return made;
  }

  Cell value(moxDataMatrixTypes::Types type, std::size_t spread) {
    switch (type) {
      case moxDataMatrixTypes::Int:
        return pick(20) == 0 ? static_cast<int>(random_()) : static_cast<int>(pick(spread)) - 3;
      case moxDataMatrixTypes::Double:
        return number(spread);
      case moxDataMatrixTypes::Text:
        return text(spread);
      default:
        return pick(20) == 0 ? datetime_t()
                             : datetime_t::fromTime_t(static_cast<long>(pick(spread)) * 86399);
    }
  }

  double number(std::size_t spread) {
    constexpr double kOdd[] = {0.0,
                               -0.0,
                               NAN,
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::denorm_min(),
                               std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::lowest()};
    if (pick(4) == 0) {
      return kOdd[pick(std::size(kOdd))];
    }
    return (static_cast<double>(pick(spread)) - 5) / 8;
  }

  std::string text(std::size_t spread) {
    std::string made = pick(3) == 0 ? std::string(pick(60), 'p') : std::string();
    for (std::size_t i = 0, length = pick(16); i < length; ++i) {
      made += static_cast<char>(pick(std::min<std::size_t>(spread, 256)));
    }
    return made;
  }

  std::mt19937_64& random_;
  std::size_t rows_;
  std::vector<NamedCells> columns_;
  std::vector<Key> keys_;
};

/// Where a cell stands before its value is looked at: null, NaN, everything else.
int rankOf(Cell const& cell) {
  if (std::holds_alternative<Null>(cell)) {
    return 0;
  }
  auto const* const number = std::get_if<double>(&cell);
  return number != nullptr && std::isnan(*number) ? 1 : 2;
}

int order(Cell const& left, Cell const& right) {
  if (rankOf(left) != rankOf(right) || rankOf(left) != 2) {
    return rankOf(left) - rankOf(right);
  }
  return std::visit(
      [&]<class T>(T const& value) {
        if constexpr (std::is_same_v<T, Null> || std::is_same_v<T, std::shared_ptr<moxReadBlob>>) {
          return 0;
        } else {
          auto const& other = std::get<T>(right);
          return value < other ? -1 : static_cast<int>(other < value);
        }
      },
      left);
}

std::vector<std::size_t> plainOrder(RandomTable const& table) {
  std::vector<std::size_t> rows(table.rows());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  std::stable_sort(rows.begin(), rows.end(), [&](std::size_t left, std::size_t right) {
    for (Key const& key : table.keys()) {
      auto const& values = table.columns()[key.column].cells.values;
      int const found = order(values[left], values[right]);
      if (found != 0) {
        return key.descending ? found > 0 : found < 0;
      }
    }
    return false;
  });
  return rows;
}

std::vector<NamedCells> rearranged(std::vector<NamedCells> const& columns,
                                   std::vector<std::size_t> const& rows) {
  std::vector<NamedCells> result;
  for (NamedCells const& column : columns) {
    NamedCells picked{column.name, {column.cells.type, {}}};
    for (std::size_t const row : rows) {
      picked.cells.values.push_back(column.cells.values[row]);
    }
    result.push_back(std::move(picked));
  }
  return result;
}

}  // namespace

TEST(DataMatrixSorterProperty, SortsLikeThePlainVersion) {
  TestHost host;
  std::uint64_t const seed = std::random_device{}();
  std::mt19937_64 random(seed);
  for (int i = 0; i < kTables; ++i) {
    RandomTable const table(random);
    auto const sorter = host.get<moxDataMatrixSorter>("moxDataMatrixSorter");
    for (Key const& key : table.keys()) {
      sorter->pushSortColumn(table.columns()[key.column].name, key.descending);
    }
    ASSERT_THAT(sorter->transform(matrix(table.columns())),
                isMatrix(rearranged(table.columns(), plainOrder(table))))
        << "seed " << seed << ", table " << i;
  }
}
