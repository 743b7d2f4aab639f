#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix.h"

/// The list of columns. Names are looked up by walking it: a table has tens of columns, and a
/// column may be renamed at any time without the matrix being told, which no index over names would
/// survive.
class DataMatrix final : public moxDataMatrix {
 public:
  std::string name() const override { return "moxDataMatrix"; }

  void addColumn(std::shared_ptr<moxDataMatrixColumn> column) override;
  std::shared_ptr<moxDataMatrixColumn> columnAt(unsigned int index) override;
  std::shared_ptr<moxDataMatrixColumn const> columnAt(unsigned int index) const override;
  std::shared_ptr<moxDataMatrixColumn> columnByName(std::string const& columnName) override;
  std::shared_ptr<moxDataMatrixColumn const> columnByName(
      std::string const& columnName) const override;
  unsigned int columnCount() const override;
  void clearData() override;
  unsigned int rowCount() const override;
  void reserve(unsigned int rows) override;
  std::shared_ptr<moxDataMatrixRow> begin() const override;
  bool appendNullRow() override;
  void dropColumn(std::shared_ptr<moxDataMatrixColumn const> column) override;
  void orderColumnsByName(std::vector<std::string> const& columnNames) override;
  int getColumnIndexByName(std::string const& columnName) const override;

 private:
  /// Empty past the last, -1 included.
  std::shared_ptr<moxDataMatrixColumn> columnOrEmpty(std::size_t index) const;

  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns_;
};
