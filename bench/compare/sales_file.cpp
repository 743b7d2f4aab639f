#include "compare/sales_file.h"

#include <fmt/format.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace bench {
namespace {

std::string line(FloorTable const& table, std::size_t row) {
  return fmt::format("{},{},{},{},{},{}\n", table.number[row],
                     table.ratingNulls.test(row) ? "" : std::to_string(table.rating[row]),
                     table.amountNulls.test(row) ? "" : fmt::format("{:.2f}", table.amount[row]),
                     table.day[row], table.code[row].view(), table.description[row].view());
}

}  // namespace

SalesFile::~SalesFile() {
  std::remove(path_.c_str());
}

void SalesFile::write(FloorTable const& table) const {
  std::ofstream file(path_);
  file << "number,rating,amount,day,code,description\n";
  for (std::size_t row = 0; row < table.rows(); ++row) {
    file << line(table, row);
  }
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + path_);
  }
}

}  // namespace bench
