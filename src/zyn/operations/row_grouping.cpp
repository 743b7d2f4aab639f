#include "zyn/operations/row_grouping.h"

#include <algorithm>
#include <memory>

#include "zyn/matrix/data_matrix_columns.h"

namespace {

/// Whether cells of one key agree.
class KeyCells {
 public:
  virtual ~KeyCells() = default;
  virtual bool agree(std::uint32_t row, std::uint32_t other) const = 0;
};

template <class T>
class TypedKeyCells final : public KeyCells {
 public:
  explicit TypedKeyCells(ColumnStorage<T> const& column) : column_(column) {}

  bool agree(std::uint32_t row, std::uint32_t other) const override {
    bool const null = column_.nulls.test(row);
    bool const otherNull = column_.nulls.test(other);
    auto const* const cells = column_.values.cells();
    return null || otherNull ? null == otherNull : compareCells(cells[row], cells[other]) == 0;
  }

 private:
  ColumnStorage<T> const& column_;
};

class Keys {
 public:
  explicit Keys(std::vector<MatrixColumn> const& columns) {
    for (auto const& column : columns) {
      withStorage(*column, [&]<class T>(ColumnStorage<T>& storage) {
        keys_.push_back(std::make_unique<TypedKeyCells<T>>(storage));
      });
    }
  }

  bool agree(std::uint32_t row, std::uint32_t other) const {
    return std::all_of(keys_.begin(), keys_.end(),
                       [&](auto const& key) { return key->agree(row, other); });
  }

 private:
  std::vector<std::unique_ptr<KeyCells>> keys_;
};

KeyGroups scanned(Keys const& keys, std::uint32_t rows) {
  KeyGroups groups;
  groups.groupOfRow.reserve(rows);
  std::uint32_t current = 0;
  for (std::uint32_t row = 0; row < rows; ++row) {
    auto const agrees = [&](std::uint32_t firstRow) { return keys.agree(row, firstRow); };
    auto& first = groups.firstRow;
    if (first.empty() || !agrees(first[current])) {
      auto const found = std::find_if(first.begin(), first.end(), agrees);
      current = static_cast<std::uint32_t>(found - first.begin());
      if (found == first.end()) {
        first.push_back(row);
      }
    }
    groups.groupOfRow.push_back(current);
  }
  return groups;
}

}  // namespace

KeyGroups groupRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows) {
  if (keys.empty()) {
    return {std::vector<std::uint32_t>(rows), std::vector<std::uint32_t>(rows == 0 ? 0 : 1)};
  }
  KeyGrouper::Columns columns;
  for (auto const& key : keys) {
    columns.push_back(key.get());
  }
  KeyGrouper grouper;
  return grouper.group(columns, rows) ? grouper.takeGroups() : scanned(Keys(keys), rows);
}
