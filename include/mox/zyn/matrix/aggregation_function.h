#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataMatrix;
class moxDataMatrixColumn;
class moxDataMatrixRow;
class moxIterator;
class moxXMLNode;

/// What an aggregator computes for each group of rows. A definition's function says what to compute
/// and is read by any number of threads; a run computes with functions of its own, made anew by
/// name(). Registered under the names of the functions: "moxIntegralSum", "moxTextAppend"...
class moxAggregationFunction : public virtual moxPluginBase {
 public:
  /// The names of source and target column. False, and nothing changes, for an empty node.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// New columns, without rows, for what is computed: the target first.
  virtual std::vector<std::shared_ptr<moxDataMatrixColumn>> columns() = 0;

  /// Cursors on the columns that columns() gave, in their order; the caller moves them to the row
  /// of a group. Begins a new run: what was found in an earlier input is forgotten.
  virtual void setIterators(std::vector<std::shared_ptr<moxIterator>> iterators) = 0;

  /// Takes the input row into the group on which the cursors stand. A null counts for nothing.
  /// False when the input lacks the source column, or has another kind of values there, and before
  /// setIterators; the cell then stays null.
  virtual bool compute(std::shared_ptr<moxDataMatrixRow const> row) = 0;

  /// Finishes the cells of the whole result, once all rows were taken in.
  virtual void posProcess(std::shared_ptr<moxDataMatrix> result) = 0;

  /// Those of its columns that only serve the computation.
  virtual std::vector<std::string> getMetaColumns() const = 0;
};

/// A function of one source column and one target column.
class moxCommonAggregationFunction : public virtual moxAggregationFunction {
 public:
  virtual void setSourceColumn(std::string const& columnName) = 0;
  virtual std::string getSourceColumn() const = 0;
  virtual void setTargetColumn(std::string const& columnName) = 0;
  virtual std::string getTargetColumn() const = 0;
};

/// The five families: the kind of values in the source column and in the target column.
class moxIntegralAggregationFunction : public virtual moxCommonAggregationFunction {};
class moxDoubleAggregationFunction : public virtual moxCommonAggregationFunction {};
class moxTextAggregationFunction : public virtual moxCommonAggregationFunction {};
class moxDateAggregationFunction : public virtual moxCommonAggregationFunction {};
class moxBlobAggregationFunction : public virtual moxCommonAggregationFunction {};
