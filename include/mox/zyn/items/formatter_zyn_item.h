#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/items/zyn_item.h"

/// A formatter that is shared by name. Registered as "moxFormatterZYNItem". The description is kept
/// by the formatter: without one it reads as empty, and setting it has no effect.
class moxFormatterZYNItem : public virtual moxZYNItem {
 public:
  /// Makes a new formatter of a registered class and holds it instead of the one before. Throws
  /// moxPluginNotFound for an unknown name; a class that is no formatter leaves the item without.
  virtual void setFormatterPlugin(std::string const& registeredName) = 0;

  /// The formatter held; empty when there is none.
  virtual std::shared_ptr<moxGenericFormatter> getFormatter() = 0;
  virtual std::shared_ptr<moxGenericFormatter const> getFormatter() const = 0;
  virtual void setFormatter(std::shared_ptr<moxGenericFormatter> formatter) = 0;

  virtual void setDescription(std::string const& description) = 0;
};
