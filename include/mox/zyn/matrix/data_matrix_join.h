#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataMatrix;

/// Sets several matrices side by side, row by place. Registered as "moxDataMatrixJoin", a new one
/// on every call; used by one thread. The sources must not change while it holds them.
class moxDataMatrixJoin : public virtual moxPluginBase {
 public:
  /// Adds a source and those of its columns that take part. Throws moxError "Coluna " + name +
  /// " não localizada.", and adds nothing, for a column that the matrix lacks;
  /// std::invalid_argument for an empty matrix.
  virtual void pushSourceDataMatrix(std::shared_ptr<moxDataMatrix> const& matrix,
                                    std::vector<std::string> const& columnNames) = 0;

  /// A new matrix with the columns of all sources, also of one name, and as many rows as the
  /// longest source; the shorter ones end in nulls. May be called again.
  virtual std::shared_ptr<moxDataMatrix> process() = 0;
};
