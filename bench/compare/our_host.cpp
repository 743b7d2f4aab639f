#include "compare/our_host.h"

#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace bench {
namespace {

std::filesystem::path moduleBesideProgram() {
  auto const folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  return (folder / ".." / "lib" / "libmox_zyn.so").lexically_normal();
}

mox::core::Settings databaseSettings(std::string const& url) {
  mox::core::Settings settings;
  if (!url.empty()) {
    settings.set("database", "url", {url});
  }
  return settings;
}

mox::core::Application& started(mox::core::Application& application) {
  application.loadModule(moduleBesideProgram());
  application.start();
  return application;
}

template <class T, class ValueAt>
void requireEqualColumn(moxDataMatrix& matrix, char const* name, std::size_t rows,
                        FloorNulls const* nulls, ValueAt valueAt) {
  auto const column =
      std::dynamic_pointer_cast<moxDataMatrixTypedColumn<T>>(matrix.columnByName(name));
  if (!column || column->numRows() != rows) {
    throw std::runtime_error(std::string("wrong result: column '") + name +
                             "' is missing, of another kind, or of another length");
  }
  for (std::size_t i = 0; i < rows; ++i) {
    auto const row = static_cast<unsigned int>(i);
    bool const null = nulls != nullptr && nulls->test(i);
    if (column->isNull(row) != null || (!null && column->getValue(row) != valueAt(i))) {
      throw std::runtime_error(std::string("wrong result: column '") + name + "', row " +
                               std::to_string(i));
    }
  }
}

template <class T>
std::shared_ptr<moxDataMatrixTypedColumn<T>> newColumn(OurHost& host, moxDataMatrix& matrix,
                                                       char const* kind, char const* name) {
  auto column = host.get<moxDataMatrixTypedColumn<T>>(kind);
  column->setName(name);
  matrix.addColumn(column);
  return column;
}

template <class T, class ValueAt>
void fill(moxDataMatrixTypedColumn<T>& column, std::size_t rows, FloorNulls const* nulls,
          ValueAt valueAt) {
  column.reserve(static_cast<int>(rows));
  for (std::size_t row = 0; row < rows; ++row) {
    bool const null = nulls != nullptr && nulls->test(row);
    null ? column.appendNull() : column.appendValue(valueAt(row));
  }
}

}  // namespace

OurHost::OurHost(std::string const& databaseUrl)
    : application_(databaseSettings(databaseUrl)),
      session_(started(application_).sessions().openAnonymous()),
      scope_(session_) {}

std::shared_ptr<moxDataMatrix> OurHost::matrixOf(FloorTable const& table) {
  auto matrix = get<moxDataMatrix>("moxDataMatrix");
  auto const ints = [&](char const* name, auto const& cells, FloorNulls const* nulls) {
    auto const column = newColumn<int>(*this, *matrix, "moxDataMatrixIntColumn", name);
    fill(*column, table.rows(), nulls, [&](std::size_t row) { return cells[row]; });
  };
  auto const texts = [&](char const* name, auto const& cells) {
    auto const column = newColumn<std::string>(*this, *matrix, "moxDataMatrixTextColumn", name);
    fill(*column, table.rows(), nullptr,
         [&](std::size_t row) { return std::string(cells[row].view()); });
  };
  ints("number", table.number, nullptr);
  ints("rating", table.rating, &table.ratingNulls);
  fill(*newColumn<double>(*this, *matrix, "moxDataMatrixDoubleColumn", "amount"), table.rows(),
       &table.amountNulls, [&](std::size_t row) { return table.amount[row]; });
  fill(*newColumn<datetime_t>(*this, *matrix, "moxDataMatrixDateColumn", "day"), table.rows(),
       nullptr, [&](std::size_t row) { return datetime_t::fromTime_t(table.day[row]); });
  texts("code", table.code);
  texts("description", table.description);
  return matrix;
}

void requireEqual(FloorTable const& expected, moxDataMatrix& found) {
  std::size_t const rows = expected.rows();
  requireEqualColumn<int>(found, "number", rows, nullptr,
                          [&](auto i) { return expected.number[i]; });
  requireEqualColumn<int>(found, "rating", rows, &expected.ratingNulls,
                          [&](auto i) { return expected.rating[i]; });
  requireEqualColumn<double>(found, "amount", rows, &expected.amountNulls,
                             [&](auto i) { return expected.amount[i]; });
  requireEqualColumn<datetime_t>(found, "day", rows, nullptr,
                                 [&](auto i) { return datetime_t::fromTime_t(expected.day[i]); });
  requireEqualColumn<std::string>(found, "code", rows, nullptr,
                                  [&](auto i) { return expected.code[i].view(); });
  requireEqualColumn<std::string>(found, "description", rows, nullptr,
                                  [&](auto i) { return expected.description[i].view(); });
}

}  // namespace bench
