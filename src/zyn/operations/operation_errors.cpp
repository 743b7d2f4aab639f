#include "zyn/operations/operation_errors.h"

#include <algorithm>
#include <charconv>
#include <climits>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/core/settings.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace {

constexpr std::uint64_t kRows = 100'000'000;
constexpr std::uint64_t kColumns = 10'000;
constexpr std::uint64_t kCells = 200'000'000;

constexpr unsigned int kColumnsTold = 30;

/// The limit that the application's administrator set, and never more than a column can count.
std::uint64_t limitOf(char const* key, std::uint64_t byDefault) {
  std::string const text = moxApp->settings().value("limits", key, "");
  std::uint64_t limit = byDefault;
  std::from_chars(text.data(), text.data() + text.size(), limit);
  return std::min<std::uint64_t>(limit, INT_MAX);
}

void refuseBeyond(std::uint64_t count, std::uint64_t limit, std::string const& what,
                  std::string const& key) {
  if (count > limit) {
    throw moxDefaultErrorImpl<moxError>(
        "Resultado grande demais: " + std::to_string(count) + " " + what + ", e o limite é " +
            std::to_string(limit) + ".",
        {"setting: [limits] " + key, "narrow the sources, or raise the limit"});
  }
}

}  // namespace

std::string columnsThere(moxDataMatrix const& matrix) {
  std::string names;
  unsigned int const all = matrix.columnCount();
  for (unsigned int i = 0; i < std::min(all, kColumnsTold); ++i) {
    names += (i == 0 ? "" : ", ") + matrix.columnAt(i)->getName();
  }
  if (all > kColumnsTold) {
    names += " and " + std::to_string(all - kColumnsTold) + " more";
  }
  return all == 0 ? "there are no columns" : "there are: " + names;
}

std::shared_ptr<moxDataMatrixColumn> requiredColumn(moxDataMatrix& matrix,
                                                    std::string const& name) {
  auto column = matrix.columnByName(name);
  if (!column) {
    throw moxDefaultErrorImpl<moxError>("Coluna " + name + " não localizada.",
                                        {columnsThere(matrix)});
  }
  return column;
}

void refuseTooManyRows(std::uint64_t rows) {
  refuseBeyond(rows, limitOf("rows", kRows), "linhas", "rows");
}

void refuseTooManyColumns(std::uint64_t columns) {
  refuseBeyond(columns, limitOf("columns", kColumns), "colunas", "columns");
}

void refuseTooManyCells(std::uint64_t rows, std::uint64_t columns) {
  refuseBeyond(rows * columns, limitOf("cells", kCells), "células", "cells");
}
