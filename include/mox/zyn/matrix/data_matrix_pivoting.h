#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataMatrix;
class moxDataMatrixColumn;
class moxGenericFormatter;

/// Turns a matrix into a cross table. Registered as "moxDataMatrixPivoting", a new one on every
/// call; used by one thread.
class moxDataMatrixPivoting : public virtual moxPluginBase {
 public:
  /// A source column whose values become columns, and what makes a label of a value; without a
  /// formatter the one of its kind of values does.
  struct ColumnData {
    std::string columnName;
    std::shared_ptr<moxGenericFormatter const> formatter;
  };

  /// A source column that stays as a key of the rows.
  struct RowData {
    std::string columnName;
  };

  /// A source column that fills the cells, and the registered name of the aggregation function.
  struct CellData {
    std::string columnName;
    std::string aggregation;
  };

  /// (source column, result column)
  using Relation =
      std::pair<std::shared_ptr<moxDataMatrixColumn>, std::shared_ptr<moxDataMatrixColumn>>;

  /// A new matrix: the row keys, then a column for each combination of values that occurs, in the
  /// order in which the values first appear, the first column's outermost, and within it one for
  /// each cell. Labels are joined by a blank, with the cell's name behind when there are several
  /// cells. A row for each combination of row keys in the order of first appearance. Appends to
  /// `relations`, which may be null, a pair for each row key.
  ///
  /// Throws moxError "Coluna " + name + " não localizada." for a column that the matrix lacks, and
  /// for a result beyond what the host allows; moxPluginNotFound for an unknown function.
  virtual std::shared_ptr<moxDataMatrix> process(std::shared_ptr<moxDataMatrix> const& matrix,
                                                 std::vector<Relation>* relations) = 0;

  /// The lists keep the order of the calls; removing takes the first of that name.
  virtual void addColumn(std::string const& columnName,
                         std::shared_ptr<moxGenericFormatter const> formatter) = 0;
  virtual void removeColumn(std::string const& columnName) = 0;
  virtual std::vector<ColumnData> getColumns() = 0;

  virtual void addCell(std::string const& columnName, std::string const& aggregation) = 0;
  virtual void removeCell(std::string const& columnName) = 0;
  virtual std::vector<CellData> getCells() = 0;

  virtual void addRow(std::string const& columnName) = 0;
  virtual void removeRow(std::string const& columnName) = 0;
  virtual std::vector<RowData> getRows() = 0;
};
