#pragma once

#include <memory>
#include <string>
#include <vector>

class moxDataMatrixSQLFilter;

/// A value as it is bound to a mark.
struct moxBoundValue {
  enum class Type { kNull, kInt, kDouble, kText, kDate, kDateTime, kBlob };

  Type type = Type::kNull;

  /// Decimal, with "." and as many digits as tell the number apart; a text as it is; yyyy-mm-dd,
  /// and yyyy-mm-dd hh:mm:ss; a blob's size in bytes. Empty for a null.
  std::string text;
};

/// What one filter puts into a statement.
struct moxComposedFilter {
  std::shared_ptr<moxDataMatrixSQLFilter const> filter;  // never empty
  std::string sql;                                       // empty when it adds no condition
  std::vector<moxBoundValue> values;
};

/// A select with its values, as a loader sends it.
struct moxComposedSelect {
  std::string sql;
  std::vector<moxComposedFilter> parameters;
  std::vector<moxComposedFilter> conditions;  // the unit restriction, where there is one, last
};

/// A second face of the loader, asked for by dynamic_cast: what would be sent, without a database.
class moxSelectComposer {
 public:
  virtual ~moxSelectComposer() = default;

  /// The statement that execute with these units sends, and its values. Changes nothing; throws
  /// what execute throws before it asks the database.
  virtual moxComposedSelect compose(std::vector<int> const& units, int matrixUnit) const = 0;
};
