#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataMatrix;

/// Stacks the rows of several matrices. Registered as "moxDataMatrixUnion", a new one on every
/// call; used by one thread. The sources must not change while it holds them.
class moxDataMatrixUnion : public virtual moxPluginBase {
 public:
  /// Adds a source and those of its columns that take part, in the order in which they line up with
  /// the other sources' columns. Throws moxError "Coluna " + name + " não localizada.", and adds
  /// nothing, for a column that the matrix lacks; std::invalid_argument for an empty matrix.
  virtual void pushSourceDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix,
                                    std::vector<std::string> const& columnNames) = 0;

  /// A new matrix with the columns of the first source and the rows of all. Columns line up by
  /// place: whole numbers become doubles where the first source has doubles, any other difference
  /// of kinds leaves nulls, and so does a source with fewer columns. With a `tableName` the result
  /// also goes into the temporary table of that name. May be called again.
  virtual std::shared_ptr<moxDataMatrix> process(std::string const& tableName) = 0;
};
