#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxDataMatrix;

/// Makes sorted copies of matrices. Registered as "moxDataMatrixSorter". Constant operations are
/// safe from any thread while nobody pushes a column.
class moxDataMatrixSorter : public virtual moxPluginBase {
 public:
  /// A new matrix with columns of the same kinds, names and formatters, and the rows in order; the
  /// input stays as it is. The order is that of moxIterator::compare, turned round for a descending
  /// column, so that nulls stand first, or last in descending order; a NaN stands between the nulls
  /// and all other numbers. Rows with equal keys keep the order they had.
  ///
  /// The very input comes back for an empty pointer, without sort columns, and when rows are there
  /// but some sort column is not. A matrix without rows gives a new empty one, whatever the sort
  /// columns.
  virtual std::shared_ptr<moxDataMatrix> transform(std::shared_ptr<moxDataMatrix> matrix) const = 0;

  /// Adds a further sort column, which decides between rows equal so far.
  virtual void pushSortColumn(std::string const& columnName, bool descending) = 0;
};
