#pragma once

#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"

/// The rows of several sources, one below the other. Registered as "moxUnionDataSource".
class moxUnionDataSource : public virtual moxDataSource {
 public:
  /// A source, and those of its columns that take part, in the order in which they line up.
  struct UnionData {
    std::string sourceName;
    std::vector<moxDataSourceColumnType> columns;
  };

  /// The first source gives the columns their names and kinds. `gerarTabelaTemporaria`: the rows
  /// also go into a temporary table of the result's name.
  virtual void setSources(std::vector<UnionData> const& sources, bool gerarTabelaTemporaria) = 0;
  virtual std::vector<UnionData> getSources() const = 0;
  virtual bool getGerarTabelaTemporaria() const = 0;
};
