#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/pivot_data_source.h"
#include "zyn/datasources/derived_data_source.h"

/// The definition of a cross table.
class DataSourcePivoting final : public DerivedDataSource<moxPivotDataSource>,
                                 public std::enable_shared_from_this<DataSourcePivoting> {
 public:
  /// What one run's cross table was made of.
  class ProcessRelation final : public moxPivotDataSource::moxProcessRelation {
   public:
    explicit ProcessRelation(std::vector<Relation> relation) : relation_(std::move(relation)) {}

    std::string name() const override { return "moxProcessRelation"; }
    std::vector<Relation> getRelation() const override { return relation_; }

   private:
    std::vector<Relation> const relation_;
  };

  std::string name() const override { return "moxDataSourcePivoting"; }

  /// Replaces what is there.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// Empty: the columns of a cross table are known when it is made.
  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setDataSourceName(std::string const& dataSourceName) override {
    dataSourceName_ = dataSourceName;
  }
  std::string getDataSourceName() const override { return dataSourceName_; }
  std::vector<Pair> getCellsPivot() const override { return cellsPivot_; }
  std::vector<Pair> getColumnsPivot() const override { return columnsPivot_; }
  std::vector<std::string> getRowsPivot() const override { return rowsPivot_; }
  void setCellsPivot(std::vector<Pair> const& cells) override { cellsPivot_ = cells; }
  void setColumnsPivot(std::vector<Pair> const& columns) override { columnsPivot_ = columns; }
  void setRowsPivot(std::vector<std::string> const& rows) override { rowsPivot_ = rows; }

 private:
  std::vector<std::string> inputNames() const override { return {dataSourceName_}; }

  std::string dataSourceName_;
  std::vector<std::string> rowsPivot_;
  std::vector<Pair> columnsPivot_;  // (column, formatter)
  std::vector<Pair> cellsPivot_;    // (column, aggregation function)
};
