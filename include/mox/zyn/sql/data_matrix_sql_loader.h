#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDatabaseConnection;
class moxDataMatrix;
class moxDataMatrixSQLFilter;

/// Runs one select and puts its rows into a matrix, keeping each user to the rows of his business
/// units. Registered as "moxDataMatrixSQLLoader". Belongs to one thread; made anew for each run, or
/// reset in between.
class moxDataMatrixSQLLoader : public virtual moxPluginBase {
 public:
  /// Not owned; null means the application's own.
  virtual void setDBConnection(moxDatabaseConnection* connection) = 0;

  /// The statement up to its `where`. `unitColumn` is the (table, column) that holds the row's
  /// business unit, with an empty column for a statement that is not restricted. `whereWord` joins
  /// the conditions, "where" when empty. With `unitMayBeNull` rows that belong to no unit are
  /// everybody's.
  virtual void setSql(std::string const& sql, std::pair<std::string, std::string> const& unitColumn,
                      std::string const& whereWord, bool unitMayBeNull) = 0;

  /// Forgets all filters and parameters, the unit's own included.
  virtual void resetFilters() = 0;

  /// Adds a condition with its values; one that the loader already has is kept once.
  virtual void addFilter(std::shared_ptr<moxDataMatrixSQLFilter const> filter) = 0;
  virtual void removeFilter(std::shared_ptr<moxDataMatrixSQLFilter const> filter) = 0;
  virtual std::vector<std::shared_ptr<moxDataMatrixSQLFilter const>> getFilters() const = 0;

  /// Where the rows go. A matrix without columns gets one for each field. One that has columns
  /// takes the fields of the same names, read as the columns' kinds; other fields are left out, and
  /// a column that gets no field gets no rows.
  virtual void setDataMatrix(std::shared_ptr<moxDataMatrix> matrix) = 0;

  /// Runs the statement for business units and their head office, and replaces the matrix's rows.
  /// Unless one of the filters is on the unit column, a condition on it is added and stays: a
  /// column "id_unidadematriz" is held to `matrixUnit`, any other to `units`, and no units means no
  /// rows. Throws moxError: "Não foram identificadas unidades para processamento", or "Não foi
  /// identificado a unidade matriz para processamento", when the user works by units and they are
  /// missing; and what the database says, after which the matrix may hold a part of the rows.
  virtual void execute(std::vector<int> units, int matrixUnit) = 0;

  /// The same for the current user's default unit and head office; without a user for none.
  virtual void execute() = 0;

  /// Orders by a further column. False, and nothing changes, when `table` or `column` is empty or
  /// the pair is there already.
  virtual bool addOrderColumn(std::string const& table, std::string const& column,
                              bool descending) = 0;
  virtual void clearOrderColumns() = 0;

  /// A parameter gives values to marks that stand in the statement's text, ahead of the filters.
  /// The same one may be added for several marks. Removing takes the first.
  virtual void addParameter(std::shared_ptr<moxDataMatrixSQLFilter const> parameter) = 0;
  virtual void removeParameter(std::shared_ptr<moxDataMatrixSQLFilter const> parameter) = 0;
  virtual std::vector<std::shared_ptr<moxDataMatrixSQLFilter const>> getParameters() const = 0;

  /// As the first setSql, with text that comes before the conditions and after them. The first
  /// clears both.
  virtual void setSql(std::string const& sql, std::string const& beforeWhere,
                      std::string const& afterWhere,
                      std::pair<std::string, std::string> const& unitColumn,
                      std::string const& whereWord, bool unitMayBeNull) = 0;

  /// Text ahead of the whole statement and behind it, parted from it by a blank; empty for none.
  virtual void setPrefixSufix(std::string const& prefix, std::string const& sufix) = 0;
};
