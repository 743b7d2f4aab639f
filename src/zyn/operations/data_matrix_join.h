#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_join.h"
#include "zyn/operations/chosen_columns.h"

class DataMatrixJoin final : public virtual moxDataMatrixJoin {
 public:
  std::string name() const override { return "moxDataMatrixJoin"; }
  void pushSourceDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix,
                            std::vector<std::string> const& columnNames) override;
  std::shared_ptr<moxDataMatrix> process() override;

 private:
  std::vector<ChosenColumns> sources_;
};
