#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/search/search_run_control.h"
#include "mox/zyn/search/search_runner.h"
#include "zyn/search/result_cells.h"
#include "zyn/search/template_split.h"

class moxDataSource;
class moxDataSourceExecutionContext;
class moxSQLDataSource;

/// The engine behind one search screen.
class moxSE_Runner final : public moxSearchRunner, public moxSearchRunControl {
 public:
  std::string name() const override { return "moxSearchRunner"; }

  void load(std::shared_ptr<moxSearch const> search) override;
  void performSql() override;
  std::vector<std::string> columnsHeaders() const override;
  std::string getVisibleValue(unsigned int row, unsigned int column) const override {
    return cells_.text(row, column);
  }
  std::shared_ptr<moxSearch const> getSearch() const override { return search_; }
  std::string getIcon(unsigned int row, unsigned int column) const override {
    return cells_.icon(row, column);
  }
  unsigned int rowCount() const override;
  bool columnHasIcon(unsigned int column) const override { return cells_.hasIcon(column); }
  int getInt(unsigned int row, int column) const override { return cells_.value<int>(row, column); }
  std::string getString(unsigned int row, int column) const override {
    return cells_.value<std::string>(row, column);
  }
  void clearFilters() override { filters_.clear(); }
  void pushFilter(std::shared_ptr<moxDataMatrixSQLFilter> filter) override;
  int getColumnWidth(int column) const override;
  std::shared_ptr<moxSQLDataSourceColumn const> getColumn(unsigned int column) const override;
  int columnIndex(std::string const& name) const override;
  double getDouble(int row, int column) const override;
  datetime_t getDateTime(int row, int column) const override;
  std::shared_ptr<moxDataMatrixRow> getRow(int row) const override;
  void pushFixedFilter(std::shared_ptr<moxDataMatrixSQLFilter const> filter) override;
  std::shared_ptr<moxDataMatrix> getDataMatrix() const override { return matrix_; }

  void performSqlIn(std::shared_ptr<moxDataSourceExecutionContext> context,
                    std::vector<int> const& units) override;
  bool sortRows(std::vector<std::pair<std::string, bool>> const& columns) override;

  /// As splitTemplate.
  SplitTemplate parse(std::string const& text) const { return splitTemplate(text); }

 private:
  moxSearch const& requireSearch() const;
  std::shared_ptr<moxSQLDataSource const> sqlSource() const;
  std::shared_ptr<moxDataMatrix> run(moxDataSource const& source,
                                     std::shared_ptr<moxDataSourceExecutionContext> const& context,
                                     std::vector<int> const& units) const;
  std::shared_ptr<moxDataMatrix> inInitialOrder(std::shared_ptr<moxDataMatrix> matrix) const;
  std::vector<std::string> targetsOf(moxDataSource const& source) const;
  void keep(std::shared_ptr<moxDataMatrix> matrix);
  void giveFilters(moxDataSourceExecutionContext& context, moxDataSource const& source) const;

  std::shared_ptr<moxSearch const> search_;
  std::map<std::string, int> columnIndexes_;
  std::shared_ptr<moxDataMatrix> matrix_;  // of the last run; empty before it
  ResultCells cells_;                      // of matrix_
  std::vector<std::shared_ptr<moxDataMatrixSQLFilter const>> filters_;
};
