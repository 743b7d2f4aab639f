#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/zyn/datasources/column_expression.h"

/// A computed column of a definition.
class ColumnExpression final : public moxColumnExpression {
 public:
  std::string name() const override { return "moxColumnExpression"; }

  /// Replaces what is there.
  bool load(std::shared_ptr<moxXMLNode> const& node) override;

  /// Decimal places that are not limited leave no attributes.
  bool save(std::shared_ptr<moxXMLNode> const& node) const override;

  std::string columnName() const override { return columnName_; }
  void setColumnName(std::string const& columnName) override { columnName_ = columnName; }
  std::string getExpression() const override { return expression_; }
  void setExpression(std::string const& expression) override { expression_ = expression; }
  Tipo tipo() const override { return tipo_; }
  void setTipo(Tipo tipo) override { tipo_ = tipo; }
  void setDecimalPrecision(int decimals, Op operation) override {
    precision_ = {decimals, operation};
  }
  std::pair<int, Op> getDecimalPrecision() const override { return precision_; }

 private:
  static constexpr std::pair<int, Op> kNoPrecision{-1, kArredonda};

  std::string columnName_;
  std::string expression_;
  Tipo tipo_ = kInteiro;
  std::pair<int, Op> precision_ = kNoPrecision;
};
