#pragma once

#include <cstdint>
#include <memory>
#include <ranges>
#include <string>
#include <vector>

#include "zyn/matrix/column_storage.h"

/// Fills an empty storage with rows of another, in the order of the row numbers. Texts share the
/// source's bytes instead of copying them.
template <class T, class Rows>
void gatherRows(ColumnStorage<T> const& source, Rows const& rows, ColumnStorage<T>& target) {
  auto const* const cells = source.values.cells();
  auto const picked = rows | std::views::transform([cells](std::uint32_t row) -> auto const& {
                        return cells[row];
                      });
  target.values.array().assign(picked.begin(), picked.end());
  if constexpr (std::is_same_v<T, std::string>) {
    target.values.arena().share(source.values.arena());
  }
  if (source.nulls.any()) {
    target.nulls.assign(rows.size(), [&](std::size_t i) { return source.nulls.test(rows[i]); });
  } else {
    target.nulls.pushValid(rows.size());
  }
}
