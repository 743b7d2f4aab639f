#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/data_matrix_types.h"

class moxAggregationFunction;
class moxDataMatrix;
class moxXMLNode;

/// Turns a matrix into a smaller one, with a row for each combination of keys. Registered as
/// "moxDataMatrixAggregator". Constant operations are safe from any thread while nobody changes it.
class moxDataMatrixAggregator : public virtual moxPluginBase {
 public:
  /// False, and nothing changes, for an empty node. load replaces what was there before; it throws
  /// moxPluginNotFound for a function of an unknown kind.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// Adds a function at the end; the same object is kept once.
  virtual void addFunction(std::shared_ptr<moxAggregationFunction> function) = 0;

  /// Adds a key column at the end; a name is kept once.
  virtual void pushIndexColumn(std::string const& columnName) = 0;

  /// A new matrix: the key columns that the input has, the columns of the functions, and with
  /// `countColumn` a column "data_count" of the rows in each group. A group for each combination of
  /// keys, in the order in which they first appear and with the key cells as they first appear;
  /// keys are equal as moxIterator::compare says, nulls among themselves too. Without key columns
  /// all rows are one group; without rows there is no group, and no "data_count".
  ///
  /// With a `tableName` the result goes into the temporary table of that name, and what comes back
  /// is a matrix without columns. Throws moxError when the database refuses it.
  virtual std::shared_ptr<moxDataMatrix> aggregate(std::shared_ptr<moxDataMatrix const> matrix,
                                                   bool countColumn,
                                                   std::string const& tableName) const = 0;

  /// The result's columns as far as the definition knows them: the key columns, which count as
  /// integers since only the input knows more, then the targets of the functions.
  virtual std::vector<std::pair<std::string, moxDataMatrixTypes::Types>> getColumns() const = 0;

  /// The key columns in order.
  virtual std::vector<std::string> getIndexes() const = 0;

  /// A name that is not there changes nothing.
  virtual void removeIndex(std::string const& columnName) = 0;

  virtual std::vector<std::shared_ptr<moxAggregationFunction>> getFunctions() = 0;

  /// By the object; one that is not there changes nothing.
  virtual void removeFunction(std::shared_ptr<moxAggregationFunction const> function) = 0;
};
