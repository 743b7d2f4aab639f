#pragma once

#include <string>

#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/items/typed_collection.h"

/// A statement that is run for what it does; it gives no rows. Registered as "moxObjectDataSource".
class moxObjectDataSource : public virtual moxDataSource {
 public:
  using Filters = moxNamedSortableTypedCollection<moxFilterSpecification>;

  /// The text, in which "{{name}}" stands for a value. The values are those of the filters, in the
  /// order of the list and whatever the names.
  virtual void setSQL(std::string const& sql) = 0;
  virtual std::string getSQL() const = 0;

  /// What is bound, in order. The list belongs to the definition.
  virtual Filters& filters() = 0;
  virtual Filters const& filters() const = 0;
};
