#pragma once

#include <memory>
#include <string>
#include <typeinfo>

#include "mox/core/plugin_base.h"
#include "mox/zyn/matrix/data_matrix_types.h"

class moxDataMatrixSQLFilter;
class moxPropertiesObject;
class moxSQLDataSourceColumn;
class moxXMLNode;

/// The declaration that a query can be narrowed by a value that the user gives: on which column, of
/// which kind, in which form, and how and where he enters it. Part of a source's definition, and as
/// constant; the values go into the filter that it makes.
class moxFilterSpecification : public virtual moxPluginBase {
 public:
  /// False for an empty node, which changes nothing.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// The table as the query calls it, and the column there; or a token in double braces.
  virtual void setTableName(std::string const& tableName) = 0;
  virtual std::string getTableName() const = 0;
  virtual void setColumn(std::string const& column) = 0;
  virtual std::string getColumn() const = 0;

  /// A new filter on the column, without a value yet; empty when nobody has registered its class.
  virtual std::shared_ptr<moxDataMatrixSQLFilter> createFilter() const = 0;

  /// The registered name of the control with which the user enters the value. Setting another one
  /// also makes its extra properties, if it has any.
  virtual std::string getVisualRepresentation() const = 0;
  virtual void setVisualRepresentation(std::string const& visualRepresentation) = 0;

  /// The interface that a control must have to be used here.
  virtual std::type_info const& getAcceptedVisualRepresentationType() const = 0;

  /// Cell in the filter form, and how many cells are taken. getDimension passes over null pointers.
  virtual void setPosition(unsigned x, unsigned y) = 0;
  virtual void setSpan(unsigned spanX, unsigned spanY) = 0;
  virtual void getDimension(unsigned* x, unsigned* y, unsigned* spanX, unsigned* spanY) const = 0;

  /// The label.
  virtual void setDescription(std::string const& description) = 0;
  virtual std::string getDescription() const = 0;

  /// Settings of the control; empty for one that has none.
  virtual std::shared_ptr<moxPropertiesObject> visualExtraProperties() const = 0;

  /// How many values the filter binds: 1, 2 for a range, 0 for a list of any length.
  virtual int bindCount() const = 0;

  /// The source's column that the filter is on. Binding it makes getColumn the column's name in its
  /// table, or in the result where it has none; an empty pointer unbinds it and leaves the name.
  virtual void setSQLDataSourceColumn(std::shared_ptr<moxSQLDataSourceColumn> column) = 0;
  virtual std::shared_ptr<moxSQLDataSourceColumn> getSQLDataSourceColumn() const = 0;

  /// Whether the user must give a value.
  virtual bool getRequire() const = 0;
  virtual void setRequire(bool require) = 0;

  /// The kind of the value.
  virtual moxDataMatrixTypes::Types getType() const = 0;
};

/// The four families by kind of value.
class moxIntegralFilterSpecification : public virtual moxFilterSpecification {};
class moxDoubleFilterSpecification : public virtual moxFilterSpecification {};
class moxDateTimeFilterSpecification : public virtual moxFilterSpecification {};

class moxTextFilterSpecification : public virtual moxFilterSpecification {
 public:
  /// Whether marks such as "." and "-" are taken out of what the user enters.
  virtual bool getRemovePunctuation() const = 0;
  virtual void setRemovePunctuation(bool removePunctuation) = 0;
};
