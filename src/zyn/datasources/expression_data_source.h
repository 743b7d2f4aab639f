#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/expression_data_source.h"
#include "zyn/datasources/column_expression.h"
#include "zyn/datasources/derived_data_source.h"
#include "zyn/items/typed_collection.h"

/// The definition of computed columns for another source's matrix.
class ExpressionDataSource final : public DerivedDataSource<moxExpressionDataSource>,
                                   public std::enable_shared_from_this<ExpressionDataSource> {
 public:
  using ColumnExp = ColumnExpression;

  std::string name() const override { return "moxExpressionDataSource"; }

  /// Adds to the columns that are there, and so is meant for a new object. A column that refuses
  /// its element ends the list. Throws moxError "Expressão inválida: " with the class for an
  /// element that is no computed column, and moxPluginNotFound for a class that nobody has
  /// registered.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// The computed columns alone, all of them as doubles.
  std::vector<moxDataSourceColumnType> getColumns() const override;

  /// The input's, and behind them the computed ones.
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const& sources) const override;
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  std::string getSource() const override { return source_; }
  void setSource(std::string const& source) override { source_ = source; }
  Expressions& expressions() override { return expressions_; }
  Expressions const& expressions() const override { return expressions_; }
  bool getConvertZeroToNull() const override { return convertZeroToNull_; }
  void setConvertZeroToNull(bool convertZeroToNull) override {
    convertZeroToNull_ = convertZeroToNull;
  }

 private:
  std::vector<std::string> inputNames() const override { return {source_}; }

  std::string source_;
  moxNamedSortableTypedCollectionImplementation<moxColumnExpression, ExpressionDataSource,
                                                &moxColumnExpression::columnName>
      expressions_;
  bool convertZeroToNull_ = false;
};
