#include "zyn/operations/chosen_columns.h"

#include <stdexcept>

#include "zyn/operations/operation_errors.h"

ChosenColumns chooseColumns(std::shared_ptr<moxDataMatrix> const& matrix,
                            std::vector<std::string> const& columnNames) {
  if (!matrix) {
    throw std::invalid_argument("an operation takes its columns from a matrix");
  }
  ChosenColumns chosen{matrix, {}};
  for (auto const& name : columnNames) {
    chosen.columns.push_back(requiredColumn(*matrix, name));
  }
  return chosen;
}
