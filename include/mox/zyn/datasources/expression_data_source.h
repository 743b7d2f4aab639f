#pragma once

#include <string>

#include "mox/zyn/datasources/column_expression.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/items/typed_collection.h"

/// Another source's very matrix, with computed columns added to it. Registered as
/// "moxExpressionDataSource".
class moxExpressionDataSource : public virtual moxDataSource {
 public:
  using Expressions = moxNamedSortableTypedCollection<moxColumnExpression>;

  /// The source whose matrix gets the columns.
  virtual std::string getSource() const = 0;
  virtual void setSource(std::string const& source) = 0;

  /// The computed columns in order; each may use those before it. The list belongs to the
  /// definition.
  virtual Expressions& expressions() = 0;
  virtual Expressions const& expressions() const = 0;

  /// Whether a cell of 0 becomes a null.
  virtual bool getConvertZeroToNull() const = 0;
  virtual void setConvertZeroToNull(bool convertZeroToNull) = 0;
};
