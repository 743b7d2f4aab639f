#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_union.h"
#include "zyn/operations/chosen_columns.h"

class DataMatrixUnion final : public virtual moxDataMatrixUnion {
 public:
  std::string name() const override { return "moxDataMatrixUnion"; }
  void pushSourceDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix,
                            std::vector<std::string> const& columnNames) override;
  std::shared_ptr<moxDataMatrix> process(std::string const& tableName) override;

 private:
  MatrixColumn stacked(std::size_t position, std::size_t rows) const;

  std::vector<ChosenColumns> sources_;
};
