#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/aggregation_data_source.h"
#include "zyn/datasources/derived_data_source.h"

/// The definition of an aggregation. Its aggregator says how rows are grouped; runs in any number
/// of threads read both, and nobody changes them then.
class AggregationDataSource final : public DerivedDataSource<moxAggregationDataSource>,
                                    public std::enable_shared_from_this<AggregationDataSource> {
 public:
  /// The column that tells how many rows each group has.
  static constexpr char const* kCountColumn = "data_count";

  AggregationDataSource();

  std::string name() const override { return "moxAggregationDataSource"; }

  /// False also without an aggregator's element, when the attributes are read already. Throws
  /// moxPluginNotFound for a function of an unknown kind.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// Only the source knows the kinds of the columns that rows are grouped by: they are integers as
  /// long as it is not found, or does not name them.
  std::vector<moxDataSourceColumnType> getColumns() const override;

  /// Those columns of the source that rows are grouped by; what is computed is of no other source.
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const& sources) const override;
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setDataSourceName(std::string const& dataSourceName) override {
    dataSource_ = dataSourceName;
  }
  std::string getDataSourceName() const override { return dataSource_; }
  std::shared_ptr<moxDataMatrixAggregator> getAggregator() const override { return aggregator_; }
  void reset() override;
  bool getGerarTabelaTemporaria() const override { return gerarTabelaTemporaria_; }
  void setGerarTabelaTeporaria(bool gerarTabelaTemporaria) override {
    gerarTabelaTemporaria_ = gerarTabelaTemporaria;
  }
  bool getCountColumn() const override { return countColumn_; }
  void setCountColumn(bool countColumn) override { countColumn_ = countColumn; }

 protected:
  std::vector<std::string> inputNames() const override { return {dataSource_}; }

 private:
  std::string dataSource_;
  std::shared_ptr<moxDataMatrixAggregator> aggregator_;  // never empty
  bool gerarTabelaTemporaria_ = false;
  bool countColumn_ = false;
};
