#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_pivoting.h"

struct KeyGroups;

class DataMatrixPivoting final : public virtual moxDataMatrixPivoting {
 public:
  std::string name() const override { return "moxDataMatrixPivoting"; }
  std::shared_ptr<moxDataMatrix> process(std::shared_ptr<moxDataMatrix> const& matrix,
                                         std::vector<Relation>* relations) override;

  void addColumn(std::string const& columnName,
                 std::shared_ptr<moxGenericFormatter const> formatter) override;
  void removeColumn(std::string const& columnName) override;
  std::vector<ColumnData> getColumns() override { return columns_; }

  void addCell(std::string const& columnName, std::string const& aggregation) override;
  void removeCell(std::string const& columnName) override;
  std::vector<CellData> getCells() override { return cells_; }

  void addRow(std::string const& columnName) override;
  void removeRow(std::string const& columnName) override;
  std::vector<RowData> getRows() override { return rows_; }

 private:
  std::shared_ptr<moxDataMatrix> aggregated(std::shared_ptr<moxDataMatrix> const& matrix) const;
  std::vector<std::string> keyNames() const;
  void checkColumns(moxDataMatrix& matrix) const;
  void addCells(moxDataMatrix& source, KeyGroups const& groups, moxDataMatrix& result) const;

  std::vector<ColumnData> columns_;
  std::vector<CellData> cells_;
  std::vector<RowData> rows_;
};
