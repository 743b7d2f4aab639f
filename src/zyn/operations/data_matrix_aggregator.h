#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/matrix/data_matrix_aggregator.h"

class DataMatrixAggregator final : public virtual moxDataMatrixAggregator {
 public:
  using Function = std::shared_ptr<moxAggregationFunction>;

  std::string name() const override { return "moxDataMatrixAggregator"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;
  void addFunction(Function function) override;
  void pushIndexColumn(std::string const& columnName) override;
  std::shared_ptr<moxDataMatrix> aggregate(std::shared_ptr<moxDataMatrix const> matrix,
                                           bool countColumn,
                                           std::string const& tableName) const override;
  std::vector<std::pair<std::string, moxDataMatrixTypes::Types>> getColumns() const override;
  std::vector<std::string> getIndexes() const override { return indexes_; }
  void removeIndex(std::string const& columnName) override;
  std::vector<Function> getFunctions() override { return functions_; }
  void removeFunction(std::shared_ptr<moxAggregationFunction const> function) override;

 private:
  std::vector<std::string> indexes_;
  std::vector<Function> functions_;
};
