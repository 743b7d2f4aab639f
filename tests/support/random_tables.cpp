#include "support/random_tables.h"

#include <array>
#include <limits>
#include <optional>

#include "mox/core/blob.h"
#include "support/foreign_column.h"

namespace mox_test {

namespace {

constexpr std::uint64_t kLong = 14;  // bytes, beyond what a reference to a text holds itself

template <moxDataMatrixTypes::Types kType>
std::shared_ptr<moxDataMatrixColumn> foreign(std::string const& name, Cells const& cells) {
  using T = typename moxDataMatrixValue<kType>::Type;
  std::vector<std::optional<T>> values;
  for (auto const& cell : cells.values) {
    auto const* const value = std::get_if<T>(&cell);
    values.push_back(value != nullptr ? std::optional<T>(*value) : std::nullopt);
  }
  return std::make_shared<ForeignColumn<kType>>(name, std::move(values));
}

std::shared_ptr<moxDataMatrixColumn> foreignColumn(std::string const& name, Cells const& cells) {
  switch (cells.type) {
    case moxDataMatrixTypes::Int:
      return foreign<moxDataMatrixTypes::Int>(name, cells);
    case moxDataMatrixTypes::Double:
      return foreign<moxDataMatrixTypes::Double>(name, cells);
    case moxDataMatrixTypes::Text:
      return foreign<moxDataMatrixTypes::Text>(name, cells);
    case moxDataMatrixTypes::Date:
      return foreign<moxDataMatrixTypes::Date>(name, cells);
    case moxDataMatrixTypes::Blob:
      break;
  }
  return foreign<moxDataMatrixTypes::Blob>(name, cells);
}

double oddNumber(std::size_t choice) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr std::array kNumbers{0.0, -0.0, kInfinity, -kInfinity,
                                std::numeric_limits<double>::quiet_NaN()};
  return kNumbers[choice];
}

}  // namespace

moxDataMatrixTypes::Types RandomTables::type() {
  return static_cast<moxDataMatrixTypes::Types>(pick(options_.blobs ? 5 : 4));
}

Cell RandomTables::value(moxDataMatrixTypes::Types type) {
  int const small = static_cast<int>(pick(5)) - 2;
  switch (type) {
    case moxDataMatrixTypes::Int:
      return pick(50) == 0 ? std::numeric_limits<int>::min() : small;
    case moxDataMatrixTypes::Double:
      return pick(5) == 0 ? oddNumber(pick(options_.nan ? 5 : 4)) : small / 2.0;
    case moxDataMatrixTypes::Text:
      return std::string(pick(3) == 0 ? kLong + pick(3) : pick(3),
                         static_cast<char>('a' + pick(2)));
    case moxDataMatrixTypes::Date:
      return moment("2024-03-05 10:20:3" + std::to_string(pick(4)));
    case moxDataMatrixTypes::Blob:
      break;
  }
  return blob(std::string(pick(3), 'b'));
}

Cells RandomTables::cells(moxDataMatrixTypes::Types type, unsigned int rows) {
  bool const nulls = pick(2) == 0;
  Cells made{type, {}};
  for (unsigned int row = 0; row < rows; ++row) {
    if (nulls && pick(4) == 0) {
      made.values.emplace_back(null);
    } else if (row != 0 && pick(3) == 0) {
      made.values.push_back(made.values[pick(row)]);  // the same blob again, too
    } else {
      made.values.push_back(value(type));
    }
  }
  return made;
}

std::shared_ptr<moxDataMatrixColumn> RandomTables::column(std::string const& name,
                                                          moxDataMatrixTypes::Types type,
                                                          unsigned int rows) {
  Cells const made = cells(type, rows);
  if (options_.foreignColumns && pick(6) == 0) {
    return foreignColumn(name, made);
  }
  return pick(2) == 0 ? withHiddenValues(name, made) : mox_test::column(name, made);
}

std::shared_ptr<moxDataMatrixColumn> RandomTables::withHiddenValues(std::string const& name,
                                                                    Cells const& cells) {
  Cells filled = cells;
  for (Cell& cell : filled.values) {
    if (cell == Cell(null)) {
      cell = value(cells.type);
    }
  }
  auto made = mox_test::column(name, filled);
  auto const cursor = made->begin();
  for (unsigned int row = 0; row < cells.values.size(); ++row) {
    if (cells.values[row] == Cell(null)) {
      cursor->goTo(row);
      cursor->setNull();
    }
  }
  return made;
}

std::shared_ptr<moxDataMatrix> RandomTables::table() {
  auto made = matrix({});
  auto const rows = static_cast<unsigned int>(pick(8) == 0 ? 0 : pick(options_.maxRows + 1));
  std::size_t const columns = 1 + pick(options_.maxColumns);
  for (std::size_t i = 0; i < columns; ++i) {
    std::size_t const number = options_.repeatedNames && pick(8) == 0 ? pick(columns) : i;
    bool const isLonger = options_.unevenColumns && pick(10) == 0;
    unsigned int const length = rows + (isLonger ? static_cast<unsigned int>(pick(4)) : 0);
    made->addColumn(column("c" + std::to_string(number), type(), length));
  }
  return made;
}

std::string RandomTables::columnOf(moxDataMatrix const& table) {
  return table.columnAt(static_cast<unsigned int>(pick(table.columnCount())))->getName();
}

}  // namespace mox_test
