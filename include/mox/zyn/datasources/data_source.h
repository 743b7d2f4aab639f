#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/items/zyn_item.h"
#include "mox/zyn/matrix/data_matrix_types.h"

class moxDataSource;
class moxDataSourceExecution;
class moxDataSourceOption;
class moxFilterSpecification;

/// A source by the name it bears in a running context.
using moxNamedDataSource = std::pair<std::string, std::shared_ptr<moxDataSource const>>;

/// A column's name and the kind of its values.
using moxDataSourceColumnType = std::pair<std::string, moxDataMatrixTypes::Types>;

/// The definition of one table of data. It holds no data: a run makes an execution of it, which
/// fills a matrix. Loaded once and then read by any number of runs in any number of threads;
/// nobody changes a definition that a run may see. Always held by shared pointers.
class moxDataSource : public virtual moxZYNItem {
 public:
  /// The source's name.
  std::string description() const override { return getName(); }

  int getTipo() const override { return kDataSource; }

  /// Names and kinds of the columns, in the order of the matrix that a run gives. What a source
  /// takes from others is looked up; one that cannot be found contributes nothing.
  virtual std::vector<moxDataSourceColumnType> getColumns() const = 0;

  virtual void setName(std::string const& name) = 0;
  virtual std::string getName() const = 0;

  /// What a user can be asked for, in the order of the screen.
  virtual std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const = 0;

  /// Choices that the source offers; empty for all but the sorter.
  virtual std::vector<std::shared_ptr<moxDataSourceOption const>> options() const = 0;

  /// Which columns the result has in a context whose sources are `sources`, of which the source
  /// finds its own by the name there.
  virtual std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const& sources) const = 0;

  /// The sources that this one reads. With `deep` also theirs, each before those that read it.
  /// One that cannot be found is left out.
  virtual std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(
      bool deep) const = 0;

  /// A new run of this definition, which keeps the definition alive. Throws std::bad_weak_ptr for a
  /// definition that no shared pointer holds.
  virtual std::shared_ptr<moxDataSourceExecution> createExecution() const = 0;
};
