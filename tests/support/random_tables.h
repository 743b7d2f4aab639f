#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "mox/zyn/matrix/data_matrix.h"
#include "support/matrix_builder.h"

namespace mox_test {

/// What random tables may hold; by default all that an engine can meet.
struct RandomTableOptions {
  unsigned int maxColumns = 5;
  unsigned int maxRows = 40;
  bool nan = true;
  bool blobs = true;
  bool foreignColumns = true;  // that share no code with the module's own
  bool repeatedNames = true;
  bool unevenColumns = true;  // some with rows that the table does not have
};

/// Small tables for property tests: few different values, so that keys meet; nulls, -0.0,
/// infinities and NaN, texts short and long, seconds that differ below the second, values that stay
/// under a null, tables without rows. The same seed gives the same tables.
class RandomTables {
 public:
  explicit RandomTables(std::uint64_t seed, RandomTableOptions options = {})
      : random_(seed), options_(options) {}

  std::size_t pick(std::size_t below) { return random_() % below; }

  std::shared_ptr<moxDataMatrix> table();

  /// A column of `rows` cells.
  std::shared_ptr<moxDataMatrixColumn> column(std::string const& name,
                                              moxDataMatrixTypes::Types type, unsigned int rows);

  /// The name of one of the table's columns; the table has some.
  std::string columnOf(moxDataMatrix const& table);

  moxDataMatrixTypes::Types type();

 private:
  std::shared_ptr<moxDataMatrixColumn> withHiddenValues(std::string const& name,
                                                        Cells const& cells);
  Cell value(moxDataMatrixTypes::Types type);
  Cells cells(moxDataMatrixTypes::Types type, unsigned int rows);

  std::mt19937_64 random_;
  RandomTableOptions options_;
};

}  // namespace mox_test
