#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/data_matrix_types.h"

class moxGenericFormatter;
class moxXMLNode;

/// One column of a query: the name it has in the result, where it comes from, how a user sees it,
/// and the expression that gives it in a composed statement. Sources make their own with
/// createColumn. Constant once its definition is loaded.
class moxSQLDataSourceColumn : public virtual moxPluginBase {
 public:
  /// Kinds of values as the database tells them. The numbers are part of the interface, and a
  /// definition may hold others, which count as integers.
  enum FieldTypes : int { kUnknown = 0, kText = 1, kInt = 2, kBlob = 3, kDouble = 4, kDate = 5 };

  /// A reference to a column of another source.
  struct SQLColum {
    std::string tableNameOrigin;   // the real table
    std::string columnNameOrigin;  // the name there
    std::string tableName;         // the table as the query calls it
    std::string columnName;        // the column as the query calls it

    bool operator==(SQLColum const&) const = default;
  };

  virtual void setVisibleName(std::string const& visibleName) = 0;
  virtual void setWidth(int width) = 0;
  virtual void setVisible(bool visible) = 0;

  /// The column that holds the key of an icon for this one; empty for none. May be this column.
  virtual void setIconColumn(std::shared_ptr<moxSQLDataSourceColumn> column) = 0;

  virtual std::string getVisibleName() const = 0;  // the heading
  virtual int getWidth() const = 0;                // in pixels
  virtual bool getVisible() const = 0;             // shown to a user
  virtual std::shared_ptr<moxSQLDataSourceColumn> getIconColumn() const = 0;

  virtual FieldTypes getDbType() const = 0;
  virtual void setDbType(FieldTypes type) = 0;

  /// How the column's values, and its icon's, are written; empty for as they are.
  virtual void setFormatter(std::shared_ptr<moxGenericFormatter> formatter) = 0;
  virtual void setIconFormatter(std::shared_ptr<moxGenericFormatter> formatter) = 0;
  virtual std::shared_ptr<moxGenericFormatter> getFormatter() = 0;
  virtual std::shared_ptr<moxGenericFormatter> getIconFormatter() = 0;
  virtual std::shared_ptr<moxGenericFormatter const> getFormatter() const = 0;
  virtual std::shared_ptr<moxGenericFormatter const> getIconFormatter() const = 0;

  /// False for an empty node, which changes nothing.
  virtual bool save(std::shared_ptr<moxXMLNode> node) = 0;

  /// References to icon and key columns are kept as names until the source resolves them.
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// The name of the type in the database's own words.
  virtual void setDataType(std::string const& dataType) = 0;
  virtual std::string getDataType() const = 0;

  /// The column that holds the key of what this one shows; empty for none. May be this column.
  virtual void setIdColumn(std::shared_ptr<moxSQLDataSourceColumn> column) = 0;
  virtual std::shared_ptr<moxSQLDataSourceColumn> getIdColumn() const = 0;

  virtual std::string getTableName() const = 0;         // as the query calls the table
  virtual std::string getTableNameOrigin() const = 0;   // the real table
  virtual std::string getColumnName() const = 0;        // in the result
  virtual std::string getColumnNameOrigin() const = 0;  // in its table; empty for an expression
  virtual void setTableName(std::string const& tableName) = 0;
  virtual void setColumnName(std::string const& columnName) = 0;

  /// For people: "table.column", and behind it in parentheses what is called differently in the
  /// database.
  virtual std::string getColumnNameFull() const = 0;

  /// The kind of matrix column for the database type.
  virtual moxDataMatrixTypes::Types getDataMatrixType() const = 0;

  /// Filters that may be put on the column: (registered name, registered name of the control).
  /// Removing takes the first that equals in both.
  virtual void addAllowedFiltersType(std::pair<std::string, std::string> const& filter) = 0;
  virtual std::vector<std::pair<std::string, std::string>> getAllowedFiltersType() const = 0;
  virtual void removeAllowedFiltersType(std::pair<std::string, std::string> const& filter) = 0;

  /// (expression, alias) in a composed statement, and its place among the expressions.
  virtual std::pair<std::string, std::string> getSQLColumn() const = 0;
  virtual int getSQLColumnIndex() const = 0;
  virtual void setSQLColumn(std::pair<std::string, std::string> const& expressionAndAlias) = 0;
  virtual void setSQLColumnIndex(int index) = 0;

  /// What the marks "[...]" of the expression stand for, in their order.
  virtual void setColumnOrigin(std::vector<SQLColum> const& origin) = 0;
  virtual std::vector<SQLColum> getColumnOrigin() const = 0;

  /// Offered to a user for selection.
  virtual void setAvaliable(bool avaliable) = 0;
  virtual bool getAvaliable() const = 0;
};
