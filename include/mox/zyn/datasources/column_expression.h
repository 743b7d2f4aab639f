#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/core/plugin_base.h"

class moxXMLNode;

/// A computed column: its name, the expression that gives its cells, and how they are kept.
/// Registered as "moxColumnExpression"; constant once its definition is loaded.
class moxColumnExpression : public virtual moxPluginBase {
 public:
  /// The kind of the column. Both enumerations are numbers in files, which may hold others.
  enum Tipo : int {
    kInteiro = 0,  // int
    kDecimal = 1,  // double, as is any other number
  };

  /// What becomes of decimal places beyond those wanted.
  enum Op : int {
    kArredonda = 0,  // rounded, halves away from zero
    kTrunca = 1,     // cut off, as with any other number
  };

  /// False, and nothing changes, for an empty node.
  virtual bool load(std::shared_ptr<moxXMLNode> const& node) = 0;
  virtual bool save(std::shared_ptr<moxXMLNode> const& node) const = 0;

  virtual std::string columnName() const = 0;
  virtual void setColumnName(std::string const& columnName) = 0;

  virtual std::string getExpression() const = 0;
  virtual void setExpression(std::string const& expression) = 0;

  virtual Tipo tipo() const = 0;
  virtual void setTipo(Tipo tipo) = 0;

  /// Decimal places; negative for as many as the value has.
  virtual void setDecimalPrecision(int decimals, Op operation) = 0;
  virtual std::pair<int, Op> getDecimalPrecision() const = 0;
};
