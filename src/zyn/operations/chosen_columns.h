#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zyn/matrix/column_copy.h"

/// A matrix that takes part in an operation, and the columns that it brings, whose storage can be
/// opened.
struct ChosenColumns {
  std::shared_ptr<moxDataMatrix> matrix;
  std::vector<MatrixColumn> columns;

  std::uint32_t rows() const { return matrix->rowCount(); }
};

/// The first column of each name. Throws moxError "Coluna " + name + " não localizada." for a name
/// that the matrix lacks, std::invalid_argument for an empty matrix.
ChosenColumns chooseColumns(std::shared_ptr<moxDataMatrix> const& matrix,
                            std::vector<std::string> const& columnNames);
