#include "zyn/operations/direct_aggregation.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "mox/zyn/matrix/aggregation_function.h"
#include "zyn/matrix/column_copy.h"
#include "zyn/operations/direct_cells.h"
#include "zyn/operations/direct_keys.h"
#include "zyn/operations/operation_errors.h"

namespace {

constexpr std::uint32_t kBlock = 512;  // rows: their places and values stay in the nearest cache
constexpr std::uint32_t kNever = std::numeric_limits<std::uint32_t>::max();

/// The places that occur, in the order of their first rows.
class FirstRows {
 public:
  explicit FirstRows(std::size_t width) : firstRow_(width, kNever) {}

  void note(std::uint32_t first, std::uint32_t count, std::uint32_t const* places) {
    if (places_.size() == firstRow_.size()) {
      return;
    }
    for (std::uint32_t row = 0; row < count; ++row) {
      if (firstRow_[places[row]] == kNever) {
        firstRow_[places[row]] = first + row;
        places_.push_back(places[row]);
      }
    }
  }

  std::vector<std::uint32_t> const& places() const { return places_; }

  RowOrder rows() const {
    RowOrder rows;
    rows.reserve(places_.size());
    for (std::uint32_t const place : places_) {
      rows.push_back(firstRow_[place]);
    }
    return rows;
  }

 private:
  std::vector<std::uint32_t> firstRow_;  // of each place
  std::vector<std::uint32_t> places_;
};

/// The first column of that name, one of the module's own; read only.
MatrixColumn ownColumn(moxDataMatrix const& matrix, std::string const& name) {
  return asOwn(std::const_pointer_cast<moxDataMatrixColumn>(matrix.columnByName(name)),
               matrix.rowCount());
}

/// The columns and cells of an aggregation; the columns outlive the cells.
struct Functions {
  std::vector<MatrixColumn> sources;
  std::vector<std::unique_ptr<DirectCells>> cells;

  bool add(moxDataMatrix const& matrix, moxCommonAggregationFunction const& function,
           std::size_t width) {
    sources.push_back(ownColumn(matrix, function.getSourceColumn()));
    cells.push_back(directCells(function, *sources.back(), width));
    return cells.back() != nullptr;
  }
};

std::shared_ptr<moxDataMatrix> resultOf(std::vector<MatrixColumn> const& keys,
                                        FirstRows const& seen, Functions const& functions) {
  auto result = newMatrix();
  RowOrder const rows = seen.rows();
  for (auto const& key : keys) {
    result->addColumn(gathered(key, rows));
  }
  for (std::size_t i = 0; i < functions.cells.size(); ++i) {
    auto const columns = functions.cells[i]->columns(seen.places());
    columns.front()->setFormatter(functions.sources[i]->getFormatter());
    for (auto const& column : columns) {
      result->addColumn(column);
    }
  }
  return result;
}

}  // namespace

std::shared_ptr<moxDataMatrix> aggregatedDirectly(
    moxDataMatrix const& matrix, std::vector<std::string> const& keyNames,
    std::vector<std::shared_ptr<moxCommonAggregationFunction>> const& functions) {
  std::uint32_t const rows = matrix.rowCount();
  std::vector<MatrixColumn> keys;
  keys.reserve(keyNames.size());
  for (auto const& name : keyNames) {
    keys.push_back(ownColumn(matrix, name));
  }
  DirectKeys const places(keys, rows);
  Functions steps;
  bool const canDo = rows != 0 && places.areDirect() &&
                     std::all_of(functions.begin(), functions.end(), [&](auto const& function) {
                       return steps.add(matrix, *function, places.width());
                     });
  if (!canDo) {
    return nullptr;
  }
  FirstRows seen(places.width());
  std::uint32_t placeOfRow[kBlock];
  for (std::uint32_t first = 0; first < rows; first += kBlock) {
    std::uint32_t const count = std::min(kBlock, rows - first);
    places.placesOf(first, count, placeOfRow);
    seen.note(first, count, placeOfRow);
    for (auto const& cells : steps.cells) {
      cells->take(first, count, placeOfRow);
    }
  }
  refuseTooManyRows(seen.places().size());
  return resultOf(keys, seen, steps);
}
