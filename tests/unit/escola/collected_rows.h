#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "escola/generator/generation.h"

namespace escola_test {

/// One value that was handed on, on its own feet.
struct Value {
  escola::Cell::Kind kind;
  std::int64_t number;
  std::string text;

  bool isNull() const { return kind == escola::Cell::Kind::kNull; }
  bool operator==(Value const&) const = default;
};

using Row = std::vector<Value>;

/// A sink that keeps all rows in memory.
class CollectedRows : public escola::RowSink {
 public:
  using RowSink::row;

  void row(escola::TableId table, std::span<escola::Cell const> cells) override {
    Row& added = rows_[static_cast<std::size_t>(table)].emplace_back();
    for (escola::Cell const& cell : cells) {
      added.push_back({cell.kind(), cell.number(), std::string(cell.text())});
    }
  }

  std::vector<Row> const& of(escola::TableId table) const {
    return rows_[static_cast<std::size_t>(table)];
  }

 private:
  std::array<std::vector<Row>, static_cast<std::size_t>(escola::TableId::kPayments) + 1> rows_;
};

inline CollectedRows collect(escola::Scale const& scale, escola::Settings const& settings = {}) {
  CollectedRows rows;
  escola::generate(settings, scale, rows);
  return rows;
}

/// The tiny school, made once for all tests that only look at it.
inline CollectedRows const& tinySchool() {
  static CollectedRows const rows = collect(escola::parseScale("tiny"));
  return rows;
}

/// Place of a column in its table.
inline std::size_t columnIndex(escola::TableId table, std::string_view name) {
  auto const& columns = escola::tableOf(table).columns;
  for (std::size_t index = 0; index < columns.size(); ++index) {
    if (columns[index].name == name) {
      return index;
    }
  }
  throw std::logic_error("no column " + std::string(name) + " in " +
                         std::string(escola::tableOf(table).name));
}

/// All values of a column.
inline std::vector<Value> column(CollectedRows const& rows, escola::TableId table,
                                 std::string_view name) {
  std::size_t const index = columnIndex(table, name);
  std::vector<Value> values;
  for (Row const& row : rows.of(table)) {
    values.push_back(row[index]);
  }
  return values;
}

}  // namespace escola_test
