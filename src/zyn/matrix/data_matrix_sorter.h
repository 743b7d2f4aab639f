#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_sorter.h"

/// Sorts by a permutation of row numbers over packed keys and gathers the rows column by column.
class DataMatrixSorter final : public virtual moxDataMatrixSorter {
 public:
  std::string name() const override { return "moxDataMatrixSorter"; }
  std::shared_ptr<moxDataMatrix> transform(std::shared_ptr<moxDataMatrix> matrix) const override;
  void pushSortColumn(std::string const& columnName, bool descending) override;

 private:
  struct SortKey {
    std::string columnName;
    bool descending;
  };

  std::vector<SortKey> keys_;
};
