#pragma once

#include <memory>
#include <string>

#include "mox/zyn/items/zyn_item.h"

class moxDataSource;
class moxSQLDataSource;
class moxSQLDataSourceColumn;

/// The definition of a list screen with which a user looks up records: how it looks, and the source
/// that feeds it, which it owns or names. Registered as "moxSearch".
class moxSearch : public virtual moxZYNItem {
 public:
  /// The key under which the search is found: its description.
  virtual void setInternalName(std::string const& internalName) = 0;

  /// The title of the screen.
  virtual void setHeaderName(std::string const& headerName) = 0;
  virtual std::string getHeaderName() const = 0;

  /// Whether the user may reorder the columns, and whether the search runs when its screen opens.
  virtual void setAllowReorder(bool allowReorder) = 0;
  virtual void setAutoFill(bool autoFill) = 0;
  virtual bool allowReorder() const = 0;
  virtual bool autoFill() const = 0;

  /// The size of the screen when it opens, in pixels.
  virtual void setInitialSize(unsigned int width, unsigned int height) = 0;
  virtual unsigned int getInitialWidth() const = 0;
  virtual unsigned int getInitialHeight() const = 0;

  /// The column that the rows are sorted by at first; empty when the source has no such column.
  /// Throws as the constant getDataSource does.
  virtual std::shared_ptr<moxSQLDataSourceColumn const> getInitialOrderColumn() const = 0;
  virtual bool getInitialOrderAscending() const = 0;
  virtual void setInitialOrderColumn(std::shared_ptr<moxSQLDataSourceColumn const> column,
                                     bool ascending) = 0;

  /// The source that the search owns; empty when it only names one.
  virtual std::shared_ptr<moxDataSource> getDataSource() = 0;

  /// The source in force, looked up by its name where the search owns none. Throws moxError "Fonte
  /// de dados externa não definida" or "Fonte de dados externa inválida".
  virtual std::shared_ptr<moxDataSource const> getDataSource() const = 0;

  virtual void setDataSource(std::shared_ptr<moxDataSource> dataSource) = 0;

  /// The name of the source that the search does not own.
  virtual std::string dataSourceExterno() const = 0;

  /// Names a source; `dataSource` is the one to use, kept weakly: it may own the search. Empty to
  /// have it looked up.
  virtual void setDataSourceExterno(std::string const& name,
                                    std::shared_ptr<moxDataSource const> dataSource) = 0;

  /// The SQL source behind the search: the source itself, or the member that a group puts out.
  /// Throws moxError "Não localizado fonte de dados do tipo SQL." for a source of another kind.
  virtual std::shared_ptr<moxSQLDataSource const> getSqlDataSource() const = 0;

  /// Whether a filter must be given before the search runs, and whether it is subject to a
  /// permission.
  virtual void setRequireFilter(bool requireFilter) = 0;
  virtual bool requireFilter() const = 0;
  virtual void setRequirePermission(bool requirePermission) = 0;
  virtual bool requirePermission() const = 0;
};
