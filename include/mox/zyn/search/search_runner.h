#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/datetime.h"
#include "mox/core/plugin_base.h"

class moxDataMatrix;
class moxDataMatrixRow;
class moxDataMatrixSQLFilter;
class moxSearch;
class moxSQLDataSourceColumn;

/// The engine behind a search screen: runs a search into one matrix in memory and answers for its
/// cells. Rows and columns count from 0; what lies outside has a neutral answer and is no failure,
/// and before the first run everything lies outside. Registered as "moxSearchRunner", a new one on
/// every call; used by one thread.
class moxSearchRunner : public virtual moxPluginBase {
 public:
  /// Binds the runner to a search. Throws what the search's source throws when it is looked up.
  virtual void load(std::shared_ptr<moxSearch const> search) = 0;

  /// Runs the search with the filters given so far. Throws what the run throws, and keeps the rows
  /// of the run before then.
  virtual void performSql() = 0;

  /// The headings of the columns that a user sees or may choose to see.
  virtual std::vector<std::string> columnsHeaders() const = 0;

  /// The cell as it is shown, by the formatter of its column; empty outside and for a null.
  virtual std::string getVisibleValue(unsigned int row, unsigned int column) const = 0;

  virtual std::shared_ptr<moxSearch const> getSearch() const = 0;

  /// The name of the picture in front of the cell; empty for none.
  virtual std::string getIcon(unsigned int row, unsigned int column) const = 0;

  virtual unsigned int rowCount() const = 0;
  virtual bool columnHasIcon(unsigned int column) const = 0;

  /// The cell itself: 0 or empty for a null, for a column of another type, and outside.
  virtual int getInt(unsigned int row, int column) const = 0;
  virtual std::string getString(unsigned int row, int column) const = 0;

  /// Filters for the SQL source behind the search; they stay until they are cleared.
  virtual void clearFilters() = 0;
  virtual void pushFilter(std::shared_ptr<moxDataMatrixSQLFilter> filter) = 0;

  /// In pixels; 100 for a column that there is not.
  virtual int getColumnWidth(int column) const = 0;

  /// The definition of the column in the SQL source; empty outside.
  virtual std::shared_ptr<moxSQLDataSourceColumn const> getColumn(unsigned int column) const = 0;

  /// The place of a column by its name; -1 for none.
  virtual int columnIndex(std::string const& name) const = 0;

  virtual double getDouble(int row, int column) const = 0;
  virtual datetime_t getDateTime(int row, int column) const = 0;

  /// A new cursor at the row; empty outside.
  virtual std::shared_ptr<moxDataMatrixRow> getRow(int row) const = 0;

  /// As pushFilter, for a filter that the program itself imposes.
  virtual void pushFixedFilter(std::shared_ptr<moxDataMatrixSQLFilter const> filter) = 0;

  /// The rows of the last run; empty before it.
  virtual std::shared_ptr<moxDataMatrix> getDataMatrix() const = 0;
};
